// The picture, framed by a ring of small copies of itself.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/StableInput.h"
#include "pixels/Thumbnail.h"

namespace KEXSDK {
namespace {

// The frame is a quarter of each side thick.
constexpr int kTilesPerSide = 4;

class CTehRoxxFilter final : public CPureCEffect {
public:
    CTehRoxxFilter(u32 w, u32 h) : CPureCEffect(w, h) { }

    void processFrame(const u8* src, u8* dst) override
    {
        const pixels::StableInput stable(input(src), output(dst));
        const pixels::ConstView from = stable.view();
        if (!from.bytes())
            return;
        const pixels::Extent tile{int(width()) / kTilesPerSide, int(height()) / kTilesPerSide};
        if (tile.width < 1 || tile.height < 1 || !tile_.resize(tile)) {
            pixels::rows::copy(from, output(dst));
            return;
        }
        tile_.fill(from);
        pixels::rows::anyOrder(extent(), [&](int y) { composeRow(from, output(dst).row(y).data(), y); });
    }

private:
    void composeRow(pixels::ConstView src, pixels::Bgra* to, int y) const
    {
        const auto [tw, th] = tile_.size();
        const auto [w, h] = extent();
        const pixels::Bgra* const from = src.row(y).data();
        if (y < th || y >= h - th) {
            const int covered = w / tw * tw;
            for (int x = 0; x < covered; x += tw)
                tile_.copyRow(y < th ? y : y - (h - th), to + x);
            std::copy(from + covered, from + w, to + covered);
            return;
        }
        if (y / th <= h / th - 2) {
            tile_.copyRow(y % th, to);
            tile_.copyRow(y % th, to + w - tw);
        } else {
            std::copy(from, from + tw, to);
            std::copy(from + w - tw, from + w, to + w - tw);
        }
        reduceRow(src, to + tw, w - 2 * tw, (y - th) * h / (h - 2 * th));
    }

    // Row `row` of the picture squeezed into `count` pixels, with a black line on two sides.
    static void reduceRow(pixels::ConstView src, pixels::Bgra* to, int count, int row)
    {
        to[0] = pixels::kOpaqueBlack;
        if (row == 0) {
            std::fill(to, to + count, pixels::kOpaqueBlack);
            return;
        }
        const pixels::Bgra* const from = src.row(row).data();
        const int whole = src.width() / count;
        const int rest = src.width() % count;
        int column = whole;
        int error = rest;
        for (int k = 1; k < count; ++k) {
            to[k] = from[column];
            column += whole;
            error += rest;
            if (error >= count) {
                error -= count;
                ++column;
            }
        }
    }

    pixels::Thumbnail tile_;
};

const Registration<CTehRoxxFilter> registered{{
    .guid = "CB730FB7-9D79-4353-B26E-F67D218733D0",
    .name = "picture-frame",
    .title = "Picture Frame",
    .family = "temporal",
    .summary = "The picture in the middle of a frame made of small copies of it.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
