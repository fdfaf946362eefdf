// Looks of old film: stored curves under damage, and brightness that walks through a random table.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amTables.h"
#include "effects/am/looks/filmDamage.h"
#include "effects/am/loops/carryThroughRows.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"

#include <cstring>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ByteTable;
using pixels::ByteTables;
using pixels::clampByte;
using pixels::grey;
namespace rows = pixels::rows;

constexpr ByteTables kSeventies =
    curvesThrough({25, 78, 131, 184, 236}, {11, 67, 124, 180, 226}, {0, 55, 110, 166, 220});
constexpr ByteTables kXPro =
    curvesThrough({0, 39, 141, 222, 254}, {0, 0, 134, 220, 254}, {0, 83, 175, 233, 254});
constexpr ByteTables kSiena =
    curvesThrough({25, 78, 131, 184, 236}, {0, 54, 108, 162, 215}, {0, 48, 95, 143, 190});
constexpr ByteTables k1839 =
    curvesThrough({1, 64, 121, 175, 216}, {10, 61, 111, 162, 196}, {12, 55, 99, 142, 185});
constexpr ByteTable k1839Luma = curveThrough({27, 86, 141, 195, 207});
constexpr ByteTable kOldMovieBlueGreen = curveThrough({50, 98, 145, 193, 240});
constexpr ByteTable kOldMovieRed = curveThrough({120, 153, 185, 218, 250});

// Row y of src in dst, damaged.
Bgra* damagedRow(const Frame& f, const FilmDamage& damage, int y)
{
    copyRows(f, y, y + 1);
    Bgra* const row = f.dst.row(y).data();
    damage.applyToRow(row, y);
    return row;
}

template <const ByteTables& kTables> i32 damagedThroughCurves(const Frame& f)
{
    const FilmDamage damage(f.dst.extent(), pixels::threadRandom());
    rows::anyOrder(f.dst.extent(), [&](int y) {
        damagedRow(f, damage, y);
        const pixels::View row = f.dst.rows(y, y + 1);
        pixels::mapTables(row, row, kTables);
    });
    return kAmOk;
}

// A walk through random offsets or factors, four entries at a time. It goes on by the sum of the reds that
// it made.
class GroupWalk {
public:
    template <class Draw> GroupWalk(pixels::RandomGenerator& random, Draw draw)
    {
        for (int& value : values_)
            value = draw(random.next());
        start_ = u32(random.next() & 63);
    }

    u32 start() const { return start_; }

    /// make(pixel, value) gives the new pixel. Answers the index after the row.
    template <class Make> u32 walkRow(const Bgra* from, Bgra* to, int width, u32 index, Make make) const
    {
        const auto visit = [&](int x, u32 entry) -> u32 {
            const u32 made = pixels::toWord(make(from[x], values_[entry]));
            std::memcpy(to + x, &made, 4);
            return pixels::fromWord(made).r;
        };
        int x = 0;
        for (; x + 4 <= width; x += 4) {
            const u32 reds =
                visit(x, index) + visit(x + 1, index + 1) + visit(x + 2, index + 2) + visit(x + 3, index + 3);
            index = (index + 4 + reds) & 63;
        }
        for (; x < width; ++x)
            index = (index + 1 + visit(x, index)) & 63;
        return index;
    }

private:
    std::array<int, 68> values_;
    u32 start_;
};

i32 oldMovie(const Frame& f)
{
    const FilmDamage damage(f.dst.extent(), pixels::threadRandom());
    const GroupWalk walk(pixels::threadRandom(), [](int drawn) { return (drawn & 31) - 16; });
    carryThroughRows(f, walk.start(), [&](int y, u32 index) {
        Bgra* const row = damagedRow(f, damage, y);
        return walk.walkRow(row, row, f.dst.width(), index, [](Bgra p, int noise) -> Bgra {
            const auto s = std::size_t((p.b + p.r) >> 1);
            const u8 shade = clampByte(kOldMovieBlueGreen[s & ~std::size_t(7)] + noise);
            return {shade, shade, clampByte(kOldMovieRed[s] + noise), p.a};
        });
    });
    return kAmOk;
}

i32 year1839(const Frame& f)
{
    const GroupWalk walk(pixels::threadRandom(), [](int drawn) { return (drawn & 63) + 224; });
    carryThroughRows(f, walk.start(), [&](int y, u32 index) {
        const Bgra* const from = f.src.row(y).data();
        return walk.walkRow(from, f.dst.row(y).data(), f.dst.width(), index, [](Bgra p, int factor) -> Bgra {
            const auto shade = std::size_t(k1839Luma[std::size_t(y4(p))] * factor >> 8);
            return {k1839.b[shade], k1839.g[shade], k1839.r[shade], p.a};
        });
    });
    return kAmOk;
}

// A walk through the noise table. A pixel's shade is multiplied by the entry's factor, and the walk goes on
// by the factor, the product and `step`. The first two come from one multiplication: (256 f + shade f) >> 8
// is their sum.
class NoiseWalk {
public:
    template <class Factor> NoiseWalk(Factor factor, u32 step) : step_(step)
    {
        for (std::size_t i = 0; i < factors_.size(); ++i)
            factors_[i] = u32(factor(amRandomBytes()[i]));
    }

    /// shade(x) is a pixel's shade, store(x, product) takes the new one. Answers the place after the row.
    template <class Shade, class Store> u32 walkRow(int width, u32 place, Shade shade, Store store) const
    {
        for (int x = 0; x < width; ++x) {
            const u32 factor = factors_[place];
            const u32 sum = (256 + shade(x)) * factor >> 8;
            store(x, u8(sum - factor));
            place = (place + sum + step_) & 0x3FF;
        }
        return place;
    }

private:
    std::array<u32, 1024> factors_;
    u32 step_;
};

constexpr u32 unevenFactor(u8 noise) { return (noise >> 3) + 192u; }

void storeGrey(Bgra* to, Bgra source, u32 shade) { pixels::store(to, grey(source, u8(shade))); }

i32 year1920(const Frame& f)
{
    const FilmDamage damage(f.dst.extent(), pixels::threadRandom());
    const NoiseWalk walk(unevenFactor, 0);
    carryThroughRows(f, 0, [&](int y, u32 place) {
        Bgra* const row = damagedRow(f, damage, y);
        return walk.walkRow(
            f.dst.width(), place, [=](int x) { return u32(y4(row[x])); },
            [=](int x, u8 shade) { storeGrey(row + x, pixels::load(row + x), shade); });
    });
    return kAmOk;
}

i32 siena(const Frame& f)
{
    const FilmDamage damage(f.dst.extent(), pixels::threadRandom());
    // The noise table holds zeros: without a step of its own the walk would end at the first one.
    const NoiseWalk walk([](u8 noise) { return noise; }, 1);
    carryThroughRows(f, 0, [&](int y, u32 place) {
        Bgra* const row = damagedRow(f, damage, y);
        return walk.walkRow(
            f.dst.width(), place, [=](int x) { return u32(kSiena.r[row[x].r]); },
            [=](int x, u8 red) {
                row[x] = {kSiena.b[row[x].b], kSiena.g[row[x].g], red, row[x].a};
            });
    });
    return kAmOk;
}

// Every row walks from its own start.
i32 greyRetro(const Frame& f)
{
    std::array<u32, 1024> factors;
    for (std::size_t i = 0; i < factors.size(); ++i)
        factors[i] = unevenFactor(amRandomBytes()[i]);
    rows::anyOrder(f.dst.extent(), [&, width = f.dst.width()](int y) {
        const Bgra* const from = f.src.row(y).data();
        Bgra* const to = f.dst.row(y).data();
        u32 factor = 0;
        for (int x = 0; x < width; ++x) {
            const u32 s = u32(from[x].b + from[x].r) >> 1;
            factor = factors[(s * u32(x) + factor) & 0x3FF];
            storeGrey(to + x, pixels::load(from + x), s * factor >> 8);
        }
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 44,
        .entry = {.place = 44, .name = "OldMovie", .guid = "E4076D5F-116B-4dad-B1CE-EF9736498734"},
        .shown = {.title = "Old Movie", .summary = "Flickering sepia with dust and scratches."},
        .random = true,
        .apply = oldMovie},
    {.id = 45,
        .entry = {.place = 45, .name = "1839", .guid = "8D52123A-ADC8-42ad-B644-BBE48EAD44E7"},
        .shown = {.title = "1839", .summary = "The uneven brown of an early photograph."},
        .random = true,
        .apply = year1839},
    {.id = 46,
        .entry = {.place = 46, .name = "1920", .guid = "8CF2F56C-27AD-4cdd-8ACC-D697ED36170C"},
        .shown = {.title = "1920", .summary = "Uneven grey with dust and scratches."},
        .random = true,
        .apply = year1920},
    {.id = 47,
        .entry = {.place = 47, .name = "70s", .guid = "1A09570B-8B15-444b-A074-33685EE7E086"},
        .shown = {.title = "Seventies", .summary = "Faded warm colours with dust and scratches."},
        .random = true,
        .apply = damagedThroughCurves<kSeventies>},
    {.id = 48,
        .entry = {.place = 48, .name = "Siena", .guid = "8AFBAC44-E0E6-4cf0-99BC-398F544F9400"},
        .shown = {.title = "Siena", .summary = "Earth colours with grainy red, dust and scratches."},
        .random = true,
        .apply = siena},
    {.id = 54,
        .entry = {.place = 54, .name = "GrayRetro", .guid = "65C00650-633C-45f0-809D-6A605FAEE1A4"},
        .shown = {.title = "Grey Retro", .summary = "Grey with a streaky unevenness."},
        .random = true,
        .apply = greyRetro},
    {.id = 56,
        .entry = {.place = 56, .name = "XPro", .guid = "9B6C332D-A124-44fa-B1B9-F0ECE06FE088"},
        .shown = {.title = "X-Pro", .summary = "Hard contrast with cold shadows, dust and scratches."},
        .random = true,
        .apply = damagedThroughCurves<kXPro>},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
