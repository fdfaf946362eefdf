// Rows and columns that lost their place: random walks, ripples and scattered pixels.
#include "core/Random.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/loops/carryThroughRows.h"
#include "pixels/Scratch.h"
#include "pixels/sample.h"

#include <cmath>
#include <numbers>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::widest;
namespace rows = pixels::rows;

constexpr u32 kOpaqueBlack = 0xFF000000;
constexpr int kEntries = 1024;
constexpr int kMask = kEntries - 1;

// A table of offsets in scratch C that goes on from frame to frame; null without memory.
const i16* ensureOffsets(AmEffectParams& block, bool& renewed, void (*build)(i16*, int percent))
{
    if (!ensureScratchC(block, kEntries * sizeof(i16), kAmDirtyTable2))
        return nullptr;
    i16* const offsets = static_cast<i16*>(block.scratchC);
    renewed = takeDirty(block, kAmDirtyTable2);
    if (renewed)
        build(offsets, std::clamp(block.percent, 1, 100));
    return offsets;
}

void buildWalk(i16* walk, int percent)
{
    pixels::RandomGenerator& random = pixels::threadRandom();
    int at = 0;
    for (int i = 0; i < kEntries; ++i) {
        const int draw = random.next() % 1000;
        at += draw < 5 * percent ? 1 : draw + 5 * percent > 1000 ? -1 : 0;
        walk[i] = i16(at);
    }
}

// A sine of random height at each entry, with a period of percent / 2 entries.
void buildRipple(i16* ripple, int percent)
{
    constexpr double kTwoTurns = 12.5663704;
    pixels::RandomGenerator& random = pixels::threadRandom();
    for (int i = 0; i < kEntries; ++i) {
        const int height = percent - (random.next() + i) % (2 * percent);
        ripple[i] = i16(std::abs(height) * 0.25 * std::sin(i * kTwoTurns / percent) + 0.5);
    }
}

// The offset of every row, and the table laid out for the picture's columns.
struct Offsets {
    pixels::Scratch<i32> ofRow;
    pixels::Scratch<i32> ofColumn;

    Offsets(const i16* table, pixels::Extent size) : ofRow(size.height), ofColumn(size.width)
    {
        for (std::size_t x = 0; x < ofColumn.size(); ++x)
            ofColumn[x] = table[x & kMask];
    }
};

i32 shake(const Frame& f)
{
    bool renewed = false;
    const i16* const walk = ensureOffsets(f.block, renewed, buildWalk);
    if (!walk)
        return kAmNoMemory;
    const int width = f.dst.width();
    const int height = f.dst.height();
    const Offsets offsets(walk, f.dst.extent());
    // A row starts where the walk stood at the end of the row before.
    const int base = pixels::threadRandom().next();
    int reached = renewed ? walk[kMask] : 0;
    for (int y = 0; y < height; ++y) {
        const int start = walk[(base + reached + y) & kMask];
        offsets.ofRow[std::size_t(y)] = start;
        reached = walk[(start + width - 1) & kMask] + y;
    }
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        widest([=, src = f.src, dst = f.dst, rowOffsets = offsets.ofRow.data(),
                   columnOffsets = offsets.ofColumn.data()] {
            for (int y = top; y < end; ++y) {
                Bgra* const to = dst.row(y).data();
                const int start = rowOffsets[y];
                const int first = std::clamp(-start, 0, width);
                const int last = std::clamp(width - start, first, width);
                std::fill_n(to, first, pixels::fromWord(kOpaqueBlack));
                std::fill(to + last, to + width, pixels::fromWord(kOpaqueBlack));
                pixels::sampleRow(src, to, first, last, [=](int x, auto at) {
                    const int column = x + start;
                    const int row = columnOffsets[column] + y;
                    const u32 fetched = at({column, std::clamp(row, 0, height - 1)});
                    return u32(row) < u32(height) ? fetched : kOpaqueBlack;
                });
            }
        });
    });
    return kAmOk;
}

i32 ripple(const Frame& f)
{
    bool renewed = false;
    const i16* const table = ensureOffsets(f.block, renewed, buildRipple);
    if (!table)
        return kAmNoMemory;
    const int width = f.dst.width();
    const int height = f.dst.height();
    const Offsets offsets(table, f.dst.extent());
    const int base = pixels::threadRandom().next();
    int reached = 0;
    for (int y = 0; y < height; ++y) {
        offsets.ofRow[std::size_t(y)] = table[(base + reached + y) & kMask];
        reached = std::clamp(table[(width - 1) & kMask] + y, 0, height - 1);
    }
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        widest([=, src = f.src, dst = f.dst, rowOffsets = offsets.ofRow.data(),
                   columnOffsets = offsets.ofColumn.data()] {
            for (int y = top; y < end; ++y)
                pixels::sampleRow(
                    src, dst.row(y).data(), 0, width, [=, shift = rowOffsets[y]](int x, auto at) {
                        return at({std::clamp(x + shift, 0, width - 1),
                            std::clamp(columnOffsets[x] + y, 0, height - 1)});
                    });
        });
    });
    return kAmOk;
}

// Scatters pixels by a walk through random offsets, in which each offset helps to select the next. A margin
// as wide as the longest offset stays as it is.
i32 jitter(const Frame& f)
{
    constexpr int kOffsets = 64;
    const int reach = std::max(std::clamp(f.block.percent / 5, 1, 20) / 2, 1);
    pixels::RandomGenerator& random = pixels::threadRandom();
    std::array<int, kOffsets> offsets;
    for (int& offset : offsets)
        offset = random.next() % (2 * reach) - reach;
    const int start = random.next() & (kOffsets - 1);
    const int width = f.dst.width();
    const auto at = [](int i) { return std::size_t(i) & (kOffsets - 1); };
    carryThroughRows(f, u32(start), [&](int y, u32 state) {
        const auto from = f.src.row(y);
        const auto to = f.dst.row(y);
        std::memcpy(to.data(), from.data(), from.size_bytes());
        if (y < reach || y >= f.dst.height() - reach)
            return state;
        int walk = int(state);
        for (int x = reach; x < width - reach; ++x) {
            const int row = y + offsets[at(walk + y + x)];
            walk = offsets[at(row + x)];
            to[std::size_t(x)] = f.src.at(x + walk, row);
        }
        return u32(walk);
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1025, .defaults = {.usageMask = 1}, .apply = jitter},
    {.id = 1030,
        .entry = {.place = 96, .name = "Shake", .guid = "8A6488D5-926F-4956-ACC6-4969C602D33C"},
        .shown = {.title = "Shake", .summary = "Shakes rows and columns at random."},
        .reads = {.percent = {"Unrest", "unrest, as it is at the first frame"}},
        .defaults = {.usageMask = 1},
        .random = true,
        .alpha = Alpha::computed,
        .apply = shake},
    {.id = 1031,
        .entry = {.place = 97, .name = "Ripple", .guid = "93A5CE9C-12A6-4860-A5DE-E79004D0D053"},
        .shown = {.title = "Ripple", .summary = "Small waves of random height."},
        .reads = {.percent = {"Wave Size", "length and height of the waves, as they are at the first frame"}},
        .defaults = {.usageMask = 1},
        .random = true,
        .alpha = Alpha::computed,
        .apply = ripple},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
