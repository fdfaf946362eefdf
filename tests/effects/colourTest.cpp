// Facts about the colour and tone effects.
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"

namespace {

using pixels::Bgra;

constexpr const char* kBalance = "569E97C5-13FB-441a-B3C1-EA0CEC829623";
constexpr const char* kGrey = "DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A";
constexpr const char* kEqualize = "F6B936B0-CF61-4da8-B532-8DC88617FB9C";
constexpr const char* kHueShift = "12E5BC38-3508-44b0-AD1A-D0B37D19289F";
constexpr const char* kHighlight = "AA82D502-0B8D-4BEC-B553-CD33A9C71C6E";
constexpr const char* kBlank = "0FC7D998-AAB0-4f2e-89F9-2FAD04CA0B24";

class Colour : public test::EngineWithoutGpu {
protected:
    // The output of an effect for a picture of one value.
    template <class Set = void (*)(host::Filter&)>
    pixels::ConstView run(
        const char* guid, Bgra value, Set set = [](host::Filter&) {}, int w = 6, int h = 2)
    {
        frame_.emplace(w, h);
        frame_->fill(value);
        return runOnFrame(guid, set);
    }
    template <class Set> pixels::ConstView runOnFrame(const char* guid, Set set)
    {
        const auto size = frame_->view().extent();
        filter_.emplace(guid, size.width, size.height);
        set(*filter_);
        SetInputImage(filter_->handle(), frame_->image(), 0);
        return {host::bytesOf(filter_->run()).data(), size};
    }

    std::optional<test::GuardedFrame> frame_;
    std::optional<host::Filter> filter_;
};

TEST_F(Colour, GreyIsTheTruncatedMeanAndKeepsAlpha)
{
    EXPECT_EQ(run(kGrey, {1, 2, 4, 200}).at(3, 1), (Bgra{2, 2, 2, 200}));
    EXPECT_EQ(run(kGrey, {255, 255, 255, 0}).at(0, 0), (Bgra{255, 255, 255, 0}));
}

TEST_F(Colour, BalanceShapesOneHalfAndCrossesItsCurveNames)
{
    auto out = run(kBalance, {128, 128, 128, 9});
    EXPECT_EQ(out.at(2, 0), (Bgra{80, 80, 88, 9}));
    EXPECT_EQ(out.at(3, 0), (Bgra{128, 128, 128, 9}));
    out = run(kBalance, {128, 128, 128, 9}, [](auto& f) { f.set("IsLeft", 1); });
    EXPECT_EQ(out.at(2, 0), (Bgra{128, 128, 128, 9}));
    EXPECT_EQ(out.at(3, 0), (Bgra{80, 80, 88, 9}));
    out = run(kBalance, {128, 128, 128, 9}, [](auto& f) { f.set("IsSplit", 0); });
    EXPECT_EQ(out.at(5, 1), (Bgra{80, 80, 88, 9}));
    out = run(kBalance, {51, 51, 51, 9}, [](auto& f) {
        f.set("IsSplit", 0);
        f.set("R", 0); // a falling line
    });
    EXPECT_EQ(out.at(0, 0).g, 204);
    EXPECT_NE(out.at(0, 0).b, 204);
}

TEST_F(Colour, EqualizeSpreadsValuesOverTheRange)
{
    EXPECT_EQ(run(kEqualize, {7, 90, 200, 3}).at(1, 1), (Bgra{255, 255, 255, 3}));
    frame_.emplace(4, 1);
    for (int x = 0; x < 4; ++x)
        frame_->view().at(x, 0) = {u8(100 + x), u8(x < 2 ? 10 : 20), 0, u8(x)};
    const auto out = runOnFrame(kEqualize, [](auto&) {});
    const Bgra expected[] = {{64, 128, 255, 0}, {128, 128, 255, 1}, {192, 255, 255, 2}, {255, 255, 255, 3}};
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(out.at(x, 0), expected[x]);
}

TEST_F(Colour, HueShiftAtTheMiddleIsTheIdentityWithinRounding)
{
    frame_.emplace(64, 16);
    frame_->fillWithNoise(5);
    const auto out = runOnFrame(kHueShift, [](auto& f) { f.set("Hue", 50); });
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 64; ++x) {
            const Bgra before = frame_->view().at(x, y);
            const Bgra after = out.at(x, y);
            ASSERT_LE(std::abs(before.b - after.b), 1);
            ASSERT_LE(std::abs(before.g - after.g), 1);
            ASSERT_LE(std::abs(before.r - after.r), 1);
            ASSERT_EQ(before.a, after.a);
        }
    }
}

TEST_F(Colour, HueShiftKeepsGreyAndTurnsColours)
{
    for (const int hue : {0, 20, 95, 100}) {
        const Bgra grey = run(kHueShift, {120, 120, 120, 255}, [&](auto& f) { f.set("Hue", hue); }).at(0, 0);
        EXPECT_NEAR(grey.b, 120, 1);
        EXPECT_NEAR(grey.g, 120, 1);
        EXPECT_NEAR(grey.r, 120, 1);
    }
    // A third of the wheel moves each component to the next byte, up to the luminance correction.
    const Bgra half = run(kHueShift, {200, 40, 40, 255}, [](auto& f) { f.set("Hue", 0); }).at(0, 0);
    EXPECT_LT(half.b, 60);
    EXPECT_GT(half.g, half.b);
    EXPECT_GT(half.r, half.b);
    const Bgra outside = run(kHueShift, {200, 40, 40, 255}, [](auto& f) { f.set("Hue", 101); }).at(0, 0);
    EXPECT_NEAR(outside.b, 200, 1) << "values off the wheel turn nothing";
}

TEST_F(Colour, HighlightPaintsItsColourAtTheCentreAndFadesOut)
{
    const auto spot = [](host::Filter& f) {
        f.set("iMouse", std::vector<float>{50, 10});
        f.set("Color", std::vector<float>{1.0f, 0.5f, 0.0f});
        f.set("Radius", 0.4f);
        f.set("Opacity", 1.0f);
        f.set("Enable", 1.0f);
    };
    auto out = run(kHighlight, {10, 20, 30, 40}, spot, 100, 40);
    EXPECT_EQ(out.at(50, 10), (Bgra{0, 127, 255, 40}));
    EXPECT_EQ(out.at(59, 10), (Bgra{0, 127, 255, 40})) << "0.09 of the width lies inside 0.097";
    EXPECT_EQ(out.at(61, 10), (Bgra{10, 20, 30, 40})) << "0.11 lies outside 0.103";
    EXPECT_EQ(out.at(50, 21), (Bgra{10, 20, 30, 40}));
    const Bgra edge = out.at(60, 10);
    EXPECT_GT(edge.r, 30);
    EXPECT_LT(edge.r, 255);

    const auto without = [&](auto change) {
        return run(
            kHighlight, {10, 20, 30, 40},
            [&](host::Filter& f) {
                spot(f);
                change(f);
            },
            100, 40)
            .at(50, 10);
    };
    const Bgra unchanged{10, 20, 30, 40};
    EXPECT_EQ(without([](auto& f) { f.set("Enable", 0.5f); }), unchanged);
    EXPECT_EQ(without([](auto& f) {
        f.set("Color", std::vector<float>{1, 1});
    }),
        unchanged)
        << "array too short";
    EXPECT_EQ(without([](auto& f) { f.set("iMouse", 1.0f); }), unchanged) << "not an array";
    EXPECT_EQ(without([](auto& f) { f.set("Radius", -1.0f); }), unchanged);
    EXPECT_EQ(without([](auto& f) { f.set("Opacity", 0.0f); }), unchanged);
    EXPECT_EQ(without([](auto& f) { f.set("Color", std::vector<float>{9, -3, 0}); }), (Bgra{0, 0, 255, 40}));
}

TEST_F(Colour, HighlightOffThePictureIsClipped)
{
    const auto corner = [](host::Filter& f) {
        f.set("iMouse", std::vector<float>{-1e30f, 1e9f});
        f.set("Color", std::vector<float>{1, 1, 1});
        f.set("Radius", 1e30f);
        f.set("Opacity", 1.0f);
        f.set("Enable", 1.0f);
    };
    run(kHighlight, {10, 20, 30, 40}, corner, 7, 5);
    EXPECT_TRUE(frame_->guardsIntact());
}

TEST_F(Colour, BlankStaysTransparentBlack)
{
    EXPECT_EQ(run(kBlank, {9, 9, 9, 9}).at(0, 0), (Bgra{0, 0, 0, 0}));
}

} // namespace
