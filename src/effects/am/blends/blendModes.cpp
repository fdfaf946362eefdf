// The blend modes: every channel of the picture with the same channel of the texture.
#include "effects/am/blends/blendKernels.h"
#include "effects/am/library/amDefaults.h"
#include "effects/am/library/amFilters.h"
#include "pixels/wordBlends.h"

#include <array>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;

// The only one without a texture.
struct ColourWash {
    int share;
    int b;
    int g;
    int r;
    explicit ColourWash(const AmEffectParams& block)
        : share(256 - block.alpha),
          b(block.blue * block.alpha),
          g(block.green * block.alpha),
          r(block.red * block.alpha)
    {
    }
    Bgra operator()(Bgra p) const
    {
        return {u8((p.b * share + b) >> 8), u8((p.g * share + g) >> 8), u8((p.r * share + r) >> 8), p.a};
    }
};

constexpr Bgra layOver(Bgra p, Bgra texture)
{
    Bgra mixed = ceilingBlend(p, texture, texture.a);
    mixed.a = p.a;
    return mixed;
}

// n / 100 for n up to 100 * 255; a plain division takes vectors several times the time.
constexpr int hundredth(u32 n) { return int(n * 5243 >> 19); }
static_assert([] {
    for (u32 n = 0; n <= 100 * 255; ++n)
        if (hundredth(n) != int(n / 100))
            return false;
    return true;
}());

// Pulls the texture towards white, by 100 less the percentage.
struct Fade {
    u8 percent;
    explicit Fade(const AmEffectParams& block) : percent(u8(percentOf(block))) { }
};

template <auto kBlend> i32 withFaded(const Frame& f, const Fade* fade)
{
    if (!fade)
        return kAmNoMemory;
    const u32 percent = std::min<u32>(fade->percent, 100);
    const u32 white = (100 - percent) * 255;
    pixels::rows::map2(f.src, f.second, f.dst, [=](Bgra p, Bgra texture) {
        const auto faded = [&](u32 b) { return hundredth(white + b * percent); };
        return Bgra{u8(kBlend(p.b, faded(texture.b))), u8(kBlend(p.g, faded(texture.g))),
            u8(kBlend(p.r, faded(texture.r))), p.a};
    });
    return kAmOk;
}

// The fade's mark is never cleared, so the fade follows the percentage.
i32 hardLightWithFade(const Frame& f)
{
    return withFaded<hardLight>(f, kept<Fade>(f.block, kAmDirtyTable2, kAmDirtyTable));
}

// Keeps the percentage of its first run until the picture's size changes.
i32 linearBurnWithFade(const Frame& f)
{
    constexpr u32 kMarks = kAmDirtyTable | kAmDirtyTable2 | kAmDirtySize;
    return withFaded<burnt>(f, kept<Fade>(f.block, kMarks, kMarks));
}

struct Mode {
    IdRange ids;
    Effect run;
};

constexpr Mode kModes[] = {
    {{2050, 2050}, eachPair<layOver>},
    {{2052, 2061}, eachPair<blended<multiplied>>},
    {{2072, 2078}, asTable<overlaid>},
    {{2081, 2093}, hardLightWithFade},
    {{2096, 2104}, eachPair<blended<added>>},
    {{2107, 2107}, asTable<dodged>},
    {{2110, 2113}, eachPair<blended<darker>>},
    {{2116, 2166}, eachPair<blended<screened>>},
    {{2169, 2174}, asTable<softLight>},
    {{2177, 2184}, linearBurnWithFade},
    {{2191, 2191}, eachPair<blended<linearLight>>},
};

constexpr std::size_t rowCount()
{
    std::size_t count = 1;
    for (const Mode& mode : kModes)
        count += std::size_t(mode.ids.last - mode.ids.first + 1);
    return count;
}

constexpr auto kRows = [] {
    std::array<EffectRow, rowCount()> rows{};
    std::size_t next = 0;
    rows[next++] = {2049, eachPixel<ColourWash>};
    for (const Mode& mode : kModes)
        for (i32 id = mode.ids.first; id <= mode.ids.last; ++id)
            rows[next++] = {id, mode.run, nullptr, Source::any, Second::alike};
    return rows;
}();
static_assert(idsAscend(kRows));

} // namespace

std::span<const EffectRow> blendModes() { return kRows; }

} // namespace KEXSDK::am
