// Drops on a water surface: waves run on from frame to frame and refract the picture.
#include "core/Random.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/library/amTables.h"
#include "pixels/sample.h"

namespace KEXSDK::am {

namespace {

using pixels::Extent;
namespace rows = pixels::rows;

constexpr int kFirstDrops = 20;
constexpr int kDrops = 2;
constexpr int kBytesPerDrop = 4;

// Sums of heights wrap around: the buffer may hold anything when its block changed its id.
i32 wrapped(u32 x) { return i32(x); }

// A drop's place, size and depth all follow from one random byte; from 128 on its centre lies outside.
void castDrop(i32* plane, Extent size, int byte, int radiusRange, int depthRange)
{
    const int centreX = byte * size.width >> 7;
    const int centreY = byte * size.height >> 7;
    const int radius = byte * radiusRange >> 8;
    const int depth = byte * depthRange >> 8;
    for (int y = std::max(0, centreY - radius); y < std::min(size.height, centreY + radius); ++y)
        for (int x = std::max(0, centreX - radius); x < std::min(size.width, centreX + radius); ++x)
            if ((x - centreX) * (x - centreX) + (y - centreY) * (y - centreY) < radius * radius)
                plane[std::ptrdiff_t(y) * size.width + x] = -depth;
}

// Row y, off the border: the heights of the next step replace those of the step before last.
void moveRow(const i32* current, i32* next, int width)
{
#pragma GCC ivdep
    for (int x = 1; x < width - 1; ++x) {
        const u32 around =
            u32(current[x - width]) + u32(current[x - 1]) + u32(current[x + 1]) + u32(current[x + width]);
        const i32 height = wrapped(u32(wrapped(around) >> 1) - u32(next[x]));
        next[x] = wrapped(u32(height) - u32(height >> 5));
    }
}

void refractRow(pixels::ConstView src, pixels::Bgra* to, const i32* heights, Extent size, int y)
{
    pixels::sampleRow(src, to, 1, size.width - 1, [=](int x, auto at) {
        const u32 column = u32(x) + (u32(heights[x - 1]) - u32(heights[x + 1]));
        const u32 row = u32(y) + (u32(heights[x - size.width]) - u32(heights[x + size.width]));
        const bool inside = column < u32(size.width) && row < u32(size.height);
        return at({inside ? int(column) : x, inside ? int(row) : y});
    });
}

i32 raindrop(const Frame& f)
{
    AmEffectParams& block = f.block;
    const Extent size = f.dst.extent();
    const i64 cells = i64(size.width) * size.height;
    if (!ensureScratchC(block, 2 * i64(sizeof(i32)) * cells, kAmDirtySize))
        return kAmNoMemory;
    i32* const planes = static_cast<i32*>(block.scratchC);
    const bool second = (block.toggle & 1) != 0;
    i32* const current = planes + (second ? cells : 0);
    i32* const next = planes + (second ? 0 : cells);
    block.toggle = second ? 0 : 1;

    const int longer = std::max(size.width, size.height);
    const u8* bytes = amRandomBytes().data() + (pixels::threadRandom().next() & 0x1FF);
    if (takeDirty(block, kAmDirtySize)) {
        std::fill_n(planes, 2 * cells, 0);
        for (int i = 0; i < kFirstDrops; ++i, bytes += kBytesPerDrop)
            castDrop(current, size, *bytes, longer >> 3, 1000);
    }
    for (int i = 0; i < kDrops; ++i, bytes += kBytesPerDrop)
        castDrop(current, size, *bytes, (longer >> 5) * std::clamp(block.radius, 1, 100) / 100,
            percentOf(block) + 80);

    const int width = size.width;
    rows::anyOrderRuns(size, [&](int top, int end) {
        pixels::widest([=] {
            for (int y = std::max(top, 1); y < std::min(end, size.height - 1); ++y)
                moveRow(current + std::ptrdiff_t(y) * width, next + std::ptrdiff_t(y) * width, width);
        });
    });
    rows::anyOrderRuns(size, [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y) {
                const auto from = src.row(y);
                const auto to = dst.row(y);
                if (y == 0 || y == size.height - 1) {
                    std::memcpy(to.data(), from.data(), from.size_bytes());
                    continue;
                }
                to.front() = from.front();
                to.back() = from.back();
                refractRow(src, to.data(), next + std::ptrdiff_t(y) * width, size, y);
            }
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1036,
        .entry = {.place = 102, .name = "Raindrop", .guid = "9F471615-FA96-4296-9E58-E452E4BB6271"},
        .shown = {.title = "Water Drops", .summary = "Drops fall on a water surface over the picture."},
        .reads = {.percent = {"Depth", "depth of the drops"}, .radius = {"Drop Size", "size of the drops"}},
        .defaults = {.usageMask = 1},
        .random = true,
        .history = {History::kFromStart},
        .alpha = Alpha::computed,
        .apply = raindrop},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
