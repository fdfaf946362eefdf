// Rain on water: now and then a flat drop falls and its waves run over the picture.
#include "effects/cpu/WaterSurface.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"

namespace KEXSDK {
namespace {

constexpr auto kRadius = Param<int>{"Radius", 100, {4, 400}, "size of a drop, four times its radius"}
                             .titled("Drop Size")
                             .in("pixels");
constexpr auto kDensity =
    Param<int>{"Desity", 2, {1, 10}, "a drop falls after 11 - n frames; from 10 on in every frame"}.titled(
        "Density");
constexpr auto kHeight =
    Param<int>{"Height", 321, {0, 2000}, "height that a drop adds to the water"}.titled("Drop Height");

constexpr int kDamping = 3;

class CRainDrop final : public CPureCEffect {
public:
    CRainDrop(u32 w, u32 h) : CPureCEffect(w, h), water_(extent(), kDamping)
    {
        declare(kRadius, kDensity, kHeight);
    }

    void processFrame(const u8* src, u8* dst) override
    {
        if (!water_.ready()) {
            pixels::rows::copy(input(src), output(dst));
            return;
        }
        if (pixels::rainFalls(get(kDensity)))
            letFall(get(kRadius) >> 2, get(kHeight));
        water_.renderAndStep(input(src), output(dst));
    }

private:
    void letFall(int radius, int height)
    {
        constexpr int kMargin = 20;
        const pixels::Extent size = extent();
        int y = random_.below(size.height) - kMargin;
        int x = random_.below(size.width) - kMargin;
        if (replaced(x, size.width, radius) && replaced(y, size.height, radius))
            water_.press({x, y}, radius, [=](i64) { return height; });
    }

    // Replaces a negative position by a random one where the whole drop has room; false when there is no
    // room.
    bool replaced(int& at, int extent, int radius)
    {
        if (at >= 0)
            return true;
        const i64 room = i64(extent) - 2 * i64(radius) - 1;
        if (room < 1)
            return false;
        at = radius + 1 + int(random_.next() % u64(room));
        return true;
    }

    pixels::WaterSurface water_;
    pixels::WaterRandom random_;
};

const Registration<CRainDrop> registered{{
    .guid = "D0A14E0A-298C-4adb-B82D-FDADA4E48A01",
    .name = "rain-drop",
    .title = "Rain Drop",
    .family = "distortion",
    .summary = "Drops fall on the picture as on water and their waves run over it.",
    .shared = true,
    .history = {History::kFromStart},
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
