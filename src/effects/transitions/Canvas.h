// One frame of a transition as pictures, and the row loop that the families draw with.
#pragma once

#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"
#include "pixels/wordBlends.h"

namespace transitions {

using pixels::Bgra;
using pixels::Scratch;

/// Bits of a pixel word, for Line::pick.
inline constexpr u32 kWholePixel = 0xFFFFFFFF;
inline constexpr u32 kColourBytes = 0x00FFFFFF;

/// One row of the pictures. Ranges of columns are half open and are cut to the row.
struct Line {
    int v; ///< row counted from the top of the picture
    int width;
    Bgra* dst;
    const Bgra* from;
    const Bgra* to;

    /// Copies columns [first, last), alpha included, of a row that starts at `source`.
    void copy(const Bgra* source, int first, int last) const
    {
        first = std::max(first, 0);
        last = std::min(last, width);
        if (first < last)
            std::memcpy(dst + first, source + first, std::size_t(last - first) * 4);
    }

    /// Draws columns [first, last) with the colours of `to` and the alpha of `from`.
    void colour(int first, int last) const
    {
        mix(first, last, [](Bgra f, Bgra t, int) { return Bgra{t.b, t.g, t.r, f.a}; });
    }

    /// [first, last) takes the colours of `to`, the rest of the row is `from`.
    void colourBand(int first, int last) const
    {
        first = std::clamp(first, 0, width);
        last = std::clamp(last, first, width);
        copy(from, 0, first);
        colour(first, last);
        copy(from, last, width);
    }

    /// Draws columns [first, last): dst(x) has the bits of to(x) where mask[x] has ones, those of from(x)
    /// elsewhere.
    void pick(const u32* mask, int first, int last) const
    {
        mix(first, last, [mask](Bgra f, Bgra t, int x) {
            return pixels::fromWord((toWord(f) & ~mask[x]) | (toWord(t) & mask[x]));
        });
    }

    /// dst(x) = kernel(from(x), to(x), x). Small kernels of integer or single-precision arithmetic become
    /// vector code.
    template <class Kernel> void mix(int first, int last, Kernel kernel) const
    {
        Bgra* const out = dst;
        const Bgra* const f = from;
        const Bgra* const t = to;
        const int end = std::min(last, width);
#pragma GCC ivdep
        for (int x = std::max(first, 0); x < end; ++x)
            pixels::store(out + x, kernel(pixels::load(f + x), pixels::load(t + x), x));
    }

    /// Blue, green and red of dst(x) = those of kernel(from(x), to(x), x); byte 3 of dst stays as it is.
    template <class Kernel> void mixColours(int first, int last, Kernel kernel) const
    {
        Bgra* const out = dst;
        const Bgra* const f = from;
        const Bgra* const t = to;
        const int end = std::min(last, width);
#pragma GCC ivdep
        for (int x = std::max(first, 0); x < end; ++x) {
            const u8 alpha = pixels::load(out + x).a;
            const Bgra p = kernel(pixels::load(f + x), pixels::load(t + x), x);
            pixels::store(out + x, {p.b, p.g, p.r, alpha});
        }
    }
};

struct Canvas {
    pixels::View dst;
    pixels::ConstView from;
    pixels::ConstView to;
    int width;
    int height;

    pixels::Extent extent() const { return {width, height}; }
    Line line(int v) const
    {
        return {v, width, dst.pictureRow(v).data(), from.pictureRow(v).data(), to.pictureRow(v).data()};
    }
};

/// fn(line) for every row, on any thread, in any order, compiled for the widest vectors. `fn` is copied: hold
/// tables by pointer.
template <class Fn> void drawRows(const Canvas& c, Fn fn)
{
    pixels::rows::anyOrderRuns(c.extent(), [&](int first, int last) {
        pixels::widest([=] {
            for (int y = first; y < last; ++y)
                fn(c.line(c.height - 1 - y));
        });
    });
}

/// A blend of two pixels; `a` is the weight of `to`, 0..255.
using PixelBlend = Bgra (*)(Bgra from, Bgra to, int a);

/// The blend of two pixels' colours, with the alpha of `from`.
template <PixelBlend blend> constexpr Bgra coloursOf(Bgra from, Bgra to, int a)
{
    const Bgra mixed = blend(from, to, a);
    return {mixed.b, mixed.g, mixed.r, from.a};
}

/// Half of a picture's side for the rules that count from the rounded centre.
constexpr int roundedHalf(int side) { return pixels::roundHalfUp(side * 0.5); }

} // namespace transitions
