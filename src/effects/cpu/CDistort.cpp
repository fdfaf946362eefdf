// A smooth warp: a mesh of 8 x 8 blocks, displaced by sines that fade toward the edges.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <cmath>

namespace KEXSDK {
namespace {

constexpr auto kAmplitude = Param<int>{"Amplitude", 100, {0, 200}, "strength of the warp"}.in("percent");
constexpr auto kFrequency =
    Param<int>{"Frequency", 100, {0, 1000}, "length of the waves, 100 for a radian per side"}.in("percent");

constexpr int kBlock = 8;

// Mesh points along a side: one at each end of every full block.
int pointsAlong(int side) { return side / kBlock + 1; }

// One axis of the mesh: what the displacement along it and the wave across it have in common.
struct Axis {
    Axis(int extent, double amplitude, double frequency)
        : last(extent - 1),
          quarter(last * 0.25 * amplitude),
          wave(pointsAlong(extent))
    {
        for (std::size_t i = 0; i < wave.size(); ++i)
            wave[i] = std::sin(int(i) * kBlock * frequency / last + 1.0);
    }
    /// Coordinate `at` displaced by the wave value of the other axis, in 16.16 fixed point.
    i32 displaced(int at, double otherWave) const
    {
        const double fade = 4 / last - 4 * at / (last * last);
        return pixels::truncated((at + otherWave * fade * at * quarter) * 65536);
    }

    double last;
    double quarter;
    pixels::Scratch<double> wave;
};

// A coordinate of the sample points of one mesh row, at the left edge of each block and the right one's
// steps below it. Fixed-point numbers wrap around.
struct Edge {
    explicit Edge(int points) : start(points), step(points) { }

    pixels::Scratch<u32> start;
    pixels::Scratch<u32> step;

    void set(int i, i32 lower, i32 upper) const
    {
        start[std::size_t(i)] = u32(lower);
        step[std::size_t(i)] = u32(i32(u32(upper) - u32(lower)) >> 3);
    }
};

// Fills one axis of the source coordinates of every column, for row j of a band of blocks.
void interpolate(const Edge& edge, int blocks, int j, i32* coordinates)
{
#pragma GCC ivdep
    for (int block = 0; block < blocks; ++block) {
        const std::size_t b = std::size_t(block);
        const u32 left = edge.start[b] + u32(j) * edge.step[b];
        const u32 right = edge.start[b + 1] + u32(j) * edge.step[b + 1];
        const u32 step = u32(i32(right - left) >> 3);
        for (int i = 0; i < kBlock; ++i)
            coordinates[block * kBlock + i] = i32(left + u32(i) * step);
    }
}

// Draws a row: each pixel is the one that its coordinates name in memory order, or the source's own where
// they lie outside the picture.
void drawRow(
    const u8* src, pixels::Bgra* to, pixels::Extent size, int y, int count, const i32* xs, const i32* ys)
{
    const int start = y * size.width;
    const u32 pixelCount = u32(size.width) * u32(size.height);
    // Coordinates that leave a row go on in the one beside it: the picture counts as one long row.
    const pixels::ConstView line(src, {int(pixelCount), 1});
    pixels::sampleRow(line, to, 0, count, [=, width = size.width](int x, auto at) {
        const u32 index = u32(width * (ys[x] >> 16) + (xs[x] >> 16));
        return at({int(index < pixelCount ? index : u32(start + x)), 0});
    });
}

void drawBand(pixels::ConstView src, pixels::View dst, const Axis& horizontal, const Axis& vertical, int band)
{
    const int blocks = dst.width() / kBlock;
    const int covered = blocks * kBlock;
    const int bottom = band * kBlock;
    const Edge x(pointsAlong(dst.width()));
    const Edge y(pointsAlong(dst.width()));
    for (int i = 0; i <= blocks; ++i) {
        const std::size_t b = std::size_t(band);
        const double across = horizontal.wave[std::size_t(i)];
        x.set(i, horizontal.displaced(i * kBlock, vertical.wave[b]),
            horizontal.displaced(i * kBlock, vertical.wave[b + 1]));
        y.set(i, vertical.displaced(bottom, across), vertical.displaced(bottom + kBlock, across));
    }
    const pixels::Scratch<i32> xs(covered);
    const pixels::Scratch<i32> ys(covered);
    for (int j = 0; j < kBlock; ++j) {
        interpolate(x, blocks, j, xs.data());
        interpolate(y, blocks, j, ys.data());
        drawRow(
            src.bytes(), dst.row(bottom + j).data(), dst.extent(), bottom + j, covered, xs.data(), ys.data());
    }
}

class CDistort final : public CPureCEffect {
public:
    CDistort(u32 w, u32 h) : CPureCEffect(w, h) { declare(kAmplitude, kFrequency); }

    void processFrame(const u8* src, u8* dst) override
    {
        const pixels::StableInput stable(input(src), output(dst));
        const pixels::ConstView from = stable.view();
        if (!from.bytes())
            return;
        const pixels::View to = output(dst);
        const double amplitude = get(kAmplitude) / 100.0;
        const double frequency = get(kFrequency) / 100.0;
        const Axis horizontal(to.width(), amplitude, frequency);
        const Axis vertical(to.height(), amplitude, frequency);
        const int bands = to.height() / kBlock;
        pixels::rows::anyOrder({to.width() * kBlock, bands},
            [&](int band) { pixels::widest([&, band] { drawBand(from, to, horizontal, vertical, band); }); });
        // The remainder beyond the last full blocks.
        pixels::rows::copyColumns(from, to, to.width() / kBlock * kBlock, to.width());
        for (int y = bands * kBlock; y < to.height(); ++y)
            std::ranges::copy(from.row(y), to.row(y).begin());
    }
};

const Registration<CDistort> registered{{
    .guid = "8E3062B2-FA4C-44be-8DF1-2187B4FBEB4A",
    .name = "distort",
    .title = "Distort",
    .family = "distortion",
    .summary = "Warps the picture smoothly, most in the middle and not at all at the edges.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
