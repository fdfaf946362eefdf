// Small pictures side by side in one file: the frames of a loop, the steps of a sweep.
#pragma once

#include "effectengine/pictureFiles.h"
#include "pixels/View.h"

#include <filesystem>
#include <vector>

namespace tool {

class Strip {
public:
    /// Room for `count` cells; pictures have `scale` times a cell's sides.
    Strip(PictureSize cell, unsigned scale, unsigned count);

    /// Puts a picture, scaled down, into the next free cell. What is transparent shows a checkerboard.
    void add(pixels::ConstView picture);

    /// Whether the cells that were filled differ from each other.
    bool changes() const;

    /// Writes a JPEG file of the cells that were filled. Throws ToolError.
    void save(const std::filesystem::path& file) const;

private:
    PictureSize cell_;
    unsigned scale_;
    unsigned filled_ = 0;
    std::vector<pixels::Bgra> pixels_; ///< rows of all cells, the top one first
    std::size_t rowLength_;
};

} // namespace tool
