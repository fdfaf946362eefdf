// Transitions with soft edges, which are drawn from segments, tables and shared half rows, against formulas
// that tell each pixel on its own.
#include "pixels/numbers.h"
#include "pixels/wordBlends.h"
#include "transitions/TransitionFixture.h"

#include <cmath>
#include <functional>
#include <numbers>

namespace {

using pixels::Bgra;
using pixels::roundHalfUp;
using pixels::truncated;

/// What a formula needs to know of a pixel: its column, its row from the top, and the frame.
struct Where {
    int x, v;
    int w, h;
    float t, total;

    float smoothedTime() const
    {
        const double T = total;
        const double e = t - T / (2 * std::numbers::pi) * std::sin(2 * std::numbers::pi * t / T);
        return float((3 * T * e * e - 2 * e * e * e) / (T * T));
    }
    double smoothed() const { return double(smoothedTime()) / total; }
};

constexpr int kNotDrawn = -1;
/// The weight of the new picture at a pixel, 0 .. 255, or kNotDrawn.
using Weight = std::function<int(const Where&)>;
enum class Blend { shift, division, single };

int softCircle(const Where& p, double part)
{
    const int radius = truncated((std::sqrt(double(p.w) * p.w + double(p.h) * p.h) * 0.5 + 0.5 + 100) * part);
    const int dx = p.x - roundHalfUp(p.w * 0.5);
    const int dy = p.v - roundHalfUp(p.h * 0.5);
    if (dx * dx + dy * dy > radius * radius)
        return kNotDrawn;
    return std::clamp((radius - truncated(std::sqrt(double(dx * dx + dy * dy)))) * 255 / 100, 0, 255);
}

int leftDiagonal(const Where& p) { return std::abs(p.x - truncated(float(p.v) * float(p.w) / float(p.h))); }
int rightDiagonal(const Where& p)
{
    return std::abs(p.w - 1 - p.x - truncated(float(p.v) * float(p.w) / float(p.h)));
}

int skewOpening(const Where& p, int distance, int late)
{
    const int n = roundHalfUp(float(p.w + 80) * p.smoothedTime() / p.total);
    if (n > p.w)
        return p.w - distance < p.w - n + 80 ? (p.w - distance) * 255 / (p.w - n + 80) : 255;
    const int e = n - late - distance;
    return e <= 0 ? kNotDrawn : e < 81 ? e * 255 / 80 : 255;
}

int skewClosing(const Where& p, int distance)
{
    const int m = roundHalfUp(float(p.w + 80) * (p.total - p.smoothedTime()) / p.total);
    if (m < 80)
        return distance < m ? distance * 255 / m : 255;
    const int e = distance - m + 80;
    return e < 0 ? kNotDrawn : e < 81 ? e * 255 / 80 : 255;
}

int roll(const Where& p, double ratio)
{
    const double theta = p.smoothed() * 1.727875959425;
    if (theta < 1.57079632675) {
        if (!(std::tan(theta) > ratio))
            return kNotDrawn;
        const double lead = std::atan(std::tan(theta)) - std::atan(ratio);
        return lead <= 0.157079632675 ? truncated(lead * 255 / 0.157079632675) : 255;
    }
    const double angle = std::atan(ratio);
    if (theta >= 1.727875959425 || angle <= theta - 0.157079632675)
        return 255;
    return std::max(truncated((1.57079632675 - angle) * 255 / (1.727875959425 - theta)), 0);
}

double angleOf(const Where& p)
{
    const double dx = p.x - p.w / 2;
    const double dy = p.v - p.h / 2;
    if (dx < 0)
        return dy < 0 ? std::atan(dy / (dx + 0.0000001)) + 4.71238898025
                      : 3.1415926535 - std::atan(dx / (dy + 0.0000001));
    return dy < 0 ? std::atan(-dx / (dy + 0.0000001)) : std::atan(dy / (dx + 0.0000001)) + 1.57079632675;
}

int clockwise(const Where& p)
{
    const double theta = p.smoothed() * 6.440264939675;
    const double angle = angleOf(p);
    if (theta > 6.283185307) {
        return angle > theta - 0.157079632675 && angle < 6.283185307
            ? truncated((6.283185307 - angle) * 255 / (6.440264939675 - theta))
            : 255;
    }
    if (angle >= theta)
        return kNotDrawn;
    return theta - angle < 0.157079632675 ? truncated((theta - angle) * 255 / 0.157079632675) : 255;
}

int antiClockwise(const Where& p)
{
    const double theta = 6.283185307 - p.smoothed() * 6.440264939675;
    const double angle = angleOf(p);
    if (theta > 0) {
        if (angle < theta)
            return kNotDrawn;
        return angle - theta < 0.157079632675 ? truncated((angle - theta) * 255 / 0.157079632675) : 255;
    }
    return angle > 0 && angle < theta + 0.157079632675 ? truncated(angle * 255 / (theta + 0.157079632675))
                                                       : 255;
}

int diamond(const Where& p, float amount)
{
    const int n = roundHalfUp(amount);
    if (n >= p.w || n == 0)
        return n == 0 ? kNotDrawn : 255;
    const int cy = roundHalfUp(p.h * 0.5);
    const int cx = roundHalfUp(p.w * 0.5);
    const int half = roundHalfUp(double(n - std::abs(p.x - cx)) * cy / cx);
    const int r = p.h - 1 - p.v;
    return r >= cy - half && r < cy + half ? 255 : kNotDrawn;
}

struct Shape {
    const char* name;
    Blend blend;
    Weight weight;
    bool exchanged = false; ///< the old picture is drawn on the new one
    bool alphaToo = false;
};

const Shape kShapes[] = {
    {"round-zoom-out", Blend::single, [](const Where& p) { return softCircle(p, double(p.t) / p.total); }},
    {"round-zoom-in", Blend::division,
        [](const Where& p) { return softCircle(p, (double(p.total) - p.t) / p.total); }, true},
    {"diamond-zoom-out", Blend::division,
        [](const Where& p) { return diamond(p, float(p.w) * p.smoothedTime() / p.total); }, false, true},
    {"diamond-zoom-in", Blend::division,
        [](const Where& p) { return diamond(p, float(p.w) * (p.total - p.smoothedTime()) / p.total); }, true,
        true},
    {"skew-left-split", Blend::shift, [](const Where& p) { return skewOpening(p, leftDiagonal(p), 0); }},
    {"skew-right-split", Blend::shift, [](const Where& p) { return skewOpening(p, rightDiagonal(p), 80); },
        false, true},
    {"skew-left-merge", Blend::shift, [](const Where& p) { return skewClosing(p, leftDiagonal(p)); }},
    {"skew-right-merge", Blend::shift, [](const Where& p) { return skewClosing(p, rightDiagonal(p)); }},
    {"roll-clockwise", Blend::division, [](const Where& p) { return roll(p, double(p.x) / (p.h - p.v)); }},
    {"roll-anti-clockwise", Blend::division, [](const Where& p) { return roll(p, double(p.h - p.v) / p.x); }},
    {"sweep-clockwise", Blend::division, clockwise},
    {"sweep-anti-clockwise", Blend::division, antiClockwise},
};

class Reference : public test::TransitionFixture { };

Bgra expected(const Shape& shape, const Where& where, Bgra from, Bgra to)
{
    if (shape.exchanged)
        std::swap(from, to);
    const int a = shape.weight(where);
    if (a == kNotDrawn)
        return from;
    const auto byte = [&](u8 f, u8 t) {
        switch (shape.blend) {
        case Blend::shift:
            return pixels::shiftBlend(f, t, a);
        case Blend::division:
            return pixels::divisionBlend(f, t, a);
        case Blend::single:
            break;
        }
        return pixels::floatBlend(f, t, a);
    };
    return {byte(from.b, to.b), byte(from.g, to.g), byte(from.r, to.r),
        shape.alphaToo ? byte(from.a, to.a) : from.a};
}

TEST_F(Reference, SegmentsGiveTheWeightThatEveryPixelHasOnItsOwn)
{
    for (const Shape& shape : kShapes) {
        for (const auto [w, h] :
            {pixels::Extent{1, 7}, {9, 1}, {64, 48}, {37, 23}, {301, 200}, {200, 301}, {1001, 16}}) {
            open(shape.name, w, h);
            fromFrame().fillWithNoise(unsigned(w));
            toFrame().fillWithNoise(unsigned(h));
            for (int step = 0; step <= 24; ++step) {
                const float total = 1.7f;
                const float t = std::min(total, total * float(step) / 24);
                const pixels::ConstView out = show(t, total);
                int wrong = 0;
                for (int v = 0; v < h; ++v) {
                    for (int x = 0; x < w; ++x) {
                        const std::size_t i = std::size_t(x);
                        wrong += out.pictureRow(v)[i]
                            != expected(shape, {x, v, w, h, t, total}, from().pictureRow(v)[i],
                                to().pictureRow(v)[i]);
                    }
                }
                ASSERT_EQ(wrong, 0) << shape.name << ", " << w << " x " << h << ", step " << step;
            }
        }
    }
}

TEST_F(Reference, WavesFollowTheLibrarysSineAndCosine)
{
    for (const auto [w, h] : {pixels::Extent{64, 48}, {37, 23}, {301, 200}}) {
        open("wave", w, h);
        fromFrame().fillWithNoise(1);
        toFrame().fillWithNoise(2);
        // The last time lies beyond the range of the vector version.
        for (const auto& [t, total] : {std::pair{0.01f, 2.0f}, {0.3f, 2.0f}, {1.1f, 2.0f}, {1.9f, 2.0f},
                 {3000.25f, 9000.0f}, {50000.5f, 60000.0f}}) {
            const pixels::ConstView out = show(t, total);
            const double diagonal = std::sqrt(double(w) * w + double(h) * h);
            const double phase = t * 8 * std::numbers::pi;
            const double radius = phase * (diagonal / 12) / (2 * std::numbers::pi);
            const double decay = 1 - double(t) / total;
            int wrong = 0;
            for (int v = 0; v < h; ++v) {
                for (int x = 0; x < w; ++x) {
                    const int dx = x - w / 2;
                    const int dy = v - h / 2;
                    const double d = std::sqrt(double(dx * dx + dy * dy));
                    Bgra pixel = from().pictureRow(v)[std::size_t(x)];
                    if (d < radius && roundHalfUp(radius * radius) != 0) {
                        const double angle = phase - d * (2 * std::numbers::pi / (diagonal / 12));
                        const int move = truncated(std::cos(angle) * d * 20 * decay / radius);
                        const int a = std::clamp(
                            roundHalfUp((1 - std::sin(angle)) * (decay * 255 / radius) * d), 0, 255);
                        const auto column = std::size_t(std::clamp(dx < 0 ? x - move : x + move, 0, w - 1));
                        const int row = std::clamp(dy < 0 ? v - move : v + move, 0, h - 1);
                        const Bgra f = from().pictureRow(row)[column];
                        const Bgra q = to().pictureRow(row)[column];
                        const auto byte = [a](int p, int n) { return u8((n * (255 - a) + p * a) / 255); };
                        pixel = {byte(f.b, q.b), byte(f.g, q.g), byte(f.r, q.r), f.a};
                    }
                    wrong += out.pictureRow(v)[std::size_t(x)] != pixel;
                }
            }
            EXPECT_EQ(wrong, 0) << w << " x " << h << " at " << t;
        }
    }
}

TEST(WordBlends, EqualTheByteBlendsForEveryByteAndWeight)
{
    int wrong = 0;
    for (int a = 0; a < 256; ++a) {
        for (int f = 0; f < 256; ++f) {
            for (int t = 0; t < 256; ++t) {
                // Neighbours at their extremes: a carry would reach the byte beside.
                const Bgra from{u8(f), 255, u8(255 - f), u8(f)};
                const Bgra to{u8(t), u8(t), 255, u8(255 - t)};
                const auto each = [&](auto blend) {
                    return Bgra{blend(from.b, to.b, a), blend(from.g, to.g, a), blend(from.r, to.r, a),
                        blend(from.a, to.a, a)};
                };
                wrong += pixels::shiftBlend(from, to, a)
                    != each([](int x, int y, int z) { return pixels::shiftBlend(x, y, z); });
                wrong += pixels::divisionBlend(from, to, a)
                    != each([](int x, int y, int z) { return pixels::divisionBlend(x, y, z); });
            }
        }
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace
