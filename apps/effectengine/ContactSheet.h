// A contact sheet: labelled pictures in rows and columns, saved as one PNG.
#pragma once

#include "pixels/View.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

class ContactSheet {
public:
    ContactSheet(std::size_t tiles, int columns, pixels::Extent tile);

    /// Puts a picture of a whole multiple of the tile's size into a tile, averaged, over the sheet's colour.
    void put(std::size_t tile, pixels::ConstView picture);
    /// Writes a label below the tile, shortened to the tile's width.
    void label(std::size_t tile, std::string text);

    /// Saves the sheet as a PNG file. Throws ToolError.
    void save(const std::filesystem::path& file) const;

private:
    pixels::Point cornerOf(std::size_t tile) const;
    pixels::Bgra& at(int x, int y)
    {
        return pixels_[std::size_t(y) * std::size_t(size_.width) + std::size_t(x)];
    }

    int columns_;
    pixels::Extent tile_;
    pixels::Extent size_;
    std::vector<pixels::Bgra> pixels_; ///< top row first
};

} // namespace tool
