// Colours by ICC profiles over Little CMS.
#include "effectengine/formats/ColourConversion.h"

#include <lcms2.h>

#include <array>
#include <string_view>

namespace tool {

namespace {

using Outcome = pictures::Decoded::Outcome;

struct Close {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct Delete {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Profile = std::unique_ptr<void, Close>;
using Curve = std::unique_ptr<cmsToneCurve, FreeCurve>;

constexpr u32 kResult = TYPE_BGRA_8;

/// How lcms is to take a picture's samples; 0 for a profile of other pixels.
u32 sampleFormat(const RawPicture& picture, cmsColorSpaceSignature space)
{
    const u32 bytes = BYTES_SH(picture.deep ? 2 : 1);
    if (picture.inks)
        return space == cmsSigCmykData ? COLORSPACE_SH(PT_CMYK) | CHANNELS_SH(4) | bytes : 0;
    // Three samples behind a grey: alpha last, where it is in the result.
    if (space == cmsSigGrayData)
        return COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3) | bytes;
    if (space == cmsSigRgbData)
        return COLORSPACE_SH(PT_RGB) | CHANNELS_SH(3) | EXTRA_SH(1) | DOSWAP_SH(1) | SWAPFIRST_SH(1) | bytes;
    return 0;
}

u8 alphaAt(const RawPicture& picture, std::size_t pixel)
{
    if (picture.inks)
        return 255;
    return picture.deep
        ? pictures::rounded8(reinterpret_cast<const u16*>(picture.samples.get())[pixel * 4 + 3])
        : picture.samples[pixel * 4 + 3];
}

/// The points of H.273's primaries that pictures use; null for others.
const Chromaticities* primariesOf(unsigned code)
{
    constexpr Chromaticities::Point kD65{0.3127, 0.3290}, kC{0.310, 0.316}, kDci{0.314, 0.351};
    static constexpr struct {
        unsigned code;
        Chromaticities colours;
    } kPrimaries[] = {
        {1, {kD65, {0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, 0}},
        {4, {kC, {0.67, 0.33}, {0.21, 0.71}, {0.14, 0.08}, 0}},
        {5, {kD65, {0.64, 0.33}, {0.29, 0.60}, {0.15, 0.06}, 0}},
        {6, {kD65, {0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, 0}},
        {7, {kD65, {0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, 0}},
        {9, {kD65, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, 0}},
        {11, {kDci, {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, 0}},
        {12, {kD65, {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, 0}},
    };
    for (const auto& row : kPrimaries)
        if (row.code == code)
            return &row.colours;
    return nullptr;
}

/// Light from a value, for H.273's transfer characteristics that are shares of white.
Curve curveOf(unsigned code)
{
    const double srgb[]{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    const double bt709[]{1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081};
    switch (code) {
    case 1:
    case 6:
    case 14:
    case 15:
        return Curve(cmsBuildParametricToneCurve(nullptr, 4, bt709));
    case 2: // not said, which is sRGB nearly always
    case 13:
        return Curve(cmsBuildParametricToneCurve(nullptr, 4, srgb));
    case 4:
        return Curve(cmsBuildGamma(nullptr, 2.2));
    case 5:
        return Curve(cmsBuildGamma(nullptr, 2.8));
    case 8:
        return Curve(cmsBuildGamma(nullptr, 1.0));
    default:
        return nullptr;
    }
}

std::vector<u8> profileFrom(const Chromaticities& colours, const Curve& curve)
{
    const cmsCIExyY white{colours.white.x, colours.white.y, 1};
    const auto light = [](Chromaticities::Point point) { return cmsCIExyY{point.x, point.y, 1}; };
    const cmsCIExyYTRIPLE lights{light(colours.red), light(colours.green), light(colours.blue)};
    cmsToneCurve* const curves[]{curve.get(), curve.get(), curve.get()};
    const Profile profile(curve ? cmsCreateRGBProfile(&white, &lights, curves) : nullptr);
    std::vector<u8> bytes;
    u32 size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return bytes;
    bytes.resize(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size))
        return {};
    // The library writes down when it made the profile: the same colours are to make the same bytes.
    constexpr std::size_t kDate = 24, kDateBytes = 12, kId = 84, kIdBytes = 16;
    constexpr std::array<u8, kDateBytes> kNoDay{7, 0xD0, 0, 1, 0, 1};
    std::copy(kNoDay.begin(), kNoDay.end(), bytes.begin() + kDate);
    std::fill_n(bytes.begin() + kId, kIdBytes, u8(0));
    return bytes;
}

class LcmsConversion final : public ColourConversion {
public:
    std::optional<RawPicture> toSrgb(const RawPicture& picture, std::span<const u8> bytes) const override
    {
        cmsSetLogErrorHandler(nullptr);
        const Profile from(cmsOpenProfileFromMem(bytes.data(), u32(bytes.size())));
        const Profile srgb(cmsCreate_sRGBProfile());
        if (!from || !srgb)
            return std::nullopt;
        const u32 format = sampleFormat(picture, cmsGetColorSpace(from.get()));
        if (format == 0)
            return std::nullopt;
        const std::unique_ptr<void, Delete> transform(
            cmsCreateTransform(from.get(), format, srgb.get(), kResult, INTENT_RELATIVE_COLORIMETRIC,
                cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_HIGHRESPRECALC));
        if (!transform)
            return std::nullopt;
        RawPicture result{.width = picture.width, .height = picture.height};
        allocate(result);
        if (!result.samples)
            throw std::bad_alloc();
        const u32 line = picture.width * (picture.deep ? 8 : 4);
        cmsDoTransformLineStride(transform.get(), picture.samples.get(), result.samples.get(), picture.width,
            picture.height, line, picture.width * 4, 0, 0);
        const std::size_t count = std::size_t{picture.width} * picture.height;
        for (std::size_t i = 0; i < count; ++i)
            result.samples[i * 4 + 3] = alphaAt(picture, i);
        return result;
    }

    std::vector<u8> profileOf(const ColourCode& code) const override
    {
        const Chromaticities* const colours = primariesOf(code.primaries);
        return colours ? profileFrom(*colours, curveOf(code.transfer)) : std::vector<u8>();
    }

    std::vector<u8> profileOf(const Chromaticities& colours) const override
    {
        return profileFrom(colours, Curve(cmsBuildGamma(nullptr, colours.gamma)));
    }
};

} // namespace

EFFECTENGINE_MODULE const ColourConversion* effectengineColours()
{
    static const LcmsConversion conversion;
    return &conversion;
}

} // namespace tool
