// The blend modes: every channel of the picture with the same channel of the texture.
#include "effects/am/blends/blendKernels.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/wordBlends.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;

// A blend with one colour, the only mode without a texture.
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

// How far a mode fades its texture towards white: by 100 less the percentage.
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

// A hard light whose fade follows the percentage in every run: the fade's mark is never cleared.
i32 hardLightWithFade(const Frame& f)
{
    return withFaded<hardLight>(f, cached<Fade>(f.block, kAmDirtyTable2, kAmDirtyTable));
}

// A linear burn whose fade keeps the percentage of its first run until the picture's size changes.
i32 linearBurnWithFade(const Frame& f)
{
    constexpr u32 kMarks = kAmDirtyTable | kAmDirtyTable2 | kAmDirtySize;
    return withFaded<burnt>(f, cached<Fade>(f.block, kMarks, kMarks));
}

constexpr EffectRow kRows[] = {
    {.id = 2049,
        .entry = {.place = 112, .name = "MergeColor", .guid = "1BA83E50-044A-4164-9140-1FA43407BC5E"},
        .shown = {.title = "Colour Wash", .summary = "Blends the picture with one colour."},
        .reads = {.colour = true},
        .defaults = {.green = 255, .blue = 255, .alpha = 128, .usageMask = 16},
        .second = Second::none,
        .apply = byRows(eachPixel<ColourWash>)},
    {.id = 2050,
        .entry = {.place = 113, .name = "MergeImage", .guid = "C11121FC-7AA9-4870-8158-39978E0ACD8E"},
        .shown = {.title = "Picture Overlay", .summary = "Lays a picture over by its alpha."},
        .texture = "MergeImage.png",
        .apply = byRows(eachPair<layOver>)},
    {.id = 2052,
        .entry = {.place = 114, .name = "AncientCanvas", .guid = "1C3593CE-611E-4718-A571-AC16D0675F57"},
        .shown = {.title = "Ancient Canvas", .summary = "Multiplies with the texture of an old canvas."},
        .texture = "AncientCanvas.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2053,
        .entry = {.place = 115, .name = "Filter1", .guid = "A099367D-DB59-46da-A69B-0B4B70F3CDFE"},
        .shown = {.title = "Filter", .summary = "Multiplies with a filter texture."},
        .texture = "Filter1.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2054,
        .entry = {.place = 116, .name = "OldPaper", .guid = "DF31D6E0-CC7D-4988-A412-D3DE68D0F203"},
        .shown = {.title = "Old Paper", .summary = "Multiplies with the texture of old paper."},
        .texture = "OldPaper.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2055,
        .entry = {.place = 117, .name = "Vignette1", .guid = "E86FE066-E985-41cb-82A8-3AC568E468BC"},
        .shown = {.title = "Vignette 1", .summary = "Multiplies with a vignette."},
        .texture = "Vignette1.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2056,
        .entry = {.place = 118, .name = "Vignette2", .guid = "E846392F-FDC8-425e-99E8-CE6AD71FC373"},
        .shown = {.title = "Vignette 2", .summary = "Multiplies with a vignette."},
        .texture = "Vignette2.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2057,
        .entry = {.place = 119, .name = "Vignette3", .guid = "29646456-8842-48aa-AF9D-5FF6E6C92F79"},
        .shown = {.title = "Vignette 3", .summary = "Multiplies with a vignette."},
        .texture = "Vignette3.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2058,
        .entry = {.place = 120, .name = "Vignette4", .guid = "28EAE3F0-0B8F-489a-B986-1D823C32D561"},
        .shown = {.title = "Vignette 4", .summary = "Multiplies with a vignette."},
        .texture = "Vignette4.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2059,
        .entry = {.place = 121, .name = "Vignette5", .guid = "59DB863F-7A01-4ba1-8F4C-2FE7146D787D"},
        .shown = {.title = "Vignette 5", .summary = "Multiplies with a vignette."},
        .texture = "Vignette5.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2060,
        .entry = {.place = 122, .name = "Vignette6", .guid = "FA3C2A99-8879-4bfb-8BFC-17F23AEA117B"},
        .shown = {.title = "Vignette 6", .summary = "Multiplies with a vignette."},
        .texture = "Vignette6.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2061,
        .entry = {.place = 123, .name = "WaterDrop3", .guid = "CCC467B3-EA7F-4c8a-9949-D9281C8809DD"},
        .shown = {.title = "Water Drop", .summary = "Multiplies with the picture of a water drop."},
        .texture = "WaterDrop3.png",
        .apply = byRows(eachPair<blended<multiplied>>)},
    {.id = 2072,
        .entry = {.place = 126, .name = "ColorExplosion", .guid = "1D6A44B8-D73D-4dd5-8B0A-44259E20ABE7"},
        .shown = {.title = "Colour Explosion", .summary = "Overlays a texture of bright colours."},
        .texture = "HardLight.png",
        .apply = asTable<overlaid>},
    {.id = 2073,
        .entry = {.place = 127, .name = "BlueExplosion", .guid = "4E3B761D-7A15-411a-A2E7-B0832D755F6D"},
        .shown = {.title = "Blue Explosion", .summary = "Overlays a texture of blue light."},
        .texture = "color_explosion.png",
        .apply = asTable<overlaid>},
    {.id = 2074, .last = 2076, .apply = asTable<overlaid>},
    {.id = 2077,
        .entry = {.place = 147, .name = "MergeStar", .guid = "A501137B-73A8-4183-97A2-E26E2E3C64AE"},
        .shown = {.title = "Star Overlay", .summary = "Overlays a texture of stars."},
        .texture = "pf_bubble4.png",
        .apply = asTable<overlaid>},
    {.id = 2078, .defaults = {.percent = 100}, .apply = asTable<overlaid>},
    {.id = 2081,
        .entry = {.place = 128, .name = "OldFilm", .guid = "7DEB610D-957B-41b1-A29B-0B13181BDB8C"},
        .shown = {.title = "Old Film", .summary = "Hard light of a film texture."},
        .texture = "Overlay.png",
        .reads = {.percent = {"Strength", "strength of the texture"}},
        .defaults = {.percent = 100},
        .apply = hardLightWithFade},
    {.id = 2082, .last = 2089, .defaults = {.percent = 100}, .apply = hardLightWithFade},
    {.id = 2090, .last = 2092, .defaults = {.percent = 60}, .apply = hardLightWithFade},
    {.id = 2093, .defaults = {.percent = 100}, .apply = hardLightWithFade},
    {.id = 2096, .apply = byRows(eachPair<blended<added>>)},
    {.id = 2097,
        .entry = {.place = 129, .name = "Shine1", .guid = "DD0449E6-7A2F-4e0a-A4EA-49A5FC8C48C1"},
        .shown = {.title = "Shine", .summary = "Adds a texture of light."},
        .texture = "LinearDodge.png",
        .apply = byRows(eachPair<blended<added>>)},
    {.id = 2098,
        .entry = {.place = 130, .name = "ShineB", .guid = "35B558CD-37D6-43aa-8AA2-1E3090524931"},
        .shown = {.title = "Second Shine", .summary = "Adds another texture of light."},
        .texture = "pf_shine2.png",
        .apply = byRows(eachPair<blended<added>>)},
    {.id = 2099,
        .entry = {.place = 146, .name = "Raindrop", .guid = "C8300A8C-A146-4ef5-BEA6-6EE337300959"},
        .shown = {.title = "Rain on Glass", .summary = "Adds a texture of rain drops."},
        .texture = "pf_raindrop.png",
        .apply = byRows(eachPair<blended<added>>)},
    {.id = 2100, .last = 2104, .apply = byRows(eachPair<blended<added>>)},
    {.id = 2107,
        .entry = {.place = 131, .name = "MergeLight", .guid = "2CCDF572-B641-4793-A060-329008690461"},
        .shown = {.title = "Light Leak", .summary = "Dodges the picture with a light texture."},
        .texture = "MergeLight.png",
        .apply = asTable<dodged>},
    {.id = 2110,
        .entry = {.place = 153, .name = "Dark", .guid = "F257B557-180B-400d-81EF-DF8B63B6262F"},
        .shown = {.title = "Darken", .summary = "The darker of picture and texture."},
        .texture = "Dark.png",
        .apply = byRows(eachPair<blended<darker>>)},
    {.id = 2111, .last = 2113, .apply = byRows(eachPair<blended<darker>>)},
    {.id = 2116, .last = 2135, .apply = byRows(eachPair<blended<screened>>)},
    {.id = 2136,
        .entry = {.place = 154, .name = "VignetteWhite", .guid = "77036E5E-515D-4bc8-841D-8804E7EC5705"},
        .shown = {.title = "White Vignette", .summary = "Screens with a white vignette."},
        .texture = "VignetteWhite.png",
        .apply = byRows(eachPair<blended<screened>>)},
    {.id = 2137, .last = 2149, .apply = byRows(eachPair<blended<screened>>)},
    {.id = 2150,
        .entry = {.place = 152, .name = "Screen", .guid = "20D18E32-E3C0-4063-8F0F-8E7C2DF00F7F"},
        .shown = {.title = "Screen", .summary = "Screens with a texture."},
        .texture = "Screen.png",
        .apply = byRows(eachPair<blended<screened>>)},
    {.id = 2151, .last = 2166, .apply = byRows(eachPair<blended<screened>>)},
    {.id = 2169,
        .entry = {.place = 151, .name = "SoftLight", .guid = "0A5DB296-72C5-4081-BA1F-32144DC4F172"},
        .shown = {.title = "Soft Light", .summary = "Soft light of a texture."},
        .texture = "SoftLight.png",
        .apply = asTable<softLight>},
    {.id = 2170, .last = 2174, .apply = asTable<softLight>},
    {.id = 2177,
        .entry = {.place = 150, .name = "MergeLinear", .guid = "662971AF-5A39-4d10-A0C3-26E447069242"},
        .shown = {.title = "Linear Burn", .summary = "Burns the picture with a texture."},
        .texture = "MergeLinear.png",
        .reads = {.percent = {"Strength", "strength of the texture, read on the first frame"}},
        .defaults = {.percent = 100},
        .apply = linearBurnWithFade},
    {.id = 2178, .defaults = {.percent = 40}, .apply = linearBurnWithFade},
    {.id = 2179, .apply = linearBurnWithFade},
    {.id = 2180, .last = 2184, .defaults = {.percent = 100}, .apply = linearBurnWithFade},
    {.id = 2191,
        .entry = {.place = 132, .name = "LinearLight", .guid = "99D88CB4-9229-4166-B283-197217758E0E"},
        .shown = {.title = "Linear Light", .summary = "Linear light of a texture."},
        .texture = "LinearLight.png",
        .apply = byRows(eachPair<blended<linearLight>>)},
};
static_assert(isSound(kRows));

const Registered registered{Family::texture, kRows};

} // namespace

} // namespace KEXSDK::am
