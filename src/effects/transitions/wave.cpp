// A ring of waves that runs out from the centre.
#include "effects/transitions/families.h"

#include <bit>
#include <cmath>
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

template <class SineCosineOf> void drawRing(const Canvas& c, const Ring& ring, SineCosineOf sineCosineOf)
{
    drawRows(c, [=](const Line& line) {
        const int cx = line.width / 2;
        const int dy = line.v - c.height / 2;
        const auto distance = [=](int dx) { return std::sqrt(double(dx * dx + dy * dy)); };
        const auto offsets = std::views::iota(0, line.width - cx + 1);
        const int reach =
            *std::ranges::partition_point(offsets, [&](int dx) { return distance(dx) < ring.radius; });

        // Both halves of the row share what depends on the distance alone.
        const Scratch<int> moves(reach);
        const Scratch<int> weights(reach);
#pragma GCC ivdep
        for (int dx = 0; dx < reach; ++dx) {
            const double d = distance(dx);
            const auto [sine, cosine] = sineCosineOf(ring.phase - d * ring.waveNumber);
            const double weight = (1 - sine) * (ring.decay * 255 / ring.radius) * d;
            // Inside the ring d is less than the radius, so both are small.
            moves[std::size_t(dx)] = int(cosine * d * 20 * ring.decay / ring.radius);
            weights[std::size_t(dx)] = std::clamp(int(weight + 0.5), 0, 255);
        }

        const int first = std::max(cx - reach + 1, 0);
        const int last = reach > 0 ? std::min(cx + reach, line.width) : first;
        const Scratch<Bgra> from(line.width);
        const Scratch<Bgra> to(line.width);
        const Scratch<int> weightAt(line.width);
        const pixels::ConstView fromPicture = c.from;
        const pixels::ConstView toPicture = c.to;
#pragma GCC ivdep
        for (int x = first; x < last; ++x) {
            const std::size_t dx = std::size_t(std::abs(x - cx));
            const int column = std::clamp(x < cx ? x - moves[dx] : x + moves[dx], 0, line.width - 1);
            const int row =
                std::clamp(dy < 0 ? line.v - moves[dx] : line.v + moves[dx], 0, toPicture.height() - 1);
            from[std::size_t(x)] = fromPicture.pictureRow(row)[std::size_t(column)];
            to[std::size_t(x)] = toPicture.pictureRow(row)[std::size_t(column)];
            weightAt[std::size_t(x)] = weights[dx];
        }
        line.copy(line.from, 0, first);
        const Line displaced{line.v, line.width, line.dst, from.data(), to.data()};
        displaced.mix(first, last, [w = weightAt.data()](Bgra f, Bgra t, int x) {
            const auto byte = [a = w[x]](int p, int q) { return u8((q * (255 - a) + p * a) / 255); };
            return Bgra{byte(f.b, t.b), byte(f.g, t.g), byte(f.r, t.r), f.a};
        });
        line.copy(line.from, last, line.width);
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
