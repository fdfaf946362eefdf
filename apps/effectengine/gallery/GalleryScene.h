// What the effects of a gallery are shown on: the user's picture, still or moving, and a second one.
#pragma once

#include "effectengine/pictureFiles.h"
#include "model/EffectRegistry.h"

#include <optional>

/// Sizes of a gallery's pictures. Effects work at `scale` times a cell's sides, so that averages of whole
/// blocks make the small pictures.
struct GalleryLayout {
    PictureSize cell;
    unsigned scale;

    PictureSize work() const { return {cell.width * scale, cell.height * scale}; }
};

/// Cells of the picture's shape, 320 pixels wide or, for upright pictures, high.
GalleryLayout layoutFor(PictureSize picture);

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

    /// Makes the inputs as good as new: effects may write to them. The first one shows the picture, or a
    /// window that has drifted over it.
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
