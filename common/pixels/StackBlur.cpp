// The two passes of the Stack Blur as one kernel, which steps many lines of pixels at once.
#include "pixels/StackBlur.h"

#include "pixels/Scratch.h"
#include "pixels/rows.h"
#include "pixels/transpose.h"

#include <array>
#include <bit>

namespace pixels {

namespace {

// Pixels side by side that go through the blur together: parts of a row in the vertical pass, of a column in
// the horizontal one.
constexpr int kLanes = 32;
constexpr int kBytes = kLanes * 4;
// Columns that the horizontal pass transposes at once; a cache line of a row.
constexpr int kTile = 16;
// Source lines within reach of one step, and those that a tile brings early: a power of two, so that places
// are cheap and a tile lies in one piece.
constexpr u32 ringSize(int radius) { return std::bit_ceil(u32(2 * radius + 3 + kTile)); }

struct alignas(64) Line {
    std::array<u8, kBytes> bytes;
};

u32 loadWord(const u8* p)
{
    u32 word;
    std::memcpy(&word, p, sizeof word);
    return word;
}
void storeWord(u8* p, u32 word) { std::memcpy(p, &word, sizeof word); }

u32 limitedToAlpha(u32 colours, u32 source)
{
    const u32 a = source >> 24;
    const u32 b = std::min(colours & 0xFF, a);
    const u32 g = std::min(colours >> 8 & 0xFF, a);
    const u32 r = std::min(colours >> 16 & 0xFF, a);
    return b | g << 8 | r << 16 | a << 24;
}

/// The sums of one line of pixels. `slope` is what the weighted sum gains on the way to the next pixel: the
/// radius + 1 pixels ahead of the centre less the radius + 1 up to it.
class Stack {
public:
    Stack(int count, int radius)
        : count_(count),
          radius_(radius),
          divisor_(stackDivisor(radius)),
          ring_(ringSize(radius))
    {
    }

    /// Where to store source line `i`; lines are stored in order.
    Line& slot(int i) { return ring_[u32(i) & (ring_.size() - 1)]; }
    /// The last source line that step(i) needs.
    int reach(int i) const { return std::min(i + radius_ + 2, count_ - 1); }

    /// Makes the sums for line 0; the lines up to reach(0) must be stored.
    void start()
    {
        sum_.fill(0);
        slope_.fill(0);
        add(0, u32(radius_ + 1) * u32(radius_ + 2) / 2, 0u - u32(radius_ + 1));
        for (int k = 1; k <= radius_ + 1; ++k)
            add(k, u32(radius_ + 1 - k), 1);
    }

    /// Gives the blurred line i; lines come in order, and those up to reach(i) must be stored.
    void step(int i, Line& result)
    {
        const u8* const first = at(i - radius_);
        const u8* const next = at(i + 1);
        const u8* const last = at(i + radius_ + 2);
        const StackDivisor by = divisor_;
        u8* const out = result.bytes.data();
#pragma GCC ivdep
        for (int b = 0; b < kBytes; ++b) {
            out[b] = u8(sum_[std::size_t(b)] * by.multiplier >> by.shift);
            sum_[std::size_t(b)] += slope_[std::size_t(b)];
            slope_[std::size_t(b)] += u32(first[b]) + last[b] - 2u * next[b];
        }
        const u8* const centre = at(i);
#pragma GCC ivdep
        for (int x = 0; x < kLanes; ++x)
            storeWord(out + 4 * x, limitedToAlpha(loadWord(out + 4 * x), loadWord(centre + 4 * x)));
    }

private:
    const u8* at(int i) { return slot(std::clamp(i, 0, count_ - 1)).bytes.data(); }

    void add(int i, u32 weight, u32 ahead)
    {
        const u8* const line = at(i);
#pragma GCC ivdep
        for (int b = 0; b < kBytes; ++b) {
            sum_[std::size_t(b)] += weight * line[b];
            slope_[std::size_t(b)] += ahead * line[b];
        }
    }

    int count_;
    int radius_;
    StackDivisor divisor_;
    alignas(64) std::array<u32, kBytes> sum_;
    alignas(64) std::array<u32, kBytes> slope_;
    Scratch<Line> ring_;
};

// The rows of a strip lie far apart, where no processor looks ahead on its own.
constexpr int kRowsAhead = 16;

void fetchEarly(const Bgra* pixels, int count)
{
    constexpr int kCacheLine = 64 / int(sizeof(Bgra));
    for (int x = 0; x < count; x += kCacheLine)
        __builtin_prefetch(pixels + x, 1);
}

void copyPixels(u8* to, const u8* from, int count)
{
    if (count == kLanes)
        std::memcpy(to, from, kBytes);
    else
        std::memcpy(to, from, std::size_t(count) * 4);
}

// Blurs columns [left, left + width) of the picture, in place.
void blurColumns(View picture, int left, int width, int radius)
{
    const int height = picture.height();
    Stack stack(height, radius);
    int present = 0;
    const auto row = [=](int y) { return reinterpret_cast<u8*>(&picture.at(left, y)); };
    const auto fetchTo = [&](int last) {
        for (; present <= last; ++present) {
            fetchEarly(&picture.at(left, std::min(present + kRowsAhead, height - 1)), width);
            copyPixels(stack.slot(present).bytes.data(), row(present), width);
        }
    };
    fetchTo(stack.reach(0));
    stack.start();
    Line result;
    for (int y = 0; y < height; ++y) {
        fetchTo(stack.reach(y));
        stack.step(y, result);
        copyPixels(row(y), result.bytes.data(), width);
    }
}

// Blurs rows [top, top + height), at most kLanes of them. Tiles are transposed, so that a line is a column.
void blurRows(ConstView src, View dst, int top, int height, int radius)
{
    const int width = src.width();
    Stack stack(width, radius);
    int present = 0;
    const auto fetchTo = [&](int last) {
        while (present <= last) {
            const int count = std::min(kTile, width - present);
            transpose(reinterpret_cast<const u8*>(&src.at(present, top)), src.strideBytes(),
                stack.slot(present).bytes.data(), sizeof(Line), count, height);
            present += count;
        }
    };
    fetchTo(stack.reach(0));
    stack.start();
    std::array<Line, kTile> results;
    for (int left = 0; left < width; left += kTile) {
        const int count = std::min(kTile, width - left);
        for (int x = 0; x < count; ++x) {
            fetchTo(stack.reach(left + x));
            stack.step(left + x, results[std::size_t(x)]);
        }
        transpose(results[0].bytes.data(), sizeof(Line), reinterpret_cast<u8*>(&dst.at(left, top)),
            dst.strideBytes(), height, count);
    }
}

// Calls fn(first, count) for the strips of kLanes lines that make up `lines` lines of `length` pixels.
template <class Fn> void anyOrderStrips(int lines, int length, Fn fn)
{
    const Extent strips{length * kLanes, (lines + kLanes - 1) / kLanes};
    rows::anyOrder(strips, [&](int strip) {
        const int first = strip * kLanes;
        fn(first, std::min(kLanes, lines - first));
    });
}

} // namespace

void stackBlur(ConstView src, View dst, int radius)
{
    anyOrderStrips(dst.height(), dst.width(),
        [=](int top, int height) { widest([=] { blurRows(src, dst, top, height, radius); }); });
    anyOrderStrips(dst.width(), dst.height(),
        [=](int left, int width) { widest([=] { blurColumns(dst, left, width, radius); }); });
}

} // namespace pixels
