// Histogram equalisation of each colour byte.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/ByteTables.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

using Histogram = std::array<u32, 256>;
struct Histograms {
    Histogram b{}, g{}, r{};
};

Histograms histogramsOf(pixels::ConstView picture)
{
    const auto count = [&](int first, int last, Histograms& sums) {
        // Neighbouring pixels are often equal; two sets of counters keep their increments from waiting
        // for each other.
        Histograms odd{};
        for (int y = first; y < last; ++y) {
            const auto row = picture.row(y);
            std::size_t x = 0;
            for (; x + 1 < row.size(); x += 2) {
                ++sums.b[row[x].b], ++sums.g[row[x].g], ++sums.r[row[x].r];
                ++odd.b[row[x + 1].b], ++odd.g[row[x + 1].g], ++odd.r[row[x + 1].r];
            }
            if (x < row.size())
                ++sums.b[row[x].b], ++sums.g[row[x].g], ++sums.r[row[x].r];
        }
        for (std::size_t i = 0; i < 256; ++i)
            sums.b[i] += odd.b[i], sums.g[i] += odd.g[i], sums.r[i] += odd.r[i];
    };
    const auto join = [](Histograms& left, const Histograms& right) {
        for (std::size_t i = 0; i < 256; ++i)
            left.b[i] += right.b[i], left.g[i] += right.g[i], left.r[i] += right.r[i];
    };
    return pixels::rows::fold(picture.extent(), Histograms{}, count, join);
}

pixels::ByteTable equalising(const Histogram& histogram, u64 pixelCount)
{
    pixels::ByteTable table;
    u64 sum = 0;
    for (std::size_t i = 0; i < 256; ++i) {
        sum += histogram[i];
        table[i] = u8(std::min<u64>(sum * 256 / pixelCount, 255));
    }
    return table;
}

class CEqualize final : public CPureCEffect {
public:
    using CPureCEffect::CPureCEffect;

    void processFrame(const u8* src, u8* dst) override
    {
        const Histograms h = histogramsOf(input(src));
        const u64 count = u64(width()) * height();
        pixels::mapTables(input(src), output(dst),
            {.b = equalising(h.b, count), .g = equalising(h.g, count), .r = equalising(h.r, count)});
    }
};

const Registration<CEqualize> registered{{
    .guid = "F6B936B0-CF61-4da8-B532-8DC88617FB9C",
    .name = "equalize",
    .title = "Equalize",
    .family = "colour",
    .summary = "Spreads each channel's values evenly over the whole range.",
}};

} // namespace
} // namespace KEXSDK
