// Blends of a picture's channel with a texture's, and how they become effects.
#pragma once

#include "effects/am/library/amFrame.h"
#include "effects/am/library/amScratch.h"
#include "pixels/numbers.h"

#include <new>

namespace KEXSDK::am {

// Channels are 0..255: a of the picture, b of the texture. What the modes of the library define as a table of
// 256 x 256 bytes is calculated here; in vector registers that is faster than the table.

constexpr int multiplied(int a, int b) { return (a * b + 255) >> 8; }
constexpr int screened(int a, int b) { return 255 - multiplied(255 - a, 255 - b); }
constexpr int added(int a, int b) { return pixels::clampByte(a + b); }
constexpr int darker(int a, int b) { return a < b ? a : b; }
constexpr int burnt(int a, int b) { return pixels::clampByte(a + b - 255); }
constexpr int linearLight(int a, int b) { return pixels::clampByte(a + 2 * b - 255); }

constexpr int overlaid(int a, int b)
{
    const int dark = (a * b + 127) >> 7;
    const int light = 255 - (((255 - a) * (255 - b) + 127) >> 7);
    return a < 128 ? dark : light;
}

constexpr int hardLight(int a, int b) { return overlaid(b, a); }

// Single precision is exact: no root of an integer, times 16, comes near to an integer without being one.
inline int softLight(int a, int b)
{
    const int dark = (32768 * a + (b - 128) * a * (255 - a)) >> 15;
    const int bend = int(16 * __builtin_sqrtf(float(a)) - float(a));
    const int light = (128 * a + (b - 128) * bend) >> 7;
    return b < 128 ? dark : light;
}

/// n / d, at most 255, for n up to 65535 and d in 1..255. Truncating the quotient in single precision is
/// exact: up to 256 its rounding is far smaller than its distance, 1 / d or more, from the next integer.
constexpr int quotientByte(int n, int d)
{
    const float quotient = float(n) / float(d);
    return int(quotient < 255.0f ? quotient : 255.0f);
}

constexpr int dodged(int a, int b)
{
    const int room = 255 - b;
    return room > 0 ? quotientByte(255 * a, room > 0 ? room : 1) : 255;
}

/// kBlend(a, b) of every colour byte; alpha of p.
template <auto kBlend> constexpr pixels::Bgra blended(pixels::Bgra p, pixels::Bgra texture)
{
    return {u8(kBlend(p.b, texture.b)), u8(kBlend(p.g, texture.g)), u8(kBlend(p.r, texture.r)), p.a};
}

/// dst = kFunction(picture, texture) for every pixel; dst may be either of the others.
template <pixels::Bgra (*kFunction)(pixels::Bgra, pixels::Bgra)>
void blendRows(pixels::ConstView picture, pixels::ConstView texture, pixels::View dst)
{
    pixels::rows::map2(picture, texture, dst, [](pixels::Bgra p, pixels::Bgra t) { return kFunction(p, t); });
}

/// The effect that applies kFunction to every pixel of its picture and texture.
template <pixels::Bgra (*kFunction)(pixels::Bgra, pixels::Bgra)> i32 eachPair(const Frame& f)
{
    blendRows<kFunction>(f.src, f.second, f.dst);
    return kAmOk;
}

/// The effect of a blend that the library defines as a table. It needs no table, but clears the table's mark,
/// as callers expect.
template <auto kBlend> i32 asTable(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    return eachPair<blended<kBlend>>(f);
}

/// What an effect derives from its block, cached in scratch C: Value(block) of the last run that found one of
/// `marks`, or a new buffer. Any bytes must make a usable Value, for the buffer may come from another effect.
/// @param cleared  bits that the run has acted on
/// @return null when there was no memory
template <class Value> const Value* cached(AmEffectParams& block, u32 marks, u32 cleared)
{
    if (!ensureScratchC(block, sizeof(Value), marks | cleared))
        return nullptr;
    if (block.dirty & marks)
        new (block.scratchC) Value(block);
    block.dirty &= ~cleared;
    return static_cast<const Value*>(block.scratchC);
}

} // namespace KEXSDK::am
