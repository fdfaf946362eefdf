// The picture waves like a ribbon: every column is shifted by a sine.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <cmath>
#include <numbers>

namespace KEXSDK {
namespace {

constexpr Param<float> kSwing{"Swing", 0.3f, {0, 2}, "largest shift, in hundreds of pixels"};
constexpr Param<float> kFrequency{"Frequency", 0.41f, {0, 4}, "0.4 for one wave across the picture"};

constexpr pixels::Bgra kBlack{0, 0, 0, 255};

void drawRow(pixels::ConstView src, pixels::Bgra* to, const double* shifts, int y)
{
    pixels::sampleRow(src, to, 0, src.width(), [=, height = double(src.height())](int x, auto at) {
        // Truncation makes row 0 of everything above -1.
        const double from = shifts[x] + y;
        const u32 word = at({x, int(pixels::clamped(from, 0.0, height - 1))});
        return from > -1 && from < height ? word : toWord(kBlack);
    });
}

class CRibbon final : public CPureCEffect {
public:
    CRibbon(u32 w, u32 h) : CPureCEffect(w, h) { declare(kSwing, kFrequency); }

    void processFrame(const u8* src, u8* dst) override
    {
        const pixels::StableInput stable(input(src), output(dst));
        const pixels::ConstView from = stable.view();
        if (!from.bytes())
            return;
        const int w = int(width());
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
                    drawRow(from, to.row(y).data(), shifts, y);
            });
        });
    }
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
