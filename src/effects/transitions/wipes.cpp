// Wipes with a soft edge along rows, columns or the 45-degree line.
#include "effects/transitions/families.h"

#include <cmath>

namespace transitions {

namespace {

constexpr int kRamp = 400;

// The blend of the linear wipe, which adds both terms before it shifts.
constexpr Bgra sumBlend(Bgra from, Bgra to, int a)
{
    const auto byte = [a](int f, int t) { return u8((t * a + f * (255 - a)) >> 8); };
    return {byte(from.b, to.b), byte(from.g, to.g), byte(from.r, to.r), byte(from.a, to.a)};
}

} // namespace

void linearWipeDown(const Canvas& c, const Progress& p)
{
    const int front = pixels::truncated(p.linear() * (c.height + kRamp));
    drawRows(c, [=](const Line& line) {
        const int covered = front - line.v;
        if (covered > kRamp)
            return line.colour(0, line.width);
        if (covered <= 0)
            return line.copy(line.from, 0, line.width);
        const int a = covered * 255 / kRamp;
        line.mix(0, line.width, [a](Bgra f, Bgra t, int) { return coloursOf<pixels::shiftBlend>(f, t, a); });
    });
}

void linearWipeRight(const Canvas& c, const Progress& p)
{
    const int front = pixels::truncated(p.smoothedPart(c.width + kRamp));
    const int first = std::max(0, front - kRamp);
    const Scratch<u8> weights(c.width);
    for (int x = first; x < std::min(front, c.width); ++x)
        weights[std::size_t(x)] = u8((front - x) * 255 / kRamp);
    drawRows(c, [=, a = weights.data()](const Line& line) {
        line.colour(0, first);
        line.mix(first, front,
            [a](Bgra f, Bgra t, int x) { return coloursOf<pixels::divisionBlend>(f, t, a[x]); });
        line.copy(line.from, front, line.width);
    });
}

void linearWipe(const Canvas& c, const Progress& p)
{
    const float slope = 0.707106781f;
    const int slope256 = pixels::truncated(slope * 256);
    const float exactRamp = float(kRamp) / slope;
    const int ramp = pixels::truncated(exactRamp);
    const int front =
        pixels::truncated(p.linear() * pixels::truncated(float(c.width + c.height) + exactRamp));

    // Every row shows the same weights, moved by one column: entry i is the weight at front - v = x + ramp -
    // i.
    const Scratch<u8> weights(c.width + ramp);
    for (int i = 0; i < c.width + ramp; ++i)
        weights[std::size_t(i)] = u8(std::max((ramp - i) * slope256 / kRamp, 0));

    drawRows(c, [=, a = weights.data()](const Line& line) {
        const int reach = front - line.v;
        if (reach <= 0)
            return line.copy(line.from, 0, line.width);
        const int solid = std::min(std::max(reach - ramp, 0), line.width);
        const int last = reach >= ramp ? line.width : std::min(line.width, reach - 1);
        line.copy(line.to, 0, solid);
        // Columns beyond the front have weight 0 and come out one darker.
        const int shift = ramp - reach;
        line.mix(solid, last, [=](Bgra f, Bgra t, int x) { return sumBlend(f, t, a[x + shift]); });
        line.copy(line.from, last, line.width);
    });
}

void erase(const Canvas& c, const Progress& p)
{
    constexpr int kEdge = 100;
    const int n = p.linearAmount(c.width + kEdge);
    const int start = std::max(n - kEdge, 0);
    const int last = std::min(c.width, n);
    const Scratch<u8> weights(c.width);
    for (int x = start; x < last; ++x)
        weights[std::size_t(x)] = u8((last - x) * 255 / kEdge);
    drawRows(c, [=, a = weights.data()](const Line& line) {
        line.copy(line.to, 0, start);
        line.mix(start, last, [a](Bgra f, Bgra t, int x) { return pixels::shiftBlend(f, t, a[x]); });
        line.copy(line.from, last, line.width);
    });
}

void rowSplit2(const Canvas& c, const Progress& p)
{
    const bool opening = p.smoothed() < 0.5;
    const int n = opening ? p.smoothedAmount(c.height) : pixels::roundHalfUp((1 - p.smoothed()) * c.height);
    drawRows(c, [=, height = c.height](const Line& line) {
        const int distance = std::abs(height / 2 - line.v);
        if (distance > n || n == 0) {
            return opening ? line.mixColours(0, line.width, [](Bgra f, Bgra, int) { return f; })
                           : line.mixColours(0, line.width, [](Bgra, Bgra t, int) { return t; });
        }
        const int a = pixels::truncated(double(distance) / height * 2 * 255);
        line.mixColours(
            0, line.width, [a](Bgra f, Bgra t, int) { return coloursOf<pixels::divisionBlend>(f, t, a); });
    });
}

void colSplit2(const Canvas& c, const Progress& p)
{
    const bool opening = p.smoothed() < 0.5;
    const int n = opening ? p.smoothedAmount(c.width) : pixels::roundHalfUp((1 - p.smoothed()) * c.width);
    const int middle = c.width / 2;
    const int first = std::max(middle - n, 0);
    const int last = std::min(middle + n, c.width);
    const Scratch<u8> weights(c.width);
    for (int x = first; x < last; ++x)
        weights[std::size_t(x)] = u8(x < middle ? 255 - x * 510 / c.width : (x - middle) * 510 / c.width);
    drawRows(c, [=, a = weights.data()](const Line& line) {
        const Bgra* const ground = opening ? line.from : line.to;
        line.copy(ground, 0, first);
        line.mix(first, last, [=](Bgra f, Bgra t, int x) {
            Bgra mixed = coloursOf<pixels::shiftBlend>(f, t, a[x]);
            mixed.a = opening ? f.a : t.a;
            return mixed;
        });
        line.copy(ground, last, line.width);
    });
}

} // namespace transitions
