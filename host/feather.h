// Soft edges for masks.
#pragma once

#include "core/Types.h"
#include "pixels/Buffer.h"
#include "pixels/View.h"

#include <array>

namespace host {

/// A smooth blur of planes of bytes: three box blurs after one another in 16 bits, at a cost that does not
/// depend on how far they reach. Beyond its borders a plane goes on as at the border, so an even plane stays
/// as it is.
class Feather {
public:
    /// @param reach  pixels, rounded to whole ones: a hard edge becomes a slope that ends so far to both
    /// sides.
    ///               0 and below leave planes as they are; three times pixels::kLargestSide is the most
    Feather(pixels::Extent size, double reach);

    /// Blurs width x height bytes, rows packed, in place. Throws std::bad_alloc.
    void apply(u8* plane);

private:
    void blurRows(const u8* plane);
    void blurColumns(u8* plane, int left) const;

    pixels::Extent size_;
    std::array<int, 3> radii_;
    pixels::Buffer<u16> wide_; ///< between the rows' blur and the columns'
};

} // namespace host
