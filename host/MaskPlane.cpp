// Masks from pictures.
#include "host/MaskPlane.h"

#include "pixels/rows.h"

namespace host {

namespace {

// Weights of BT.601 in 65536ths; white has exactly 255.
inline u32 lumaOf(pixels::Bgra p) { return (p.r * 19595u + p.g * 38470u + p.b * 7471u + 32768u) >> 16; }

inline u8 timesAlpha(u32 luma, u32 alpha)
{
    const u32 product = luma * alpha + 128;
    return u8((product + (product >> 8)) >> 8); // the rounded 255th of the product
}

} // namespace

MaskPlane::MaskPlane(pixels::Extent size, bool invert, double feather)
    : size_(size),
      invert_(invert),
      feather_(size, feather),
      values_(std::size_t(size.width) * std::size_t(size.height))
{
}

void MaskPlane::take(pixels::ConstView picture)
{
    pixels::rows::anyOrderRuns(size_, [&](int top, int end) {
        pixels::widest([&, top, end] {
            const u8 flip = invert_ ? 255 : 0;
            for (int y = top; y < end; ++y) {
                const pixels::Bgra* const from = picture.row(y).data();
                u8* const to = values_.data() + std::size_t(y) * std::size_t(size_.width);
                const int width = size_.width;
#pragma GCC ivdep
                for (int x = 0; x < width; ++x) {
                    const pixels::Bgra p = pixels::load(from + x);
                    to[x] = timesAlpha(lumaOf(p), p.a) ^ flip;
                }
            }
        });
    });
    feather_.apply(values_.data());
}

} // namespace host
