// Folds and curls: a shaded strip travels over the picture and leaves the new one behind.
#include "effects/transitions/families.h"
#include "pixels/ByteTables.h"

#include <cmath>

namespace transitions {

namespace {

// The width of the curl in a picture of this width, both in pixels.
int curlWidth(int width)
{
    return width < 300 ? 32 : width < 400 ? 48 : width < 600 ? 56 : width < 800 ? 64 : 78;
}

int shadowStep(int width) { return width < 400 ? 8 : width < 600 ? 12 : width < 800 ? 20 : 28; }

constexpr int kBrightest = 235;

} // namespace

void blind1(const Canvas& c, const Progress& p)
{
    constexpr int kBands = 8;
    constexpr int kBandWidth = 20;
    constexpr int kMiddle = kBands / 2 * kBandWidth;
    constexpr std::array<double, kBands> kFactors{0.9, 0.8, 0.7, 0.6, 0.6, 0.7, 0.8, 0.9};

    const int front = pixels::truncated(p.smoothedPart(c.width + 2 * kMiddle) - 2 * kMiddle);
    std::array<pixels::ByteTable, kBands> shades;
    for (std::size_t band = 0; band < kBands; ++band) {
        const double factor = kFactors[band];
        shades[band] = pixels::tableOf([=](int i) { return u8(pixels::truncated(i * factor)); });
    }
    drawRows(c, [=, tables = shades.data()](const Line& line) {
        line.copy(line.to, 0, front + kMiddle + 1);
        line.copy(line.from, std::max(front + kMiddle + 1, 0), line.width);
        for (int band = 0; band < kBands; ++band) {
            const double factor = kFactors[std::size_t(band)];
            const u8* const shade = tables[band].data();
            for (int j = 0; j < kBandWidth; ++j) {
                const int x = front + band * kBandWidth + j;
                if (x < 0 || x >= line.width)
                    continue;
                const bool slat =
                    band < kBands / 2 ? j >= kBandWidth * factor : j <= kBandWidth - kBandWidth * factor;
                Bgra& out = line.dst[x];
                out = slat ? Bgra{0, 0, 0, out.a} : Bgra{shade[out.b], shade[out.g], shade[out.r], out.a};
            }
        }
    });
}

void roll(const Canvas& c, const Progress& p)
{
    const int n = std::clamp(p.smoothedAmount(c.width), 0, c.width);
    const int curl = std::min(n, curlWidth(c.width));
    const int last = std::min(n + curl, c.width);
    // The light on the curl: what a column adds to its colours, darkest at both edges.
    std::array<i16, 128> light;
    for (int j = 0; j < last - n; ++j) {
        const int middle = curl * 256;
        const int rise = j * 1024 > curl * 512 ? curl * 1024 - j * 1024 : j * 1024;
        light[std::size_t(j)] = i16((rise - middle) * 100 / middle);
    }
    drawRows(c, [=, lights = light.data()](const Line& line) {
        line.copy(line.to, 0, n);
        line.mix(n, last, [=](Bgra f, Bgra, int x) {
            const auto lit = [add = int(lights[x - n])](
                                 int byte) { return u8(std::clamp(byte + add, 0, kBrightest)); };
            return Bgra{lit(f.b), lit(f.g), lit(f.r), f.a};
        });
        line.copy(line.from, last, line.width);
    });
}

void rollRightTop(const Canvas& c, const Progress& p)
{
    // The fold is the line x + r = fold, r counted from the bottom; it starts in the bottom left corner.
    const double longer = std::max(c.width, c.height);
    const double shorter = std::min(c.width, c.height);
    const double diagonal =
        std::sqrt(2 * (longer - shorter) * (longer - shorter)) * 0.5 + std::sqrt(2 * shorter * shorter);
    const double distance = pixels::roundHalfUp(p.smoothed() * diagonal);
    const int fold = pixels::roundHalfUp(std::sqrt(2 * distance * distance));

    // Beyond the fold lies the curl, the back of the lifted paper: the old picture mirrored over the fold,
    // dark where it bends away. Like the shadow that it casts ahead it grows from nothing in the corner.
    const int curlEnd = fold + std::min(fold, pixels::roundHalfUp(3 * curlWidth(c.width) * 1.414));
    const int bend = std::max((curlEnd - fold) / 2, 1);
    const int shadow = std::min(fold, shadowStep(c.width)) / 2;

    drawRows(c, [=](const Line& line) {
        const int r = c.height - 1 - line.v;
        const int crossing = fold - r;
        line.copy(line.to, 0, crossing);
        line.copy(line.from, crossing, line.width);

        // Column x of the curl shows the column where the fold crosses this row, as high above the bottom as
        // x lies left of the fold's foot. Where that is outside the picture the paper has ended.
        const int curlLast = crossing >= 0 && crossing < line.width ? std::min(curlEnd - r, fold + 1) : 0;
        for (int x = std::max(crossing, 0); x < std::min(curlLast, line.width); ++x) {
            const int j = std::min(x - crossing, bend);
            const auto lit = [=](int byte) { return u8(std::min((byte - 16) * j / bend + 16, kBrightest)); };
            const Bgra back = c.from.at(crossing, fold - x);
            line.dst[x] = {lit(back.b), lit(back.g), lit(back.r), back.a};
        }

        // The shadow falls along the diagonal: a pixel lies in it when the curl covers the one `depth`
        // columns to the left and `depth` rows below.
        const int shadowLast = std::min({line.width, fold + shadow + 1, curlEnd - r + 2 * shadow});
        for (int x = std::max({curlLast, crossing, 0}); x < shadowLast; ++x) {
            const int depth = std::max({(x + r - curlEnd + 2) >> 1, x - fold, r - fold});
            if (depth < 1 || depth > shadow || x + r - 2 * depth < fold)
                continue;
            const auto dimmed = [=](int byte) { return u8(byte * (shadow + depth) / (2 * shadow)); };
            const Bgra paper = line.from[x];
            line.dst[x] = {dimmed(paper.b), dimmed(paper.g), dimmed(paper.r), paper.a};
        }
    });
}

} // namespace transitions
