// What an effect of the library is called with, and how a kernel becomes one.
#pragma once

#include "effects/am/library/amTypes.h"
#include "pixels/rows.h"

#include <algorithm>
#include <cstring>

namespace KEXSDK::am {

/// Pixels of a side: twice the engine's largest picture. Within this the effects' integers do not overflow.
inline constexpr i32 kMaxExtent = 2 * pixels::kLargestSide;

/// One picture on its way through one effect.
struct Frame {
    pixels::ConstView src;    ///< what to work from: the very rows of dst, or rows that nothing overwrites
    pixels::View dst;         ///< to be written completely
    pixels::ConstView second; ///< the texture; no bytes without one
    AmEffectParams& block;
    i32 dataSize; ///< bytes of pixels, as the caller's descriptor has it

    bool inPlace() const { return src.bytes() == dst.bytes(); }
};

/// Rows [top, end) of src to dst, for effects that then change some pixels there.
inline void copyRows(const Frame& frame, int top, int end)
{
    if (frame.inPlace())
        return;
    for (int y = top; y < end; ++y)
        std::memcpy(frame.dst.row(y).data(), frame.src.row(y).data(), frame.dst.row(y).size_bytes());
}

/// The effect that applies a kernel, made from the block once per frame, to every pixel on its own.
template <class Kernel> i32 eachPixel(const Frame& frame)
{
    pixels::rows::map(frame.src, frame.dst, Kernel(frame.block));
    return kAmOk;
}

/// dst(x, y) = kFunction(src(x, y)), for a function of the pixel alone.
template <pixels::Bgra (*kFunction)(pixels::Bgra)> i32 eachPixel(const Frame& frame)
{
    pixels::rows::map(frame.src, frame.dst, [](pixels::Bgra p) { return kFunction(p); });
    return kAmOk;
}

// The library's three forms of luma, with weights in 4ths, 256ths and 1024ths.
constexpr int y4(pixels::Bgra p) { return (p.b + 2 * p.g + p.r) >> 2; }
constexpr int y8(pixels::Bgra p) { return (29 * p.b + 150 * p.g + 76 * p.r + 255) >> 8; }
constexpr int y10(pixels::Bgra p) { return (117 * p.b + 601 * p.g + 306 * p.r + 512) >> 10; }

constexpr int percentOf(const AmEffectParams& block) { return std::clamp(block.percent, 0, 100); }

} // namespace KEXSDK::am
