// Decorative frames: one effect, a pair of pictures for each of its GUIDs.
#include "effects/cpu/OverlayPicture.h"
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"

#include <algorithm>

namespace KEXSDK {
namespace {

using pixels::Bgra;

constexpr int kWhole = 256;

constexpr auto kStrength =
    Param<float>{"Strength", 1.0f, {0, 1}, "opacity of the frame; 0 leaves the picture"};
constexpr auto kFaintStrength =
    Param<float>{"Strength", 0.2f, {0, 1}, "opacity of the frame; 0 leaves the picture"};

// The overlay's blend for any strength that hosts give, be it negative or far beyond 256.
class AnyStrength {
public:
    explicit AnyStrength(int strength) : strength_(strength) { }

    Bgra operator()(Bgra p, Bgra over) const
    {
        // Beyond this weight every byte that differs has reached its end.
        constexpr i64 kMost = i64(kWhole) * kWhole;
        const int a = int(std::clamp(over.a * i64(strength_) >> 8, -kMost, kMost));
        const auto blended = [a](int from, int to) {
            return pixels::clampByte((to * a + from * (kWhole - a) + 255) >> 8);
        };
        return {blended(p.b, over.b), blended(p.g, over.g), blended(p.r, over.r), 255};
    }

private:
    int strength_;
};

class CAspectMergeFilter : public CRowEffect {
public:
    CAspectMergeFilter(
        u32 w, u32 h, const char* file16x9, const char* file4x3, const Param<float>& strength = kStrength)
        : CRowEffect(w, h),
          overlay_({file16x9, file4x3})
    {
        declare(strength);
    }

    void processRows(pixels::ConstView src, pixels::View dst, int first) const override
    {
        if (!picture_)
            return copyOpaque(src, dst);
        const pixels::ConstView overlay = picture_->view().rows(first, first + dst.height());
        if (strength_ < 0 || strength_ > kWhole)
            return pixels::rows::map2(src, overlay, dst, AnyStrength(strength_));
        pixels::rows::map2(src, overlay, dst, [strength = strength_](Bgra p, Bgra over) {
            Bgra blended = ceilingBlend(p, over, over.a * strength >> 8);
            blended.a = 255;
            return blended;
        });
    }

protected:
    void prepare() override
    {
        picture_ = overlay_.at(extent());
        strength_ = pixels::truncated(double(get(kStrength)) * kWhole);
    }

private:
    OverlayPicture overlay_;
    const CEffectImage* picture_ = nullptr;
    int strength_ = 0;
};

struct WindowShades final : CAspectMergeFilter {
    WindowShades(u32 w, u32 h)
        : CAspectMergeFilter(w, h, "WindowShades16_9.png", "WindowShades4_3.png", kFaintStrength)
    {
    }
};
const Registration<WindowShades> windowShades{{
    .guid = "A2BFFA17-14AA-4b46-8B73-9D9439E31660",
    .name = "window-shades",
    .title = "Window Shades",
    .family = "overlay",
    .summary = "The picture behind a window's shades.",
    .alpha = Alpha::opaque,
    .byRows = true,
}};

struct Woven final : CAspectMergeFilter {
    Woven(u32 w, u32 h) : CAspectMergeFilter(w, h, "Woven16_9.png", "Woven4_3.png", kFaintStrength) { }
};
const Registration<Woven> woven{{
    .guid = "DCDFA16D-FDAE-45b5-8758-6477B9B3819F",
    .name = "woven",
    .title = "Woven",
    .family = "overlay",
    .summary = "The picture in a woven frame.",
    .alpha = Alpha::opaque,
    .byRows = true,
}};

struct Concert final : CAspectMergeFilter {
    Concert(u32 w, u32 h) : CAspectMergeFilter(w, h, "Concert16_9.png", "Concert4_3.png") { }
};
const Registration<Concert> concert{{
    .guid = "0C38F204-F299-4de4-B481-7B94C155DE16",
    .name = "concert",
    .title = "Concert",
    .family = "overlay",
    .summary = "The picture on a concert's stage, between its lights and the crowd.",
    .alpha = Alpha::opaque,
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
