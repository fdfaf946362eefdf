// The vignette's mask and its application to rows, in double precision.
#include "effects/lightroom/Vignette.h"

#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <algorithm>
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

    fillTables();

    const Shape shape = shapeOf(values, size);
    const std::size_t rows = std::size_t(size.height + 1) / 2;
    if (mask_ && zones_ && size_ == size && shape_ == shape)
        return true;
    if (!mask_.ensure(std::size_t(size.width) * rows) || !zones_.ensure(rows))
        return false;
    size_ = size;
    shape_ = shape;
    drawMask();
    return true;
}

// Where the mask is 1, and where it is 0 without highlights, every byte goes its own way, unless the values
// are so large that products of them overflow.
void Vignette::fillTables()
{
    const Weights weights{amount_, highlights_, exposure_};
    const auto small = [](double x) { return std::fabs(x) < 1e9; };
    insideTabled_ = small(amount_) && small(highlights_) && small(exposure_);
    outsideTabled_ = insideTabled_ && highlights_ == 0;
    const auto tablesOf = [=](double mask) {
        const auto table =
            pixels::tableOf([=](int v) { return shaded(pixels::grey({}, u8(v)), mask, weights).b; });
        return pixels::ByteTables{table, table, table};
    };
    if (insideTabled_)
        inside_ = tablesOf(1);
    if (outsideTabled_)
        outside_ = tablesOf(0);
}

void Vignette::drawMask()
{
    const pixels::Extent quadrant{(size_.width + 1) / 2, (size_.height + 1) / 2};
    pixels::rows::anyOrder(quadrant, [&](int y) {
        double* const line = mask_.data() + std::size_t(y) * size_.width;
        const double dy = std::fabs(y + 0.5 - size_.height / 2.0);
        for (int x = 0; x < quadrant.width; ++x)
            line[x] = line[size_.width - 1 - x] = maskAt(shape_, std::fabs(x + 0.5 - size_.width / 2.0), dy);
        RowZones zones{quadrant.width, quadrant.width};
        while (zones.inside > 0 && line[zones.inside - 1] == 1)
            --zones.inside;
        zones.edge =
            int(std::find_if(line, line + zones.inside, [](double mask) { return mask != 0; }) - line);
        zones_.data()[y] = zones;
    });
}

void Vignette::applyToRow(pixels::ConstView from, pixels::View to, int y) const
{
    const Weights weights{amount_, highlights_, exposure_};
    const int row = std::min(y, size_.height - 1 - y);
    const double* const mask = mask_.data() + std::size_t(row) * size_.width;
    const int width = to.width();
    const int edge = outsideTabled_ ? zones_.data()[row].edge : 0;
    const int first = insideTabled_ ? zones_.data()[row].inside : width;
    const int last = std::max(first, width - first);
    const int end = std::max(last, width - edge);
    pixels::mapTables(from, to, outside_, 0, edge);
    pixels::mapTables(from, to, inside_, first, last);
    pixels::mapTables(from, to, outside_, end, width);
    pixels::widest([=, source = from.row(0).data(), target = to.row(0).data()] {
        shadeRow(source + edge, target + edge, first - edge, mask + edge, weights);
        shadeRow(source + last, target + last, end - last, mask + last, weights);
    });
}

} // namespace lightroom
