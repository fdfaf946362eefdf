// Flames over the picture: seeded along one side, spread and cooled row by row.
#include "core/Random.h"
#include "effects/am/data/firePalette.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/library/amTables.h"
#include "pixels/columns.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::Extent;
namespace rows = pixels::rows;

constexpr int kSweeps = 3;

// Sets every third cell of the first rows, counted column by column, and the two cells before it in its
// column.
void seed(u32* plane, Extent size)
{
    constexpr int kSeededRows = 5;
    const int height = std::min(size.height, kSeededRows);
    int turn = 0;
    for (int x = 0; x < size.width; ++x) {
        const u8* bytes = amRandomBytes().data() + (pixels::threadRandom().next() & 0x1FF);
        for (int y = 0; y < height; ++y, turn = (turn + 1) % 3) {
            if (turn != 0)
                continue;
            const u32 byte = *bytes++;
            for (int back = std::max(y - 2, 0); back <= y; ++back)
                plane[std::ptrdiff_t(back) * size.width + x] = byte > 128 ? 2 * byte : 0;
        }
    }
}

// Spreads and cools one row, y >= 2. Cells are neighbours as they lie in memory: beyond a row's first cell
// lies the last one of the row before, and its last cell reads its own row's first one, which is new by then.
void spread(u32* row, int width)
{
    const u32* const before = row - width;
    const u32* const twoBefore = before - width;
    const auto mean = [=](int x) { return (twoBefore[x] + before[x - 1] + before[x + 1] + row[x]) >> 2; };
#pragma GCC ivdep
    for (int x = 0; x < width - 1; ++x)
        row[x] = mean(x);
    row[width - 1] = mean(width - 1);
}

// All sweeps in one pass over memory: a row is swept again as soon as no row of the sweep before reads it any
// more, and that is two rows later.
void spreadAll(u32* plane, Extent size)
{
    constexpr int kLag = 2;
    const int width = size.width;
    const auto levelStart = [=] {
        if (size.height > 1)
            std::memcpy(plane + width, plane, std::size_t(width) * sizeof(u32));
    };
    pixels::widest([=] {
        for (int y = 2; y < size.height + kLag * (kSweeps - 1); ++y) {
            // The first sweep has read row 1 for the last time.
            if (y == 2 + kLag)
                levelStart();
            for (int sweep = 0; sweep < kSweeps; ++sweep) {
                const int swept = y - kLag * sweep;
                if (swept >= 2 && swept < size.height)
                    spread(plane + std::ptrdiff_t(swept) * width, width);
            }
        }
    });
    levelStart();
}

// Colours with the opacity in the place of alpha, by the low byte of a cell.
std::array<u32, 256> coloursOf(int percent)
{
    std::array<u32, 256> colours;
    const int gain = 45 * percent / 200;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const int packed = kFirePalette[i];
        const int opacity = std::min(packed * gain * 20 / 64453, 255);
        colours[i] = pixels::toWord(
            {u8((packed & 31) * 8), u8((packed >> 3) & 252), u8((packed >> 8) & 248), u8(opacity)});
    }
    return colours;
}

// kStep is 1 for cells in the order of the columns, -1 for the reverse.
template <int kStep> void paint(const Bgra* from, Bgra* to, const u32* cells, int width, const u32* colours)
{
    pixels::mapColumns(from, to, 0, width, [=](int x, Bgra p) -> Bgra {
        const Bgra flame = pixels::fromWord(colours[cells[kStep * x] & 0xFF]);
        const auto blend = [a = flame.a](int c, int over) { return u8((c * (256 - a) + over * a) >> 8); };
        return {blend(p.b, flame.b), blend(p.g, flame.g), blend(p.r, flame.r), p.a};
    });
}

i32 frames(const Frame& f)
{
    const Extent size = f.dst.extent();
    const int width = size.width;
    const i64 cells = i64(width) * size.height;
    if (!ensureScratchC(f.block, i64(sizeof(u32)) * cells, kAmDirtySize | kAmDirtyTable))
        return kAmNoMemory;
    u32* const plane = static_cast<u32*>(f.block.scratchC);
    if (takeDirty(f.block, kAmDirtyTable))
        std::fill_n(plane, cells, 0u);
    seed(plane, size);
    spreadAll(plane, size);

    // The plane's first rows lie at the side that the flames start from. The picture's first row in memory
    // is never painted.
    const auto colours = coloursOf(percentOf(f.block));
    const bool rising = f.block.direction == 1;
    rows::anyOrderRuns(size, [&](int top, int end) {
        copyRows(f, top, std::min(end, 1));
        pixels::widest([=, src = f.src, dst = f.dst, table = colours.data()] {
            for (int y = std::max(top, 1); y < end; ++y) {
                const Bgra* const from = src.row(y).data();
                Bgra* const to = dst.row(y).data();
                if (rising)
                    paint<-1>(from, to, plane + std::ptrdiff_t(y) * width - 1, width, table);
                else
                    paint<1>(from, to, plane + std::ptrdiff_t(size.height - y) * width, width, table);
            }
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1037,
        .entry = {.place = 103, .name = "Frames", .guid = "0F0C071F-ADEF-4035-9F09-FEF186FADDF3"},
        .shown = {.title = "Wall of Flames", .summary = "Flames over the picture."},
        .reads = {.percent = {"Opacity", "opacity of the flames"},
            .direction = "0 from the top, 1 from the bottom"},
        .defaults = {.usageMask = 33},
        .random = true,
        .history = {History::kFromStart},
        .apply = frames},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
