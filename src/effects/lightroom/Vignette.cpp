// The vignette's mask and its application to rows, in double precision.
#include "effects/lightroom/Vignette.h"

#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <cmath>
#include <numbers>

namespace lightroom {

namespace {

using pixels::Bgra;

struct Weights {
    double amount;
    double highlights;
    double exposure;
};

inline double lit(double x, double mask, const Weights& weights)
{
    return x * mask * weights.exposure + x * (1 + weights.amount) * (1 - mask);
}

// x screened with k * x: one less the product of their complements, on a scale of 255.
inline u8 screened(double x, double k)
{
    return u8(int(pixels::clamped(255 - (255 - k * x) * (255 - x) / 255, 0.0, 255.0)));
}

inline Bgra shaded(Bgra p, double mask, const Weights& weights)
{
    const double r = lit(p.r, mask, weights);
    const double g = lit(p.g, mask, weights);
    const double b = lit(p.b, mask, weights);
    const double outside = mask < 1 ? 1 - mask : 0.0;
    const double k = outside * outside * weights.highlights * (1 - (r + g + b) / 3 / 255);
    return {screened(b, k), screened(g, k), screened(r, k), p.a};
}

void shadeRow(const Bgra* from, Bgra* to, int count, const double* mask, Weights weights)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x)
        pixels::store(to + x, shaded(pixels::load(from + x), mask[x], weights));
}

} // namespace

Vignette::Shape Vignette::shapeOf(const VignetteValues& values, pixels::Extent size)
{
    const double scale = 0.2 * (1 + 4 * (double(values.size) / 100));
    double a = size.width / 2.0 * scale;
    double b = size.height / 2.0 * scale;
    double& larger = a > b ? a : b;
    larger -= std::fabs(a - b) * (double(values.roundness) / 100);
    return {a, b, double(values.feather) / 100 * std::max(a, b) / 2 + 3};
}

double Vignette::maskAt(const Shape& shape, double dx, double dy)
{
    const auto inside = [&](double a, double b) {
        return dx * dx * (b * b) + dy * dy * (a * a) <= a * a * (b * b);
    };
    if (inside(shape.a, shape.b))
        return 1;
    const double outerA = shape.a + shape.band;
    const double outerB = shape.b + shape.band;
    if (!inside(outerA, outerB))
        return 0;
    const double slope = dy / (dx + 0.000001);
    const double edgeX = outerA * outerB / std::sqrt(outerB * outerB + outerA * outerA * slope * slope);
    const double edgeY = slope * edgeX;
    const double toEdge = std::sqrt((edgeX - dx) * (edgeX - dx) + (edgeY - dy) * (edgeY - dy));
    return 0.5 * (1 + std::cos(std::numbers::pi / shape.band * (shape.band - toEdge)));
}

bool Vignette::prepare(const VignetteValues& values, pixels::Extent size)
{
    amount_ = double(values.amount) / 100;
    highlights_ = (2 * (double(values.highlights) / 100) - 1) * std::fabs(amount_);
    exposure_ = std::exp2(double(values.exposure) / 100);

    const Shape shape = shapeOf(values, size);
    const std::size_t count = std::size_t(size.width) * ((size.height + 1) / 2);
    if (mask_ && size_ == size && shape_ == shape)
        return true;
    if (!mask_.ensure(count))
        return false;
    size_ = size;
    shape_ = shape;
    drawMask();
    return true;
}

void Vignette::drawMask()
{
    const pixels::Extent quadrant{(size_.width + 1) / 2, (size_.height + 1) / 2};
    pixels::rows::anyOrder(quadrant, [&](int y) {
        double* const line = mask_.data() + std::size_t(y) * size_.width;
        const double dy = std::fabs(y + 0.5 - size_.height / 2.0);
        for (int x = 0; x < quadrant.width; ++x)
            line[x] = line[size_.width - 1 - x] = maskAt(shape_, std::fabs(x + 0.5 - size_.width / 2.0), dy);
    });
}

void Vignette::applyToRow(pixels::ConstView from, pixels::View to, int y) const
{
    const Weights weights{amount_, highlights_, exposure_};
    const double* const mask = mask_.data() + std::size_t(std::min(y, size_.height - 1 - y)) * size_.width;
    pixels::widest([=] { shadeRow(from.row(0).data(), to.row(0).data(), to.width(), mask, weights); });
}

} // namespace lightroom
