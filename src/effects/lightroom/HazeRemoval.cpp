// Dark channel, its local average, and the table that takes the haze off.
#include "effects/lightroom/HazeRemoval.h"

#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

namespace lightroom {

namespace {

using pixels::Bgra;

constexpr int kRadius = 7;

template <int kSign> void accumulate(u16* sums, const u8* row, int width)
{
#pragma GCC ivdep
    for (int x = 0; x < width; ++x)
        sums[x] = u16(sums[x] + kSign * row[x]);
}
void addRow(u16* sums, const u8* row, int width)
{
    pixels::widest([=] { accumulate<1>(sums, row, width); });
}
void subtractRow(u16* sums, const u8* row, int width)
{
    pixels::widest([=] { accumulate<-1>(sums, row, width); });
}

struct RowLevels {
    u32 darkSum = 0;
    int brightest = 0;
};

// dark[x] = the least colour byte of pixel x; answers the sum of those and the row's greatest colour byte.
RowLevels darkRow(const Bgra* from, u8* dark, int width)
{
    u32 sum = 0;
    int most = 0;
#pragma GCC ivdep
    for (int x = 0; x < width; ++x) {
        const Bgra p = pixels::load(from + x);
        const int least = std::min(std::min(int(p.b), int(p.g)), int(p.r));
        most = std::max(most, std::max(std::max(int(p.b), int(p.g)), int(p.r)));
        sum += u32(least);
        dark[x] = u8(least);
    }
    return {sum, most};
}

// The haze of a row; answers the largest average. `window` is the column sum kRadius before the first pixel,
// `across` and `down` count what lies inside the picture.
int hazeRow(
    const u16* window, const u16* across, int down, const u8* dark, double strength, u8* haze, int width)
{
    int most = 0;
#pragma GCC ivdep
    for (int x = 0; x < width; ++x) {
        u16 sum = 0;
        for (int i = 0; i <= 2 * kRadius; ++i)
            sum = u16(sum + window[x + i]);
        const int average = int(float(sum) / float(across[x] * down));
        most = std::max(most, average);
        haze[x] = u8(std::min(int(average * strength), int(dark[x])));
    }
    return most;
}

void clearRow(Bgra* line, const u8* haze, int width, const HazeRemoval::Table& table)
{
    for (int x = 0; x < width; ++x) {
        const auto& cleared = table[haze[x]];
        const Bgra p = line[x];
        line[x] = {cleared[p.b], cleared[p.g], cleared[p.r], p.a};
    }
}

// How many of the pixels within the radius lie in a line of this length.
int countAt(int position, int length)
{
    return std::min(position + kRadius, length - 1) - std::max(position - kRadius, 0) + 1;
}

} // namespace

HazeRemoval::Levels HazeRemoval::drawDark(pixels::ConstView picture)
{
    const int width = picture.width();
    const auto accumulateRows = [=, plane = dark_.data()](int first, int last, Levels& levels) {
        for (int y = first; y < last; ++y) {
            RowLevels row;
            pixels::widest([=, &row] {
                row = darkRow(picture.row(y).data(), plane + std::ptrdiff_t(y) * width, width);
            });
            levels.darkSum += row.darkSum;
            levels.brightest = std::max(levels.brightest, row.brightest);
        }
    };
    const auto join = [](Levels& left, const Levels& right) {
        left.darkSum += right.darkSum;
        left.brightest = std::max(left.brightest, right.brightest);
    };
    return pixels::rows::fold(picture.extent(), Levels{}, accumulateRows, join);
}

// Fills the haze plane from the dark channel; answers the channel's largest average.
int HazeRemoval::drawHaze(pixels::Extent size, double strength)
{
    const int width = size.width;
    const int height = size.height;
    const pixels::Scratch<u16> across(width);
    for (int x = 0; x < width; ++x)
        across[std::size_t(x)] = u16(countAt(x, width));

    const auto accumulateRows = [&](int first, int last, int& most) {
        // Sums of a column over the rows of the window, with room for the window at both ends of the row.
        // Even the full window of 225 bytes stays below 2^16.
        const pixels::Scratch<u16> sums(width + 2 * kRadius);
        std::ranges::fill(sums, u16(0));
        u16* const columns = sums.data() + kRadius;
        const auto dark = [&](int y) { return dark_.data() + std::ptrdiff_t(y) * width; };
        for (int y = std::max(first - kRadius, 0); y < std::min(first + kRadius, height); ++y)
            addRow(columns, dark(y), width);
        for (int y = first; y < last; ++y) {
            if (y + kRadius < height)
                addRow(columns, dark(y + kRadius), width);
            int rowMost = 0;
            pixels::widest([&, window = sums.data(), haze = haze_.data() + std::ptrdiff_t(y) * width] {
                rowMost = hazeRow(window, across.data(), countAt(y, height), dark(y), strength, haze, width);
            });
            most = std::max(most, rowMost);
            if (y >= kRadius)
                subtractRow(columns, dark(y - kRadius), width);
        }
    };
    const auto join = [](int& left, int right) { left = std::max(left, right); };
    return pixels::rows::fold(size, 0, accumulateRows, join);
}

void HazeRemoval::fillTable(int mostHaze, double light)
{
    for (int haze = 0; haze <= mostHaze; ++haze) {
        const double transmitted = 1 - haze / light;
        for (int v = 0; v < 256; ++v)
            table_[std::size_t(haze)][std::size_t(v)] =
                u8(pixels::clamped((v - haze) / transmitted, 0.0, 255.0));
    }
}

void HazeRemoval::apply(pixels::View picture, float amount)
{
    const std::size_t count = std::size_t(picture.width()) * picture.height();
    if (!(amount > 0) || !dark_.ensure(count) || !haze_.ensure(count))
        return;
    const Levels levels = drawDark(picture);
    const int darkness = int(levels.darkSum / count);
    const double strength = std::min(0.9, darkness * (double(amount) / 100 * 1.6) / 255);
    if (!(strength > 0))
        return;
    const int mostAverage = drawHaze(picture.extent(), strength);
    fillTable(int(mostAverage * strength), (levels.brightest + mostAverage) * 0.5);

    pixels::rows::anyOrder(picture.extent(), [&](int y) {
        const int width = picture.width();
        clearRow(picture.row(y).data(), haze_.data() + std::ptrdiff_t(y) * width, width, table_);
    });
}

} // namespace lightroom
