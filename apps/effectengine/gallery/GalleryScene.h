// The pictures that the effects of a gallery are shown on: the user's, still or moving, and a second one.
#pragma once

#include "effectengine/pictureFiles.h"
#include "facts/EffectInfo.h"

#include <optional>

namespace tool {

/// Sizes of a gallery's pictures. Effects work at `scale` times a cell's sides, so that averages of whole
/// blocks make the small pictures.
struct GalleryLayout {
    PictureSize cell;
    unsigned scale;

    PictureSize work() const { return {cell.width * scale, cell.height * scale}; }
};

/// Cells of the picture's shape, 320 pixels wide or, for upright pictures, high.
GalleryLayout layoutFor(PictureSize picture);

/// The inputs of effects, filled anew for each of their frames.
class GalleryScene {
public:
    /// Without a second file the second picture is the first one mirrored, without colour. Needs a running
    /// engine. Throws ToolError.
    GalleryScene(const GalleryLayout& layout, const std::filesystem::path& picture,
        const std::optional<std::filesystem::path>& second);

    /// The picture for an effect's input; the same memory for every effect.
    const host::Image& input(unsigned index) const { return index == 0 ? first_ : second_; }

    /// Whether the pictures for an effect's first so many inputs are opaque.
    bool isOpaque(unsigned inputs) const;

    /// Fills the inputs anew, since effects may write to them: the first one with the picture, or for a
    /// frame's number with a window that has drifted over the picture.
    void show(std::optional<unsigned> frame);

private:
    void makeSecond(const std::optional<std::filesystem::path>& file);

    PictureSize work_;
    PictureSize margin_;
    host::Image picture_;
    host::Image wide_; ///< the picture with the margin for windows to drift in
    host::Image first_;
    host::Image second_;
    host::Image secondPicture_;
};

} // namespace tool
