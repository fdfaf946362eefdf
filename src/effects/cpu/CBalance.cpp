// A brightening or darkening curve per channel, with a split screen to compare.
#include "model/CPureCEffect.h"
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

class CBalance final : public CPureCEffect {
public:
    CBalance(u32 w, u32 h) : CPureCEffect(w, h) { declare(kR, kG, kB, kIsLeft, kIsSplit); }

    void processFrame(const u8* src, u8* dst) override
    {
        const pixels::ByteTables tables{
            .b = curveTable(get(kG)), .g = curveTable(get(kR)), .r = curveTable(get(kB))};
        const int w = int(width());
        const bool split = get(kIsSplit) != 0;
        const bool keepLeft = get(kIsLeft) != 0;
        const int first = split && keepLeft ? w / 2 : 0;
        const int last = split && !keepLeft ? w / 2 : w;
        pixels::mapTables(input(src), output(dst), tables, first, last);
        pixels::rows::copyColumns(input(src), output(dst), 0, first);
        pixels::rows::copyColumns(input(src), output(dst), last, w);
    }
};

const Registration<CBalance> registered{{
    .guid = "569E97C5-13FB-441a-B3C1-EA0CEC829623",
    .name = "balance",
    .title = "Colour Balance",
    .family = "colour",
    .summary = "A curve per channel, with half of the picture left as it is for comparison.",
}};

} // namespace
} // namespace KEXSDK
