// Sliding sums down the columns, prefix sums along the rows, and exact quotients.
#include "pixels/BoxBlur.h"

#include "pixels/Scratch.h"
#include "pixels/byteQuotient.h"
#include "pixels/rows.h"

#include <array>
#include <limits>

namespace pixels {

namespace {

// Columns that one task sums together: its sums stay in the nearest cache.
constexpr int kStrip = 64;

static_assert(u64{255} * kLargestSide * kLargestSide <= std::numeric_limits<u32>::max(),
    "the bytes of the largest picture must fit a 32-bit sum");

} // namespace

BoxBlur::BoxBlur(Extent size) : size_(size)
{
    const std::size_t bytesPerRow = std::size_t(size.width) * 4;
    if (!sums_.allocate((bytesPerRow + 4) * std::size_t(size.height)) || !widths_.allocate(bytesPerRow)
        || !inverses_.allocate(bytesPerRow))
        sums_.release();
}

// Cell (x + 1, y) becomes the sum over the square's rows in column x.
void BoxBlur::sumColumns(ConstView src, int left, int width, int radius)
{
    const int bytes = width * 4;
    alignas(64) std::array<u32, kStrip * 4> sum{};
    const auto at = [=](int y) { return reinterpret_cast<const u8*>(&src.at(left, y)); };
    const auto add = [&](const u8* line) {
        for (int i = 0; i < bytes; ++i)
            sum[std::size_t(i)] += line[i];
    };
    const auto subtract = [&](const u8* line) {
        for (int i = 0; i < bytes; ++i)
            sum[std::size_t(i)] -= line[i];
    };
    for (int y = 0; y < std::min(radius, size_.height); ++y)
        add(at(y));
    for (int y = 0; y < size_.height; ++y) {
        if (y + radius < size_.height)
            add(at(y + radius));
        if (y > radius)
            subtract(at(y - radius - 1));
        std::memcpy(cells(y) + std::size_t(left + 1) * 4, sum.data(), std::size_t(bytes) * sizeof(u32));
    }
}

void BoxBlur::averageRow(Bgra* to, int y, int radius)
{
    const int bytes = size_.width * 4;
    u32* const row = cells(y);
    std::array<u32, 4> prefix{};
    for (int i = 4; i < bytes + 4; i += 4) {
        for (int c = 0; c < 4; ++c) {
            prefix[std::size_t(c)] += row[i + c];
            row[i + c] = prefix[std::size_t(c)];
        }
    }

    // sum[i] is the prefix at the square's right end, which stops at the border, less the prefix before its
    // left end, where that lies inside the picture.
    const Scratch<u32> sums(bytes);
    u32* const sum = sums.data();
    const int sliding = std::max(0, size_.width - radius - 1) * 4;
    std::copy_n(row + 4 * (radius + 1), sliding, sum);
    for (int i = sliding; i < bytes; i += 4)
        std::memcpy(sum + i, prefix.data(), sizeof prefix);
#pragma GCC ivdep
    for (int i = 4 * std::min(radius, size_.width); i < bytes; ++i)
        sum[i] -= row[i - 4 * radius];

    const int height = std::min(y + radius + 1, size_.height) - std::max(y - radius, 0);
    const float inverseHeight = 1.0f / float(height);
    u8* const out = reinterpret_cast<u8*>(to);
    const u32* const widths = widths_.data();
    const float* const inverses = inverses_.data();
#pragma GCC ivdep
    for (int i = 0; i < bytes; ++i)
        out[i] = byteQuotient(sum[i], widths[i] * u32(height), inverses[i] * inverseHeight);
}

void BoxBlur::apply(ConstView src, View dst, int radius)
{
    radius = std::min(radius, std::max(size_.width, size_.height));
    for (int x = 0; x < size_.width; ++x) {
        const int width = std::min(x + radius + 1, size_.width) - std::max(x - radius, 0);
        std::fill_n(widths_.data() + 4 * x, 4, u32(width));
        std::fill_n(inverses_.data() + 4 * x, 4, kTraceLess / float(width));
    }
    rows::anyOrder({kStrip * size_.height, (size_.width + kStrip - 1) / kStrip}, [&](int strip) {
        const int left = strip * kStrip;
        widest([&, left] { sumColumns(src, left, std::min(kStrip, size_.width - left), radius); });
    });
    rows::anyOrderRuns(size_, [&](int top, int end) {
        widest([&, top, end] {
            for (int y = top; y < end; ++y)
                averageRow(dst.row(y).data(), y, radius);
        });
    });
}

} // namespace pixels
