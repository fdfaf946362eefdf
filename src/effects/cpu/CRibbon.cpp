// The picture waves like a ribbon: every column is shifted by a sine.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Scratch.h"
#include "pixels/StableInput.h"
#include "pixels/gather.h"
#include "pixels/numbers.h"

#include <cmath>
#include <numbers>

namespace KEXSDK {
namespace {

constexpr Param<float> kSwing{"Swing", 0.3f, {0, 2}, "largest shift, in hundreds of pixels"};
constexpr Param<float> kFrequency{"Frequency", 0.41f, {0, 4}, "0.4 for one wave across the picture"};

constexpr pixels::Bgra kBlack{0, 0, 0, 255};

void drawRow(const u8* src, pixels::Bgra* to, const double* shifts, pixels::Extent size, int y)
{
    const double height = size.height;
#pragma GCC ivdep
    for (int x = 0; x < size.width; ++x) {
        // Truncation makes row 0 of everything above -1.
        const double from = shifts[x] + y;
        const int row = int(pixels::clamped(from, 0.0, height - 1));
        const u32 word = pixels::wordAt(src, row * size.width + x);
        const u32 shown = from > -1 && from < height ? word : toWord(kBlack);
        std::memcpy(to + x, &shown, sizeof shown);
    }
}

class CRibbon final : public CPureCEffect {
public:
    CRibbon(u32 w, u32 h) : CPureCEffect(w, h) { declare(kSwing, kFrequency); }

    void processFrame(const u8* src, u8* dst) override
    {
        const auto from = stable_.of(input(src), output(dst));
        if (!from.bytes())
            return;
        const int w = int(width());
        const int h = int(height());
        const int swing = pixels::truncated(get(kSwing) * 100);
        const float halfTurns = float(pixels::truncated(get(kFrequency) * 100)) / 20;
        const pixels::Scratch<double> shiftOf(w);
        for (int x = 0; x < w; ++x)
            shiftOf[std::size_t(x)] = std::sin(x * (halfTurns * std::numbers::pi) / w) * swing;

        const double* const shifts = shiftOf.data();
        const pixels::View to = output(dst);
        pixels::rows::anyOrderRuns(extent(), [=](int first, int end) {
            pixels::widest([=] {
                for (int y = first; y < end; ++y)
                    drawRow(from.bytes(), to.row(y).data(), shifts, {w, h}, y);
            });
        });
    }

private:
    pixels::StableInput stable_;
};

const Registration<CRibbon> registered{{
    .guid = "83A3EBFF-0A46-465b-B201-1E8A7DD5DA1B",
    .name = "ribbon",
    .title = "Ribbon",
    .family = "distortion",
    .summary = "The picture waves up and down like a ribbon.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
