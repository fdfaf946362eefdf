// Whole-frame blends and level changes.
#include "effects/transitions/families.h"
#include "pixels/ByteTables.h"

namespace transitions {

namespace {

// time / total as a weight of 0..255, in single precision.
int weightOf(float time, float total)
{
    return pixels::roundHalfUp(pixels::clamped(time * 255 / total, 0.0f, 255.0f));
}

// Blends a row; each term is shifted on its own, and the weights may add up to 256.
void mixWeighted(const Line& line, int fromWeight, int toWeight)
{
    const auto byte = [=](int f, int t) { return u8((t * toWeight >> 8) + (f * fromWeight >> 8)); };
    line.mix(0, line.width, [byte](Bgra f, Bgra t, int) {
        return Bgra{byte(f.b, t.b), byte(f.g, t.g), byte(f.r, t.r), f.a};
    });
}

} // namespace

void dissolve(const Canvas& c, const Progress& p)
{
    const int fromWeight = weightOf(p.total() - p.time(), p.total());
    const int toWeight = weightOf(p.time(), p.total());
    if (fromWeight == 255 || toWeight == 255)
        return pixels::rows::copy(fromWeight == 255 ? c.from : c.to, c.dst);
    drawRows(c, [=](const Line& line) { mixWeighted(line, fromWeight, toWeight); });
}

void fade(const Canvas& c, const Progress& p)
{
    const double half = p.total() / 2.0;
    const bool rising = p.easedTime() / p.total() > 0.5;
    const float level = float((rising ? p.time() - half : half - p.time()) / half);
    const pixels::ConstView source = 2 * double(p.time()) > p.total() ? c.to : c.from;
    drawRows(c, [=](const Line& line) {
        // All four bytes, alpha too, sink toward 16, the black of video.
        const u8* const in = reinterpret_cast<const u8*>(source.pictureRow(line.v).data());
        u8* const out = reinterpret_cast<u8*>(line.dst);
#pragma GCC ivdep
        for (int i = 0; i < 4 * line.width; ++i)
            out[i] = u8(int(float(in[i] - 16) * level + 16));
    });
}

void flash(const Canvas& c, const Progress& p)
{
    const double t = p.time();
    const double total = p.total();
    const double q = (3 * total * t * t - 2 * t * t * t) / (total * total) / total;
    const auto brightened = [](double factor) {
        return pixels::tableOf(
            [=](int i) { return u8(std::min(pixels::truncated(factor * (i + 10)), 255)); });
    };
    const auto levels = brightened(4 * (q >= 0.5 ? 1 - q : q) + 1);
    const u8* const level = levels.data();
    const bool mixing = q >= 0.3 && q < 0.7;
    const int fromWeight = mixing ? pixels::truncated((0.7 - q) / 0.4 * 255) : 0;
    drawRows(c, [=](const Line& line) {
        const Bgra* source = q < 0.3 ? line.from : line.to;
        if (mixing) {
            mixWeighted(line, fromWeight, 255 - fromWeight);
            source = line.dst;
        }
        for (int x = 0; x < line.width; ++x) {
            const Bgra own = pixels::load(source + x);
            pixels::store(line.dst + x, {level[own.b], level[own.g], level[own.r], level[own.a]});
        }
    });
}

} // namespace transitions
