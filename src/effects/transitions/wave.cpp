// A ring of waves that runs out from the centre.
#include "effects/transitions/families.h"
#include "pixels/columns.h"
#include "pixels/sample.h"

#include <bit>
#include <cmath>
#include <limits>
#include <ranges>

namespace transitions {

namespace {

constexpr double kPi = std::numbers::pi;

struct SineCosine {
    double sine;
    double cosine;
};

// Sine and cosine, right to the last digits of a double for 0 <= x <= kMost, in arithmetic that compiles to
// vectors: the standard library's functions would take most of a frame's time.
struct VectorSineCosine {
    static constexpr double kMost = 1e5;

    SineCosine operator()(double x) const
    {
        // x = quarter turns + a rest of at most an eighth turn; the constants are pi / 2 in pieces of which
        // the first two have room for the multiplication.
        constexpr double kToInteger = 6755399441055744.0;
        const double shifted = x * (2 / kPi) + kToInteger;
        const u64 quadrant = std::bit_cast<u64>(shifted);
        const double quarters = shifted - kToInteger;
        const double y = ((x - quarters * 0x1.921fb544p0) - quarters * 0x1.0b4611a6p-34)
            - quarters * 0x1.3198a2e037073p-69;
        const double z = y * y;
        const double s = y
            + y * z
                * (-1.66666666666666324348e-01
                    + z
                        * (8.33333333332248946124e-03
                            + z
                                * (-1.98412698298579493134e-04
                                    + z
                                        * (2.75573137070700676789e-06
                                            + z
                                                * (-2.50507602534068634195e-08
                                                    + z * 1.58969099521155010221e-10)))));
        const double c = 1 - 0.5 * z
            + z * z
                * (4.16666666666666019037e-02
                    + z
                        * (-1.38888888888741095749e-03
                            + z
                                * (2.48015872894767294178e-05
                                    + z
                                        * (-2.75573143513906633035e-07
                                            + z
                                                * (2.08757232129817482790e-09
                                                    + z * -1.13596475577881948265e-11)))));
        const double sine = quadrant & 1 ? c : s;
        const double cosine = quadrant & 1 ? s : c;
        return {quadrant & 2 ? -sine : sine, (quadrant + 1) & 2 ? -cosine : cosine};
    }
};

struct LibrarySineCosine {
    SineCosine operator()(double x) const { return {std::sin(x), std::cos(x)}; }
};

struct Ring {
    double phase;
    double radius;
    double waveNumber;
    double decay;
};

// How far the ring moves each column of a row, and the weights of `from`, by column. Rows as far above the
// centre as below it share them.
struct Displacement {
    int first; ///< columns [first, last) lie inside the ring
    int last;
    Scratch<int> moves;   ///< rows away from the centre
    Scratch<int> columns; ///< that the ring shows
    Scratch<u32> weights;

    explicit Displacement(int width)
        : first(0),
          last(0),
          moves(std::size_t(width)),
          columns(std::size_t(width)),
          weights(std::size_t(width))
    {
    }

    // For rows dy away from the centre. Call it inside widest().
    template <class SineCosineOf>
    void take(const Ring& ring, int dy, int width, const SineCosineOf& sineCosineOf)
    {
        const int cx = width / 2;
        const auto distance = [=](int dx) { return std::sqrt(double(dx * dx + dy * dy)); };
        const auto offsets = std::views::iota(0, width - cx + 1);
        const int reach =
            *std::ranges::partition_point(offsets, [&](int dx) { return distance(dx) < ring.radius; });
        first = std::max(cx - reach + 1, 0);
        last = reach > 0 ? std::min(cx + reach, width) : first;

        // Both halves of a row share what depends on the distance alone.
        const Scratch<int> moveAt{std::size_t(reach)};
        const Scratch<u32> weightAt{std::size_t(reach)};
        const auto ahead = [=, move = moveAt.data(), ofFrom = weightAt.data()](int dx) {
            const double d = distance(dx);
            const auto [sine, cosine] = sineCosineOf(ring.phase - d * ring.waveNumber);
            const double weight = (1 - sine) * (ring.decay * 255 / ring.radius) * d;
            // Inside the ring d is less than the radius, so both are small.
            move[dx] = int(cosine * d * 20 * ring.decay / ring.radius);
            ofFrom[dx] = u32(std::clamp(int(weight + 0.5), 0, 255));
        };
        pixels::eachIndex(0, reach, ahead);
        pixels::eachIndex(first, std::min(cx, last),
            [=, move = moveAt.data(), ofFrom = weightAt.data(), toMove = moves.data(),
                toColumn = columns.data(), toWeight = weights.data()](int x) {
                toMove[x] = move[cx - x];
                toColumn[x] = std::clamp(x - move[cx - x], 0, width - 1);
                toWeight[x] = ofFrom[cx - x];
            });
        pixels::eachIndex(std::max(cx, first), last,
            [=, move = moveAt.data(), ofFrom = weightAt.data(), toMove = moves.data(),
                toColumn = columns.data(), toWeight = weights.data()](int x) {
                toMove[x] = move[x - cx];
                toColumn[x] = std::clamp(x + move[x - cx], 0, width - 1);
                toWeight[x] = ofFrom[x - cx];
            });
    }
};

// The colours of both pixels, weighed and divided by 255, with the alpha of `f`.
constexpr u32 mixedColours(u32 f, u32 t, u32 ofFrom)
{
    using pixels::detail::kEvenBytes;
    const u32 ofTo = 255 - ofFrom;
    const u32 even = pixels::detail::lanesOver255((t & kEvenBytes) * ofTo + (f & kEvenBytes) * ofFrom);
    const u32 odd =
        pixels::detail::lanesOver255((t >> 8 & kEvenBytes) * ofTo + (f >> 8 & kEvenBytes) * ofFrom);
    return ((even | odd << 8) & kColourBytes) | (f & ~kColourBytes);
}

// Draws the displaced columns of row v. `outward` is 1 where rows away from the centre come later, -1 where
// they come earlier.
template <class Offset>
void drawColumns(const Canvas& c, Offset stride, int v, int outward, const Displacement& displaced)
{
    pixels::eachIndex(displaced.first, displaced.last,
        [=, last = c.height - 1, from = c.from.bytes(), to = c.to.bytes(), out = c.line(v).dst,
            moves = displaced.moves.data(), columns = displaced.columns.data(),
            weights = displaced.weights.data()](int x) {
            const int row = std::clamp(v + outward * moves[x], 0, last);
            const auto place = std::ptrdiff_t(Offset(last - row) * stride + Offset(columns[x]) * 4);
            const u32 mixed =
                mixedColours(pixels::wordAt(from + place, 0), pixels::wordAt(to + place, 0), weights[x]);
            pixels::store(out + x, pixels::fromWord(mixed));
        });
}

void drawDisplaced(const Canvas& c, int v, int outward, const Displacement& displaced)
{
    const Line line = c.line(v);
    line.copy(line.from, 0, displaced.first);
    // Twice as many pixels to a register when their offsets fit 32 bits.
    const std::ptrdiff_t stride = c.from.strideBytes();
    if (stride * c.height <= std::numeric_limits<i32>::max())
        drawColumns(c, i32(stride), v, outward, displaced);
    else
        drawColumns(c, i64(stride), v, outward, displaced);
    line.copy(line.from, displaced.last, line.width);
}

template <class SineCosineOf> void drawRing(const Canvas& c, const Ring& ring, SineCosineOf sineCosineOf)
{
    const int cy = c.height / 2;
    // Row cy comes first, and then the pairs as far above it as below it.
    pixels::rows::anyOrderRuns({2 * c.width, cy + 1}, [&](int top, int end) {
        pixels::widest([&, top, end] {
            Displacement displaced(c.width);
            for (int dy = top; dy < end; ++dy) {
                displaced.take(ring, dy, c.width, sineCosineOf);
                if (cy + dy < c.height)
                    drawDisplaced(c, cy + dy, 1, displaced);
                if (dy > 0)
                    drawDisplaced(c, cy - dy, -1, displaced);
            }
        });
    });
}

} // namespace

void wave(const Canvas& c, const Progress& p)
{
    const double diagonal = std::sqrt(double(c.width) * c.width + double(c.height) * c.height);
    const double waveLength = diagonal / 12;
    const double phase = double(p.time()) * 8 * kPi;
    const Ring ring{
        phase, phase * waveLength / (2 * kPi), 2 * kPi / waveLength, 1 - double(p.time()) / p.total()};
    if (pixels::roundHalfUp(ring.radius * ring.radius) == 0)
        return pixels::rows::copy(c.from, c.dst);
    if (phase <= VectorSineCosine::kMost)
        drawRing(c, ring, VectorSineCosine{});
    else
        drawRing(c, ring, LibrarySineCosine{});
}

} // namespace transitions
