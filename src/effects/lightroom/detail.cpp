// Clarity, sharpening, glow and lens distortion.
#include "effects/lightroom/detail.h"

#include "pixels/ByteTables.h"
#include "pixels/StackBlur.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"
#include "pixels/stencil.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lightroom {

namespace {

using pixels::Bgra;
using pixels::clamped;

inline u8 byteOf(float x) { return u8(int(clamped(x, 0.0f, 255.0f))); }

inline u8 awayFrom(int blurred, int original, float amount)
{
    return byteOf(float(original) + float(original - blurred) * amount / 200);
}

struct Lens {
    float k;
    float cx, cy; ///< centre
    float nx, ny; ///< distances that count as 1
    float scale = 1;
    bool cubic = false; ///< grows with the third power of the distance instead of the sixth
};

// For every pixel of row y, the packed place of the pixel that the lens shows there.
void traceRow(Lens lens, int y, pixels::Extent size, u32* places)
{
    const float v = (float(y) - lens.cy) / lens.ny;
    const float lastX = float(size.width - 1);
    const float lastY = float(size.height - 1);
#pragma GCC ivdep
    for (int x = 0; x < size.width; ++x) {
        const float u = (float(x) - lens.cx) / lens.nx;
        const float r = std::sqrt(u * u + v * v);
        const float cube = r * r * r;
        const float moved = ((lens.cubic ? cube : cube * cube) * lens.k + r) * lens.scale;
        const float fromX = r == 0 ? lens.cx : moved * u / r * lens.nx + lens.cx;
        const float fromY = r == 0 ? lens.cy : moved * v / r * lens.ny + lens.cy;
        places[x] = pixels::packedPlace({int(clamped(fromX, 0.0f, lastX)), int(clamped(fromY, 0.0f, lastY))});
    }
}

} // namespace

void clarity(pixels::View picture, pixels::View blurred, float amount)
{
    // Outside these amounts there is no blur to move away from.
    if (!(std::fabs(amount) > 2 && std::fabs(amount) < 254))
        return;
    pixels::stackBlur(picture, blurred, amount > 0 ? int(amount * 0.5f) : 2);
    pixels::rows::map2(picture, blurred, picture, [amount](Bgra p, Bgra around) {
        return Bgra{awayFrom(around.b, p.b, amount), awayFrom(around.g, p.g, amount),
            awayFrom(around.r, p.r, amount), p.a};
    });
}

void sharpen(pixels::ConstView src, pixels::View dst, float amount)
{
    pixels::stencil(src, dst, pixels::Border::kept, [amount](pixels::Neighbours n) {
        const int steepness = 4 * n.centre - n.above - n.below - n.left - n.right;
        return byteOf(float(n.centre) + float(steepness) * amount / 255);
    });
}

void diffuse(pixels::View picture, float amount)
{
    const double gain =
        std::fabs(std::cos(std::numbers::pi / 2 - double(amount) * std::numbers::pi / 1440)) + 1;
    const pixels::ByteTable table =
        pixels::tableOf([gain](int v) { return u8(clamped(v * gain, 0.0, 255.0)); });
    pixels::mapTables(picture, picture, {table, table, table});
    if (amount > 0)
        pixels::stackBlur(picture, picture, 1);
}

bool LensMap::prepare(float amount, pixels::Extent size)
{
    if (places_ && size_ == size && amount_ == amount)
        return true;
    if (!places_.ensure(std::size_t(size.width) * size.height))
        return false;
    size_ = size;
    amount_ = amount;
    draw();
    return true;
}

void LensMap::draw()
{
    const float k = amount_ / 100;
    const float cx = float(size_.width / 2);
    const float cy = float(size_.height / 2);
    const float reach = std::sqrt(cx * cx + cy * cy);
    Lens lens{.k = k, .cx = cx, .cy = cy, .nx = float(size_.width), .ny = float(size_.height)};
    if (k > 0) {
        lens.nx = lens.ny = reach;
        lens.scale = 1 / (1 + k);
        lens.cubic = true;
    }
    pixels::rows::anyOrder(size_, [=, size = size_, places = places_.data()](int y) {
        pixels::widest([=] { traceRow(lens, y, size, places + std::ptrdiff_t(y) * size.width); });
    });
}

void LensMap::apply(pixels::ConstView src, pixels::View dst) const
{
    pixels::sample(src, dst, [places = places_.data(), size = size_](int x, int y) {
        return pixels::unpackedPlace(places[std::ptrdiff_t(y) * size.width + x], size);
    });
}

} // namespace lightroom
