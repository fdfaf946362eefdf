// Looks that map every channel through a table.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
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

i32 sine(const Frame& f)
{
    const pixels::ByteTable curve = sineContrast(f.block.percent);
    pixels::mapTables(f.src, f.dst, {curve, curve, curve});
    return kAmOk;
}

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
    static const ByteTables thirdSeason = shifted(-45, -22, 45);
    static const ByteTables fourthSeason = shifted(90, 45, -90);
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
    static const ByteTables tables = [] {
        constexpr int kContrast = 5;
        const pixels::ByteTable curve = sineContrast(kContrast);
        const auto raised = [&](int by) {
            return pixels::tableOf([&](int i) { return clampByte(curve[std::size_t(i)] + by); });
        };
        return ByteTables{curve, raised(35), raised(41)};
    }();
    mapThenTables(
        f, [](pixels::Bgra p) { return pixels::grey(p, u8(y10(p))); }, tables);
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

constexpr EffectRow kRows[] = {
    {.id = 49,
        .entry = {.place = 49, .name = "Japaness", .guid = "30055315-346C-4ed0-BF83-572605B2CF59"},
        .shown = {.title = "Japanese", .summary = "Light colours with lifted blue."},
        .apply = byRows(throughCurves<kJapaness>)},
    {.id = 50,
        .entry = {.place = 50, .name = "CyanBlue", .guid = "E07018F9-29D3-441c-8531-CEA677B10339"},
        .shown = {.title = "Cyan Blue", .summary = "Moves the colours towards cyan and blue."},
        .apply = cyanBlue},
    {.id = 51,
        .entry = {.place = 51, .name = "LomoMovie", .guid = "234F2F06-5AA0-4307-BEF2-D3CA03747E2E"},
        .shown = {.title = "Lomo Movie", .summary = "Contrast with deep blue shadows."},
        .apply = byRows(throughCurves<kLomoMovie>)},
    {.id = 52,
        .entry = {.place = 52, .name = "CrossProcess", .guid = "0172CFF4-7FE5-46fe-91E6-6F6BFCD0D23F"},
        .shown = {.title = "Cross Process", .summary = "Colours of film developed in the wrong bath."},
        .apply = byRows(throughCurves<kCrossProcess>)},
    {.id = 53,
        .entry = {.place = 53, .name = "Retro", .guid = "EFFE7C7D-AA0F-4cb0-8C1C-CDE05D04BC97"},
        .shown = {.title = "Retro", .summary = "Warm lights over bluish shadows."},
        .apply = byRows(throughCurves<kRetro>)},
    {.id = 55,
        .entry = {.place = 55, .name = "Cinnamon", .guid = "971E3F12-8855-4a81-9C8F-3603A9F735DC"},
        .shown = {.title = "Cinnamon", .summary = "Muted red over lifted blue."},
        .apply = byRows(throughCurves<kCinnamon>)},
    {.id = 64, .apply = sine},
    {.id = 65,
        .entry = {.place = 63, .name = "FourSeason", .guid = "FB66DCAA-F85E-4be4-9470-9D6771AE26B8"},
        .shown = {.title = "Four Seasons", .summary = "Four bands with a look each."},
        .apply = byRows(fourSeason)},
    {.id = 67,
        .entry = {.place = 65, .name = "SunFlower", .guid = "534C741C-4450-4ea4-9D8C-BD54AD7ED668"},
        .shown = {.title = "Sunflower", .summary = "Golden lights and muted blue."},
        .needsCopy = true,
        .apply = byRows(throughCurves<kSunFlower>)},
    {.id = 68,
        .entry = {.place = 66, .name = "Romantic", .guid = "06540EAC-C188-426e-952D-7DD97435F6F9"},
        .shown = {.title = "Romantic", .summary = "Rosy shadows and soft lights."},
        .needsCopy = true,
        .apply = byRows(throughCurves<kRomantic>)},
    {.id = 69,
        .entry = {.place = 67, .name = "Holiday", .guid = "8B086E1E-BB01-4f3e-934B-5DB4ADA2567F"},
        .shown = {.title = "Holiday", .summary = "Faded sunny colours."},
        .needsCopy = true,
        .apply = byRows(throughCurves<kHoliday>)},
    {.id = 72,
        .entry = {.place = 69, .name = "BW_Yellow", .guid = "BECC0DB2-67E8-4a9c-BFFB-B1AFD8351811"},
        .shown = {.title = "Black and White, Yellow", .summary = "A contrasty grey tinted yellow."},
        .apply = byRows(blackAndYellow)},
    {.id = 74,
        .entry = {.place = 71, .name = "PurpleLomo", .guid = "56F86BED-AA95-4fb1-8DC8-49A5C15A7111"},
        .shown = {.title = "Purple Lomo", .summary = "Contrast with purple shadows."},
        .needsCopy = true,
        .apply = byRows(throughCurves<kPurpleLomo>)},
    {.id = 79,
        .entry = {.place = 76, .name = "FreshNew", .guid = "3F68EC3C-4003-488c-8BD4-4D6CA41E85C5"},
        .shown = {.title = "Fresh and New", .summary = "Lifted colours with a blue cast."},
        .apply = byRows(freshNew)},
    {.id = 80,
        .entry = {.place = 77, .name = "BlueTears", .guid = "23ED6584-3EB2-4451-80CE-89D3529DE5C8"},
        .shown = {.title = "Blue Tears", .summary = "Cold colours with strong blue."},
        .needsCopy = true,
        .apply = byRows(throughCurves<kBlueTears>)},
    {.id = 81,
        .entry = {.place = 78, .name = "PurpleLove", .guid = "F944258F-0E51-4f7b-979F-91E3E826E4FC"},
        .shown = {.title = "Purple Love", .summary = "Contrast with purple lights."},
        .needsCopy = true,
        .apply = byRows(throughCurves<kPurpleLove>)},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
