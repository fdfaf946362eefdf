// Looks of old film: stored curves under damage, and brightness that walks through a random table.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFilters.h"
#include "effects/am/library/amTables.h"
#include "effects/am/looks/filmDamage.h"
#include "effects/am/loops/walkRows.h"
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

// Random offsets or factors that a walk reads, four at a time. Where it goes depends on the reds that it
// made.
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
    walkRows(f, walk.start(), [&](int y, u32 index) {
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
    walkRows(f, walk.start(), [&](int y, u32 index) {
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
    walkRows(f, 0, [&](int y, u32 place) {
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
    walkRows(f, 0, [&](int y, u32 place) {
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
    {44, oldMovie},
    {45, year1839},
    {46, year1920},
    {47, damagedThroughCurves<kSeventies>},
    {48, siena},
    {54, greyRetro},
    {56, damagedThroughCurves<kXPro>},
};
static_assert(idsAscend(kRows));

} // namespace

std::span<const EffectRow> filmLooks() { return kRows; }

} // namespace KEXSDK::am
