// A wall of screens that all show the picture.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Thumbnail.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

constexpr auto kSplitSize =
    Param<int>{"SpliteSize", 3, {1, 16}, "screens across and down"}.titled("Split Size").readingAs(3);

class CTVWallFilter final : public CPureCEffect {
public:
    CTVWallFilter(u32 w, u32 h) : CPureCEffect(w, h) { declare(kSplitSize); }

    void processFrame(const u8* src, u8* dst) override
    {
        const int n = get(kSplitSize);
        const int w = int(width());
        const int h = int(height());
        if (n < 1 || n > w || n > h) {
            pixels::rows::copy(input(src), output(dst));
            return;
        }
        const pixels::Extent tile{w / n, h / n};
        if (!tile_.resize(tile))
            return;
        tile_.fill(input(src));
        const int coveredX = w / tile.width * tile.width;
        const int coveredY = h / tile.height * tile.height;
        pixels::rows::anyOrder(extent(), [&](int y) {
            const pixels::Bgra* const from = input(src).row(y).data();
            pixels::Bgra* const to = output(dst).row(y).data();
            const int copied = y < coveredY ? coveredX : 0;
            for (int x = 0; x < copied; x += tile.width)
                tile_.copyRow(y % tile.height, to + x);
            if (to != from)
                std::copy(from + copied, from + w, to + copied);
        });
    }

private:
    pixels::Thumbnail tile_;
};

const Registration<CTVWallFilter> registered{{
    .guid = "562330DC-1334-4b02-A5B9-B140FC68B0E2",
    .name = "tv-wall",
    .title = "TV Wall",
    .family = "distortion",
    .summary = "A wall of screens that all show the picture.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
