// Edges that turn about a point: sweeps, rolls and the pinwheel. Along half a row every angle is monotone, so
// a few steps of bisection find where the soft edge begins and ends, and only its pixels ask for their angle.
#include "effects/transitions/families.h"
#include "pixels/columns.h"

#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <ranges>

namespace transitions {

namespace {

constexpr double kTurn = 6.283185307;
constexpr double kEdge = 0.157079632675;
constexpr double kTurnAndEdge = 6.440264939675;
constexpr double kQuarter = 1.57079632675;
constexpr double kQuarterAndEdge = 1.727875959425;

// The first column of [first, last) with the property, which the columns after it share; last without one.
template <class Property> int firstColumn(int first, int last, Property property)
{
    const auto columns = std::views::iota(first, std::max(first, last));
    return *std::ranges::partition_point(columns, [&](int x) { return !property(x); });
}

enum class Shown { from, to };

/// A soft edge over some quantity q: zone(q) is 0, 1 or 2 and grows with q; zones 0 and 2 show one picture,
/// zone 1 mixes with weight(q), the weight of `to`.
template <class Zone, class Weight, class Estimate = std::nullptr_t> struct SoftEdge {
    Shown low;
    Shown high;
    Zone zone;
    Weight weight;
    Estimate estimate =
        nullptr; ///< a function: weight(q) in zone 1, within kMostOff or no number, for vectors
};
template <class Zone, class Weight> SoftEdge(Shown, Shown, Zone, Weight) -> SoftEdge<Zone, Weight>;
template <class Zone, class Weight, class Estimate>
SoftEdge(Shown, Shown, Zone, Weight, Estimate) -> SoftEdge<Zone, Weight, Estimate>;

constexpr double kMostOff = 1e-6;

// The arc tangent of 0 <= z <= 0.17, within 1e-12.
inline double smallArcTangent(double z)
{
    const double s = z * z;
    return z
        * (1 + s * (-1.0 / 3 + s * (1.0 / 5 + s * (-1.0 / 7 + s * (1.0 / 9 + s * (-1.0 / 11 + s / 13))))));
}

u8 byteOfWeight(double weight) { return pixels::clampByte(pixels::truncated(weight)); }

// weights[x - first] = the weight of column x for first <= x < end.
template <class Edge, class Quantity>
void weighColumns(int first, int end, const Edge& edge, Quantity quantity, const Scratch<u8>& weights)
{
    if constexpr (std::is_same_v<decltype(edge.estimate), std::nullptr_t>) {
        for (int x = first; x < end; ++x)
            weights[std::size_t(x - first)] = byteOfWeight(edge.weight(quantity(x)));
    } else {
        // An estimate says which byte the weight becomes unless it lies next to a whole number.
        const Scratch<u8> doubtful(weights.size());
        pixels::eachIndex(0, end - first,
            [=, estimate = edge.estimate, to = weights.data(), doubt = doubtful.data()](int i) {
                const double weight = pixels::clamped(estimate(quantity(first + i)), -1.0, 256.0) + 1;
                const int whole = int(weight);
                const double beyond = weight - whole;
                to[i] = u8(std::min(std::max(whole - 1, 0), 255));
                doubt[i] = u8(beyond < kMostOff || beyond > 1 - kMostOff);
            });
        for (int x = first; x < end; ++x)
            if (doubtful[std::size_t(x - first)] != 0)
                weights[std::size_t(x - first)] = byteOfWeight(edge.weight(quantity(x)));
    }
}

void show(const Line& line, Shown picture, int first, int last)
{
    if (picture == Shown::to)
        line.colour(first, last);
    else
        line.copy(line.from, first, last);
}

// Draws columns [first, last), along which quantity(x) rises or falls throughout.
template <class Edge, class Quantity>
void drawPiece(const Line& line, int first, int last, bool rising, const Edge& edge, Quantity quantity)
{
    const auto past = [&](int zones) {
        return [&, zones](int x) {
            const int zone = edge.zone(quantity(x));
            return (rising ? zone : 2 - zone) >= zones;
        };
    };
    const int soft = firstColumn(first, last, past(1));
    const int end = firstColumn(soft, last, past(2));
    const Scratch<u8> weights(end - soft);
    weighColumns(soft, end, edge, quantity, weights);

    show(line, rising ? edge.low : edge.high, first, soft);
    line.mix(soft, end, [a = weights.data(), soft](Bgra f, Bgra t, int x) {
        return coloursOf<pixels::divisionBlend>(f, t, a[x - soft]);
    });
    show(line, rising ? edge.high : edge.low, end, last);
}

// The angle about the centre is 0 upward and grows clockwise; the added ten-millionth keeps the divisions
// finite.
template <class Edge> void drawSweep(const Canvas& c, Edge edge)
{
    constexpr double kFinite = 0.0000001;
    drawRows(c, [=, cy = c.height / 2](const Line& line) {
        const int cx = line.width / 2;
        const int dy = line.v - cy;
        if (dy < 0) {
            drawPiece(line, 0, cx, true, edge,
                [=](int x) { return std::atan(dy / (x - cx + kFinite)) + 4.71238898025; });
            drawPiece(line, cx, line.width, true, edge,
                [=](int x) { return std::atan((cx - x) / (dy + kFinite)); });
        } else {
            drawPiece(line, 0, cx, false, edge,
                [=](int x) { return 3.1415926535 - std::atan((x - cx) / (dy + kFinite)); });
            drawPiece(line, cx, line.width, false, edge,
                [=](int x) { return std::atan(dy / (x - cx + kFinite)) + kQuarter; });
        }
    });
}

// Draws an edge that turns about the bottom left corner; ratio(x, rows above the corner) is the tangent of a
// pixel's angle there.
template <class Ratio> void drawRoll(const Canvas& c, const Progress& p, bool rising, Ratio ratio)
{
    const double theta = p.smoothed() * kQuarterAndEdge;
    const auto draw = [&](auto edge) {
        drawRows(c, [=, height = c.height](const Line& line) {
            drawPiece(line, 0, line.width, rising, edge,
                [=, rows = height - line.v](int x) { return ratio(double(x), double(rows)); });
        });
    };
    if (theta < kQuarter) {
        const double tangent = std::tan(theta);
        const double angle = std::atan(tangent);
        draw(SoftEdge{Shown::to, Shown::from,
            [=](double r) { return r >= tangent                 ? 2
                                : angle - std::atan(r) <= kEdge ? 1
                                                                : 0; },
            [=](double r) { return (angle - std::atan(r)) * 255 / kEdge; },
            [=](double r) { return smallArcTangent((tangent - r) / (1 + tangent * r)) * (255 / kEdge); }});
    } else {
        constexpr double kPastQuarter = kQuarter - std::numbers::pi / 2;
        const double band = kQuarterAndEdge - theta;
        // The last digits of an angle count in bands narrower than that.
        const double scale = band > 1e-6 ? 255 / band : std::numeric_limits<double>::quiet_NaN();
        draw(SoftEdge{Shown::to, Shown::to,
            [=](double r) { return theta < kQuarterAndEdge && std::atan(r) > theta - kEdge ? 1 : 0; },
            [=](double r) { return (kQuarter - std::atan(r)) * 255 / (kQuarterAndEdge - theta); },
            [=](double r) { return (smallArcTangent(1 / r) + kPastQuarter) * scale; }});
    }
}

} // namespace

void sweepClockwise(const Canvas& c, const Progress& p)
{
    const double theta = p.smoothed() * kTurnAndEdge;
    if (theta > kTurn) {
        drawSweep(c,
            SoftEdge{Shown::to, Shown::to,
                [=](double angle) { return angle >= kTurn       ? 2
                                        : angle > theta - kEdge ? 1
                                                                : 0; },
                [=](double angle) { return (kTurn - angle) * 255 / (kTurnAndEdge - theta); }});
    } else {
        drawSweep(c,
            SoftEdge{Shown::to, Shown::from,
                [=](double angle) { return angle >= theta       ? 2
                                        : theta - angle < kEdge ? 1
                                                                : 0; },
                [=](double angle) { return (theta - angle) * 255 / kEdge; }});
    }
}

void sweepAntiClockwise(const Canvas& c, const Progress& p)
{
    const double theta = kTurn - p.smoothed() * kTurnAndEdge;
    if (theta > 0) {
        drawSweep(c,
            SoftEdge{Shown::from, Shown::to,
                [=](double angle) { return angle < theta        ? 0
                                        : angle - theta < kEdge ? 1
                                                                : 2; },
                [=](double angle) { return (angle - theta) * 255 / kEdge; }});
    } else {
        drawSweep(c,
            SoftEdge{Shown::to, Shown::to,
                [=](double angle) { return angle <= 0           ? 0
                                        : angle < theta + kEdge ? 1
                                                                : 2; },
                [=](double angle) { return angle * 255 / (theta + kEdge); }});
    }
}

void rollClockwise(const Canvas& c, const Progress& p)
{
    drawRoll(c, p, true, [](double x, double rows) { return x / rows; });
}

void rollAntiClockwise(const Canvas& c, const Progress& p)
{
    // The ratio is infinite in column 0, where the angle is a right one.
    drawRoll(c, p, false, [](double x, double rows) { return rows / x; });
}

void pinwheel(const Canvas& c, const Progress& p)
{
    const double theta = p.smoothedTime() * std::numbers::pi / (2 * double(p.total()));
    if (theta < 0.01)
        return pixels::rows::copy(c.from, c.dst);
    drawRows(c, [=, cy = c.height / 2](const Line& line) {
        const int cx = line.width / 2;
        const int dy = std::abs(line.v - cy);
        if (dy == 0) {
            line.colour(0, line.width);
            return line.copy(line.from, cx, cx + 1);
        }
        // Blades open from the upright line toward the left above the centre and toward the right below it,
        // and from the level line on the other sides.
        const auto byUpright = [=](int x) { return theta > std::atan(double(std::abs(x - cx)) / dy); };
        const auto byLevel = [=](int x) { return theta > std::atan(double(dy) / std::abs(x - cx)); };
        if (line.v < cy) {
            const int left = firstColumn(0, cx + 1, byUpright);
            const int right = firstColumn(cx + 1, line.width, byLevel);
            line.colourBand(left, cx + 1);
            line.colour(right, line.width);
        } else {
            const int left = firstColumn(0, cx, std::not_fn(byLevel));
            const int right = firstColumn(cx, line.width, std::not_fn(byUpright));
            line.colourBand(cx, right);
            line.colour(0, left);
        }
    });
}

} // namespace transitions
