// A small picture of a picture, with a grid line on two sides, for walls and frames of tiles.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/View.h"

namespace pixels {

inline constexpr Bgra kOpaqueBlack{0, 0, 0, 255};

class Thumbnail {
public:
    /// Makes room for a picture of this size, both sides at least 1; keeps the room it has for the same size.
    /// False, with no room at all, without memory.
    bool resize(Extent size);
    bool exists() const { return bool(pixels_); }
    Extent size() const { return size_; }

    /// Takes every (w / size.width)-th pixel of every (h / size.height)-th row of src, which is not smaller,
    /// from the first on. The thumbnail's first row and column become opaque black.
    void fill(ConstView src);

    /// Copies row y of the thumbnail to `to`.
    void copyRow(int y, Bgra* to) const;

private:
    View view() const { return {reinterpret_cast<u8*>(pixels_.data()), size_}; }

    Extent size_{0, 0};
    Buffer<Bgra> pixels_;
};

} // namespace pixels
