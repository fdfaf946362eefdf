// Looks that map every channel through a table.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFilters.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/numbers.h"

#include <cmath>
#include <cstring>
#include <numbers>

namespace KEXSDK::am {

pixels::ByteTable sineContrast(int percent)
{
    const double steepness = 1 + 0.005 * std::clamp(percent, 0, 100);
    return pixels::tableOf([&](int i) {
        const double angle = pixels::clamped((i - 128) * steepness * 3.1415926 / 256, -1.5707963, 1.5707963);
        return u8(std::min(255, pixels::truncated(std::sin(angle) * 128 + 128)));
    });
}

namespace {

using pixels::ByteTables;
using pixels::clampByte;

constexpr ByteTables kJapaness =
    curvesThrough({25, 90, 178, 224, 235}, {25, 101, 174, 228, 249}, {105, 151, 218, 254, 255});
constexpr ByteTables kLomoMovie =
    curvesThrough({0, 76, 161, 211, 255}, {0, 59, 121, 191, 250}, {0, 41, 86, 175, 229});
constexpr ByteTables kCrossProcess =
    curvesThrough({0, 51, 194, 254, 255}, {0, 88, 184, 236, 255}, {60, 97, 148, 186, 209});
constexpr ByteTables kRetro =
    curvesThrough({0, 60, 146, 220, 255}, {21, 78, 131, 189, 243}, {57, 96, 135, 164, 192});
constexpr ByteTables kCinnamon =
    curvesThrough({0, 52, 128, 186, 187}, {0, 52, 128, 204, 236}, {114, 114, 128, 204, 253});
constexpr ByteTables kSecondSeason =
    curvesThrough({0, 31, 56, 199, 255}, {0, 77, 134, 193, 255}, {0, 45, 94, 153, 254});

constexpr ByteTables kSunFlower =
    curvesThrough({43, 132, 210, 243, 254}, {36, 67, 137, 180, 192}, {69, 69, 92, 114, 122});
constexpr ByteTables kRomantic =
    curvesThrough({104, 151, 208, 236, 254}, {1, 69, 172, 227, 254}, {62, 62, 134, 192, 217});
constexpr ByteTables kHoliday =
    curvesThrough({57, 69, 188, 242, 254}, {37, 97, 170, 209, 222}, {97, 126, 154, 169, 173});
constexpr ByteTables kPurpleLomo =
    curvesThrough({35, 90, 178, 216, 235}, {20, 55, 175, 220, 235}, {104, 149, 192, 219, 232});
constexpr ByteTables kBlueTears =
    curvesThrough({0, 68, 155, 217, 253}, {5, 88, 171, 224, 253}, {34, 128, 195, 234, 252});
constexpr ByteTables kPurpleLove =
    curvesThrough({0, 39, 140, 222, 255}, {0, 0, 134, 220, 255}, {0, 81, 176, 232, 255});

template <const ByteTables& kTables> i32 throughCurves(const Frame& f)
{
    pixels::mapTables(f.src, f.dst, kTables);
    return kAmOk;
}

i32 throughOne(const Frame& f, const pixels::ByteTable& table)
{
    pixels::mapTables(f.src, f.dst, {table, table, table});
    return kAmOk;
}

i32 exposure(const Frame& f)
{
    const int offset = percentOf(f.block) - 50;
    return throughOne(f, pixels::tableOf([&](int i) {
        return clampByte(pixels::roundHalfUp(255 * std::log(i + 1.0) / std::log(256.0)) + offset);
    }));
}

i32 sine(const Frame& f) { return throughOne(f, sineContrast(f.block.percent)); }

ByteTables cyanBlueCurves()
{
    ByteTables curves;
    for (int i = 0; i < 256; ++i) {
        const int q = ((255 - i) * i) >> 7;
        const int u = i < 129 ? q : 255 - q;
        const int v = i == 0 ? 0 : std::max((i - 255) * 256 / i + 255, 0);
        const auto entry = std::size_t(i);
        curves.b[entry] = u8(pixels::truncated(u * 0.4 + i * 0.6));
        curves.g[entry] = u8(pixels::truncated(u * 0.3 + i * 0.7));
        curves.r[entry] = u8(pixels::truncated((v & 255) * 0.7 + i * 0.3));
    }
    return curves;
}

i32 cyanBlue(const Frame& f)
{
    if (!ensureScratchC(f.block, sizeof(ByteTables), kAmDirtyTable))
        return kAmNoMemory;
    ByteTables curves;
    if (takeDirty(f.block, kAmDirtyTable)) {
        curves = cyanBlueCurves();
        std::memcpy(f.block.scratchC, &curves, sizeof curves);
    } else {
        std::memcpy(&curves, f.block.scratchC, sizeof curves);
    }
    pixels::mapTables(f.src, f.dst, curves);
    return kAmOk;
}

ByteTables shifted(int b, int g, int r)
{
    const auto by = [](int shift) { return pixels::tableOf([=](int i) { return clampByte(i + shift); }); };
    return {by(b), by(g), by(r)};
}

// Four bands side by side, the first three with two black columns at their right ends. Pictures too
// narrow for the black columns have none.
i32 fourSeason(const Frame& f)
{
    constexpr int kBlack = 2;
    constexpr int kNarrow = 8;
    const ByteTables thirdSeason = shifted(-45, -22, 45);
    const ByteTables fourthSeason = shifted(90, 45, -90);
    const ByteTables* const bands[] = {&kCrossProcess, &kSecondSeason, &thirdSeason, &fourthSeason};
    const int width = f.dst.width();
    const int quarter = width >> 2;
    const int gap = width < kNarrow ? 0 : kBlack;
    for (int i = 0; i < 4; ++i) {
        const int first = i * quarter;
        const int last = i < 3 ? first + quarter : width;
        const int black = i < 3 ? last - gap : last;
        pixels::mapTables(f.src, f.dst, *bands[i], first, black);
        pixels::rows::map(f.src, f.dst, black, last, [](pixels::Bgra p) { return pixels::grey(p, 0); });
    }
    return kAmOk;
}

// A contrasty grey, tinted yellow.
i32 blackAndYellow(const Frame& f)
{
    constexpr int kContrast = 5;
    const pixels::ByteTable curve = sineContrast(kContrast);
    const auto raised = [&](int by) {
        return pixels::tableOf([&](int i) { return clampByte(curve[std::size_t(i)] + by); });
    };
    mapThenTables(
        f, [](pixels::Bgra p) { return pixels::grey(p, u8(y10(p))); }, {curve, raised(35), raised(41)});
    return kAmOk;
}

// Every channel moves towards white by its own share, then through an S of contrast.
i32 freshNew(const Frame& f)
{
    static const ByteTables tables = [] {
        const auto lifted = [](int k) {
            return pixels::tableOf([k](int c) {
                const int i = c - (c * k >> 7) + k;
                return clampByte(pixels::roundHalfUp(i - 12 * std::sin(2 * std::numbers::pi * i / 255)));
            });
        };
        return ByteTables{.b = lifted(81), .g = lifted(25), .r = lifted(31)};
    }();
    pixels::mapTables(f.src, f.dst, tables);
    return kAmOk;
}

template <const ByteTables& kTables> constexpr EffectRow look(i32 id)
{
    return {id, throughCurves<kTables>, nullptr, Source::kept};
}

constexpr EffectRow kRows[] = {
    {5, exposure},
    {49, throughCurves<kJapaness>},
    {50, cyanBlue},
    {51, throughCurves<kLomoMovie>},
    {52, throughCurves<kCrossProcess>},
    {53, throughCurves<kRetro>},
    {55, throughCurves<kCinnamon>},
    {64, sine},
    {65, fourSeason},
    look<kSunFlower>(67),
    look<kRomantic>(68),
    look<kHoliday>(69),
    {72, blackAndYellow},
    look<kPurpleLomo>(74),
    {79, freshNew},
    look<kBlueTears>(80),
    look<kPurpleLove>(81),
};
static_assert(idsAscend(kRows));

} // namespace

std::span<const EffectRow> curveLooks() { return kRows; }

} // namespace KEXSDK::am
