// A brightening or darkening curve per channel, with a split screen to compare.
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/ByteTables.h"
#include "pixels/QuadraticCurve.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

// The curve named R shapes the green byte and the one named G the blue byte; hosts know them that way.
constexpr auto kR = Param<int>{"R", 100, {1, 200}, "green level that the curve lifts to full scale"}
                        .titled("Green Level")
                        .in("percent");
constexpr auto kG = Param<int>{"G", 100, {1, 200}, "blue level that the curve lifts to full scale"}
                        .titled("Blue Level")
                        .in("percent");
constexpr auto kB = Param<int>{"B", 50, {1, 200}, "red level that the curve lifts to full scale"}
                        .titled("Red Level")
                        .in("percent");
constexpr auto kIsLeft = Param<int>{"IsLeft", 0, {0, 1}, "which half stays as it is"}
                             .titled("Kept Half")
                             .choosing("0 right, 1 left");
constexpr auto kIsSplit =
    Param<int>{"IsSplit", 1, {0, 1}, "leave one half as it is, to compare"}.titled("Split").choosing(
        "0 off, 1 on");

pixels::ByteTable curveTable(int percent)
{
    const auto curve = pixels::QuadraticCurve::through({{{0.0, 0.0}, {0.5, 0.5}, {percent / 100.0, 1.0}}});
    return pixels::tableOf([&](int i) { return u8(pixels::clamped(curve(i / 255.0), 0.0, 1.0) * 255); });
}

class CBalance final : public CRowEffect {
public:
    CBalance(u32 w, u32 h) : CRowEffect(w, h) { declare(kR, kG, kB, kIsLeft, kIsSplit); }

    void processRows(pixels::ConstView src, pixels::View dst, int) const override
    {
        pixels::mapTables(src, dst, tables_, first_, last_);
        pixels::rows::copyColumns(src, dst, 0, first_);
        pixels::rows::copyColumns(src, dst, last_, dst.width());
    }

protected:
    void prepare() override
    {
        tables_ = {.b = curveTable(get(kG)), .g = curveTable(get(kR)), .r = curveTable(get(kB))};
        const int w = int(width());
        const bool split = get(kIsSplit) != 0;
        const bool keepLeft = get(kIsLeft) != 0;
        first_ = split && keepLeft ? w / 2 : 0;
        last_ = split && !keepLeft ? w / 2 : w;
    }

private:
    pixels::ByteTables tables_{};
    int first_ = 0; ///< columns [first_, last_) go through the curves
    int last_ = 0;
};

const Registration<CBalance> registered{{
    .guid = "569E97C5-13FB-441a-B3C1-EA0CEC829623",
    .name = "balance",
    .title = "Colour Balance",
    .family = "colour",
    .summary = "A curve per channel, with half of the picture left as it is for comparison.",
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
