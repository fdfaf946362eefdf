// Sliding sums along rows and down strips of columns.
#include "host/feather.h"

#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <algorithm>
#include <new>
#include <utility>

namespace host {

namespace {

constexpr int kStrip = 64; // columns that are summed side by side: two cache lines of a row
constexpr u32 kWide = 257; // spreads 0..255 over 16 bits

/// The mean of 2 radius + 1 values of 16 bits from their sum, rounded; of equal values exactly theirs. A sum
/// has at most 30 bits, so the inverse, rounded up, adds less than a quarter. The radius is above 0.
class Mean {
public:
    explicit Mean(int radius) : half_(u32(radius)), inverse_(0xFFFFFFFFu / u32(2 * radius + 1) + 1) { }
    u16 operator()(u32 sum) const { return u16(u64(sum + half_) * inverse_ >> 32); }

private:
    u32 half_;
    u32 inverse_;
};

void boxRow(const u16* from, u16* to, u32* sums, int width, int radius)
{
    if (radius == 0) {
        std::copy_n(from, width, to);
        return;
    }
    const int last = width - 1;
    u32 sum = u32(from[0]) * u32(radius + 1) + u32(from[last]) * u32(std::max(0, radius - last));
    for (int i = 1; i <= std::min(radius, last); ++i)
        sum += from[i];
    for (int x = 0; x < width; ++x) {
        sums[x] = sum;
        sum += u32(from[std::min(x + radius + 1, last)]) - u32(from[std::max(x - radius, 0)]);
    }
    const Mean mean(radius);
#pragma GCC ivdep
    for (int x = 0; x < width; ++x)
        to[x] = mean(sums[x]);
}

// Rows of `from` and `to` hold kStrip values, of which all are blurred.
void boxStrip(const u16* from, u16* to, int height, int radius)
{
    if (radius == 0) {
        std::copy_n(from, std::ptrdiff_t(height) * kStrip, to);
        return;
    }
    const int last = height - 1;
    const auto row = [&](int y) { return from + std::ptrdiff_t(y) * kStrip; };
    alignas(64) std::array<u32, kStrip> sums;
    for (int x = 0; x < kStrip; ++x)
        sums[std::size_t(x)] =
            u32(from[x]) * u32(radius + 1) + u32(row(last)[x]) * u32(std::max(0, radius - last));
    for (int y = 1; y <= std::min(radius, last); ++y) {
        const u16* const one = row(y);
        for (int x = 0; x < kStrip; ++x)
            sums[std::size_t(x)] += one[x];
    }
    const Mean mean(radius);
    for (int y = 0; y < height; ++y) {
        u16* const out = to + std::ptrdiff_t(y) * kStrip;
        const u16* const enters = row(std::min(y + radius + 1, last));
        const u16* const leaves = row(std::max(y - radius, 0));
#pragma GCC ivdep
        for (int x = 0; x < kStrip; ++x) {
            out[x] = mean(sums[std::size_t(x)]);
            sums[std::size_t(x)] += u32(enters[x]) - u32(leaves[x]);
        }
    }
}

// The rounded 257th.
inline u8 narrow(u16 value) { return u8((value + 128u) * 65281u >> 24); }

} // namespace

Feather::Feather(pixels::Extent size, double reach) : size_(size)
{
    const int whole = std::clamp(pixels::roundHalfUp(reach), 0, 3 * pixels::kLargestSide);
    radii_ = {(whole + 2) / 3, (whole + 1) / 3, whole / 3};
}

void Feather::blurRows(const u8* plane)
{
    const int width = size_.width;
    pixels::rows::anyOrderRuns(size_, [&](int top, int end) {
        const pixels::Scratch<u16> first{std::size_t(width)};
        const pixels::Scratch<u16> second{std::size_t(width)};
        const pixels::Scratch<u32> sums{std::size_t(width)};
        pixels::widest([&, top, end] {
            for (int y = top; y < end; ++y) {
                const u8* const from = plane + std::size_t(y) * std::size_t(width);
                for (int x = 0; x < width; ++x)
                    first[std::size_t(x)] = u16(from[x] * kWide);
                boxRow(first.data(), second.data(), sums.data(), width, radii_[0]);
                boxRow(second.data(), first.data(), sums.data(), width, radii_[1]);
                boxRow(first.data(), wide_.data() + std::size_t(y) * std::size_t(width), sums.data(), width,
                    radii_[2]);
            }
        });
    });
}

void Feather::blurColumns(u8* plane, int left) const
{
    const int columns = std::min(kStrip, size_.width - left);
    const std::size_t cells = std::size_t(size_.height) * kStrip;
    const pixels::Scratch<u16> first(cells);
    const pixels::Scratch<u16> second(cells);
    const auto at = [&](int y) { return std::size_t(y) * std::size_t(size_.width) + std::size_t(left); };
    for (int y = 0; y < size_.height; ++y) {
        u16* const row = first.data() + std::ptrdiff_t(y) * kStrip;
        std::copy_n(wide_.data() + at(y), columns, row);
        std::fill(row + columns, row + kStrip, u16(0));
    }
    pixels::widest([&] {
        boxStrip(first.data(), second.data(), size_.height, radii_[0]);
        boxStrip(second.data(), first.data(), size_.height, radii_[1]);
        boxStrip(first.data(), second.data(), size_.height, radii_[2]);
        for (int y = 0; y < size_.height; ++y) {
            const u16* const row = second.data() + std::ptrdiff_t(y) * kStrip;
            u8* const out = plane + at(y);
            const int count = columns;
#pragma GCC ivdep
            for (int x = 0; x < count; ++x)
                out[x] = narrow(row[x]);
        }
    });
}

void Feather::apply(u8* plane)
{
    if (radii_[0] == 0)
        return;
    if (!wide_.ensure(std::size_t(size_.width) * std::size_t(size_.height)))
        throw std::bad_alloc();
    blurRows(plane);
    pixels::rows::anyOrder({kStrip * size_.height, (size_.width + kStrip - 1) / kStrip},
        [&](int strip) { blurColumns(plane, strip * kStrip); });
}

} // namespace host
