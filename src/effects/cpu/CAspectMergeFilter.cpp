// Decorative frames: one effect, a pair of pictures for each of its GUIDs.
#include "effects/cpu/OverlayPicture.h"
#include "model/CSimpleEffect.h"
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

class CAspectMergeFilter : public CSimpleEffect {
public:
    CAspectMergeFilter(
        u32 w, u32 h, const char* file16x9, const char* file4x3, const Param<float>& strength = kStrength)
        : CSimpleEffect(w, h),
          overlay_({file16x9, file4x3})
    {
        declare(strength);
    }

    u32 getInputCount() override { return 1; }

    void run() override
    {
        const CEffectImage* const source = getInputImage(0);
        if (!source || !fits(*source))
            return;
        const CEffectImage* const overlay = overlay_.at(source->extent());
        const pixels::View output = getOutputImage()->view();
        if (!overlay)
            return copyOpaque(source->view(), output);
        const int strength = pixels::truncated(double(get(kStrength)) * kWhole);
        if (strength < 0 || strength > kWhole)
            return pixels::rows::map2(source->view(), overlay->view(), output, AnyStrength(strength));
        pixels::rows::map2(source->view(), overlay->view(), output, [strength](Bgra p, Bgra over) {
            Bgra blended = ceilingBlend(p, over, over.a * strength >> 8);
            blended.a = 255;
            return blended;
        });
    }

private:
    OverlayPicture overlay_;
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
}};

} // namespace
} // namespace KEXSDK
