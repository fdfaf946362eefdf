// One pass over a host's picture: rows found by their description, each pixel through a small kernel.
#include "host/PictureLayout.h"

#include "EffectEngine/EffectEngine.h"
#include "host/premultiplication.h"
#include "pixels/rows.h"

#include <limits>

namespace host {

namespace {

using pixels::Bgra;

constexpr auto same = [](Bgra p) { return p; };
constexpr auto swapped = [](Bgra p) { return Bgra{p.r, p.g, p.b, p.a}; };
constexpr auto opaque = [](Bgra p) { return Bgra{p.b, p.g, p.r, 255}; };
constexpr auto multiplied = [](Bgra p) { return premultiplied(p); };
constexpr auto divided = [](Bgra p) { return straightened(p); };

/// The kernel that applies `first`, then `second`.
template <class First, class Second> constexpr auto chain(First first, Second second)
{
    return [=](Bgra p) { return second(first(p)); };
}

int bytesPerPixel(const EffectHostPicture& picture)
{
    return picture.format == EFFECTHOST_BGR || picture.format == EFFECTHOST_RGB ? 3 : 4;
}

bool isPremultiplied(const EffectHostPicture& picture) { return picture.flags & EFFECTHOST_PREMULTIPLIED; }

pixels::Extent extentOf(const EffectHostPicture& picture) { return {picture.width, picture.height}; }

// A picture's rows in the engine's order, counted from the bottom.
struct Rows {
    explicit Rows(const EffectHostPicture& picture)
        : bottom(static_cast<u8*>(picture.pixels)),
          step(picture.stride)
    {
        if (!(picture.flags & EFFECTHOST_BOTTOM_UP)) {
            bottom += (picture.height - 1) * step;
            step = -step;
        }
    }
    u8* row(int y) const { return bottom + y * step; }

    u8* bottom;
    std::ptrdiff_t step;
};

pixels::View viewOf(const EffectHostPicture& picture)
{
    const Rows rows(picture);
    return {rows.bottom, extentOf(picture), rows.step};
}

template <class Kernel> void expandRow(const u8* from, Bgra* to, int count, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x)
        store(to + x, kernel(Bgra{from[3 * x], from[3 * x + 1], from[3 * x + 2], 255}));
}

template <class Kernel> void packRow(const Bgra* from, u8* to, int count, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x) {
        const Bgra p = kernel(load(from + x));
        to[3 * x] = p.b;
        to[3 * x + 1] = p.g;
        to[3 * x + 2] = p.r;
    }
}

/// to(x, y) = kernel(the three bytes of from(x, y), opaque).
template <class Kernel> void expand(Rows from, pixels::View to, Kernel kernel)
{
    pixels::rows::anyOrderRuns(to.extent(), [&](int first, int last) {
        pixels::widest([=] {
            for (int y = first; y < last; ++y)
                expandRow(from.row(y), to.row(y).data(), to.width(), kernel);
        });
    });
}

/// The three bytes of to(x, y) = the first three of kernel(from(x, y)).
template <class Kernel> void pack(pixels::ConstView from, Rows to, Kernel kernel)
{
    pixels::rows::anyOrderRuns(from.extent(), [&](int first, int last) {
        pixels::widest([=] {
            for (int y = first; y < last; ++y)
                packRow(from.row(y).data(), to.row(y), from.width(), kernel);
        });
    });
}

/// Writes kernel(p) for each pixel p of the engine's.
template <class Kernel> void write(pixels::ConstView from, const EffectHostPicture& to, Kernel kernel)
{
    using pixels::rows::map;
    switch (to.format) {
    case EFFECTHOST_BGRA:
        return map(from, viewOf(to), kernel);
    case EFFECTHOST_RGBA:
        return map(from, viewOf(to), chain(kernel, swapped));
    case EFFECTHOST_BGRX:
        return map(from, viewOf(to), chain(kernel, opaque));
    case EFFECTHOST_RGBX:
        return map(from, viewOf(to), chain(chain(kernel, swapped), opaque));
    case EFFECTHOST_BGR:
        return pack(from, Rows(to), kernel);
    case EFFECTHOST_RGB:
        return pack(from, Rows(to), chain(kernel, swapped));
    }
}

} // namespace

std::optional<std::string> faultOf(const EffectHostPicture& picture)
{
    constexpr std::uint32_t kFlags = EFFECTHOST_BOTTOM_UP | EFFECTHOST_PREMULTIPLIED;
    // Beyond it, addresses of rows could overflow.
    constexpr std::ptrdiff_t kLongestStride =
        std::numeric_limits<std::ptrdiff_t>::max() / EFFECTENGINE_LARGEST_SIDE;
    const auto fits = [](int side) { return side >= 1 && side <= EFFECTENGINE_LARGEST_SIDE; };

    if (!picture.pixels)
        return "the picture's pixels are a null pointer";
    if (picture.format > EFFECTHOST_RGB)
        return "the picture's format " + std::to_string(picture.format) + " is unknown";
    if (picture.flags & ~kFlags)
        return "the picture's flags " + std::to_string(picture.flags) + " are unknown";
    if (!fits(picture.width) || !fits(picture.height))
        return "the picture's size is " + std::to_string(picture.width) + " x "
            + std::to_string(picture.height) + ", and sides must lie in 1.."
            + std::to_string(EFFECTENGINE_LARGEST_SIDE);
    const std::ptrdiff_t row = std::ptrdiff_t(picture.width) * bytesPerPixel(picture);
    if (picture.stride > -row && picture.stride < row)
        return "the picture's stride of " + std::to_string(picture.stride)
            + " bytes is shorter than its rows of " + std::to_string(row);
    if (picture.stride > kLongestStride || picture.stride < -kLongestStride)
        return "the picture's stride of " + std::to_string(picture.stride)
            + " bytes is longer than any memory";
    return std::nullopt;
}

void* nativePixels(const EffectHostPicture& picture)
{
    const pixels::View view = viewOf(picture);
    const bool isOne = picture.format == EFFECTHOST_BGRA && !isPremultiplied(picture)
        && (view.packed() || view.height() == 1);
    return isOne ? view.bytes() : nullptr;
}

void toNative(const EffectHostPicture& from, unsigned char* bgra)
{
    using pixels::rows::map;
    const pixels::View source = viewOf(from);
    const pixels::View to(bgra, extentOf(from));
    switch (from.format) {
    case EFFECTHOST_BGRA:
        return isPremultiplied(from) ? map(source, to, divided) : map(source, to, same);
    case EFFECTHOST_RGBA:
        return isPremultiplied(from) ? map(source, to, chain(swapped, divided)) : map(source, to, swapped);
    case EFFECTHOST_BGRX:
        return map(source, to, opaque);
    case EFFECTHOST_RGBX:
        return map(source, to, chain(swapped, opaque));
    case EFFECTHOST_BGR:
        return expand(Rows(from), to, same);
    case EFFECTHOST_RGB:
        return expand(Rows(from), to, swapped);
    }
}

void fromNative(const unsigned char* bgra, const EffectHostPicture& to)
{
    const pixels::ConstView from(bgra, extentOf(to));
    return isPremultiplied(to) ? write(from, to, multiplied) : write(from, to, same);
}

} // namespace host
