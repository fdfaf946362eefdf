// Facts about the photographic adjustment.
#include "pixels/Buffer.h"
#include "pixels/widest.h"
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"

#include <tbb/global_control.h>

#include <map>

namespace {

using pixels::Bgra;
using Settings = std::map<std::string, float>;

constexpr const char* kLightRoom = "CB87BAF6-5462-4877-BE55-C2A95D8FAF2A";

constexpr Bgra rgb(int r, int g, int b) { return {u8(b), u8(g), u8(r), 255}; }
constexpr Bgra level(int v) { return rgb(v, v, v); }

class LightRoom : public test::EngineWithoutGpu {
protected:
    void TearDown() override { pixels::limitBuffers(~std::size_t{0}); }

    /// Sets a node's parameters, with a neutral white balance unless the settings name one.
    static void set(host::Filter& filter, const Settings& settings)
    {
        filter.set("u_temperature", 11500);
        for (const auto& [name, value] : settings) {
            if (name == "u_temperature" || name == "LightRoomColorEnable")
                filter.set(name, int(value));
            else
                filter.set(name, value);
        }
    }

    test::GuardedFrame& frame(int w, int h) { return frame_.emplace(w, h); }

    pixels::ConstView run(const Settings& settings)
    {
        const auto size = frame_->view().extent();
        filter_.emplace(kLightRoom, size.width, size.height);
        set(*filter_, settings);
        return again();
    }
    pixels::ConstView again()
    {
        SetInputImage(filter_->handle(), frame_->image(), 0);
        const auto bytes = host::bytesOf(filter_->run());
        EXPECT_TRUE(frame_->guardsIntact());
        return {bytes.data(), frame_->view().extent()};
    }
    /// What becomes of one colour, by colour steps that ignore position.
    Bgra of(Bgra value, const Settings& settings)
    {
        frame(5, 2).fill(value);
        return run(settings).at(3, 1);
    }
    bool unchanged(const Settings& settings)
    {
        const auto out = run(settings);
        return std::ranges::equal(std::span(out.bytes(), frame_->bytes().size()), frame_->bytes());
    }

    std::optional<test::GuardedFrame> frame_;
    std::optional<host::Filter> filter_;
};

TEST_F(LightRoom, NeutralValuesLeaveThePictureWithItsAlpha)
{
    frame(37, 23).fillWithNoise(1);
    EXPECT_TRUE(unchanged({}));
    EXPECT_TRUE(
        unchanged({{"u_vignette_size", 40}, {"u_vignette_feather", 40}, {"u_vignette_highlights", 90}}));
    for (const char* const gpuOnly : {"u_vib", "u_highLight", "u_shadow", "u_whiteLevel", "u_blackLevel"})
        EXPECT_TRUE(unchanged({{gpuOnly, 80}})) << gpuOnly;
    EXPECT_FALSE(unchanged({{"u_temperature", 0}})) << "which is what an unset temperature counts as";
    EXPECT_FALSE(unchanged({{"u_exposure", 10}}));
    EXPECT_TRUE(unchanged({{"u_exposure", 10}, {"u_temperature", 0}, {"LightRoomColorEnable", 0}}));
}

TEST_F(LightRoom, TemperatureTintsAndKeepsLightness)
{
    EXPECT_EQ(of(rgb(128, 128, 128), {{"u_temperature", 14500}}), rgb(170, 121, 85));
    EXPECT_EQ(of(rgb(200, 150, 90), {{"u_temperature", 0}}), rgb(107, 151, 182));
    EXPECT_EQ(of(rgb(200, 150, 90), {{"u_temperature", 16400}}), rgb(255, 71, 35));
    EXPECT_EQ(of(rgb(30, 60, 200), {{"u_temperature", 13000}}), rgb(35, 61, 194));
    EXPECT_EQ(of(rgb(10, 240, 40), {{"u_temperature", 9000}}), rgb(8, 241, 47));
    for (const int v : {0, 255}) // black and white have no room for a colour
        EXPECT_EQ(of(level(v), {{"u_temperature", 9000}}), level(v));
    EXPECT_EQ(of(level(90), {{"u_temperature", 17000}}), of(level(90), {{"u_temperature", 23000}}));
}

TEST_F(LightRoom, TintAddsAShareOfTheGrey)
{
    EXPECT_EQ(of(level(100), {{"u_tint", 45}}), rgb(107, 92, 107))
        << "20/256 of 100, rounded down on each side";
    EXPECT_EQ(of(level(100), {{"u_tint", -45}}), rgb(92, 107, 92));
    EXPECT_EQ(of(rgb(255, 255, 0), {{"u_tint", 1e30f}}), rgb(255, 0, 255));
    EXPECT_EQ(of(rgb(7, 8, 9), {{"u_tint", 2}}), rgb(7, 8, 9)) << "less than one step";
}

TEST_F(LightRoom, ToneStepsAreCurvesPerByte)
{
    const auto tone = [&](const char* name, float value, int v) { return of(level(v), {{name, value}}).g; };
    EXPECT_EQ(tone("u_exposure", 50, 100), 151);
    EXPECT_EQ(tone("u_exposure", 50, 200), 255);
    EXPECT_EQ(tone("u_exposure", -50, 100), 65);
    EXPECT_EQ(tone("u_brightness", 50, 101), 151);
    EXPECT_EQ(tone("u_brightness", -50, 100), 59);
    EXPECT_EQ(tone("u_brightness", -50, 20), 0);

    EXPECT_EQ(tone("u_contrast", 100, 32), 0);
    EXPECT_EQ(tone("u_contrast", 100, 128), 128);
    EXPECT_EQ(tone("u_contrast", 100, 223), 255);
    EXPECT_EQ(tone("u_contrast", -100, 0), 19);
    EXPECT_EQ(tone("u_contrast", -100, 255), 236);
    for (const float steepest : {254.9f, 255.0f}) {
        EXPECT_EQ(tone("u_contrast", steepest, 120), 0);
        EXPECT_EQ(tone("u_contrast", steepest, 124), 68);
        EXPECT_EQ(tone("u_contrast", steepest, 128), 255);
    }
    // Each step ends in bytes: 3 * 1.05 is 3 again, twice.
    EXPECT_EQ(of(level(3), {{"u_brightness", 30}, {"u_exposure", 5}}).g, 3);
    EXPECT_EQ(of(level(200), {{"u_exposure", 100}, {"u_contrast", -100}}).g, 236) << "limited in between";
}

TEST_F(LightRoom, SaturationMovesColoursAroundTheirMean)
{
    const Bgra colour = rgb(100, 50, 30);
    EXPECT_EQ(of(colour, {{"u_sat", -100}}), level(60));
    EXPECT_EQ(of(colour, {{"u_sat", -50}}), rgb(80, 55, 45));
    EXPECT_EQ(of(colour, {{"u_sat", 50}}), colour);
    EXPECT_EQ(of(colour, {{"u_sat", 100}}), rgb(140, 40, 0));
    EXPECT_EQ(of(colour, {{"u_sat", 150}}), rgb(255, 0, 0));
    EXPECT_EQ(of(colour, {{"u_sat", 1e9f}}), rgb(255, 0, 0)) << "beyond the pole as just before it";
    EXPECT_EQ(of(level(60), {{"u_sat", 150}}), level(60));
}

TEST_F(LightRoom, VignetteFadesAlongAnEllipse)
{
    frame(64, 40).fill(rgb(200, 100, 50));
    auto out = run({{"u_vignette_amount", -60}, {"u_vignette_feather", 80}, {"u_vignette_highlights", 80},
        {"u_vignette_size", 50}, {"u_vignette_roundness", 30}, {"u_vignette_exposure", 20}});
    EXPECT_EQ(out.at(32, 20), rgb(229, 114, 57)) << "inside: the exposure alone";
    EXPECT_EQ(out.at(10, 20), rgb(167, 84, 42)) << "half way";
    EXPECT_EQ(out.at(16, 10), rgb(200, 100, 50));
    EXPECT_EQ(out.at(0, 0), rgb(96, 49, 25)) << "outside";
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(out.at(x, y), out.at(63 - x, 39 - y));
    }
    // A change of the amount alone keeps the mask, a change of the size draws another.
    set(*filter_, {{"u_vignette_amount", -100}, {"u_vignette_highlights", 50}, {"u_vignette_exposure", 0}});
    out = again();
    EXPECT_EQ(out.at(0, 0), rgb(0, 0, 0));
    EXPECT_EQ(out.at(20, 20), rgb(200, 100, 50));
    set(*filter_, {{"u_vignette_size", -20}, {"u_vignette_feather", 0}});
    EXPECT_EQ(again().at(20, 20), rgb(0, 0, 0));
}

TEST_F(LightRoom, ClarityMovesAwayFromTheBlur)
{
    frame(5, 1).fill(level(0));
    frame_->view().at(2, 0) = level(90);
    const auto out = run({{"clarity", -100}});
    const int expected[] = {5, 10, 60, 10, 5};
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(out.at(x, 0), level(expected[x])) << x;
    EXPECT_EQ(run({{"clarity", 200}}).at(2, 0), level(180)) << "90 away from a blur of less than 1";
    for (const float none : {2.0f, -2.0f, 254.0f, -300.0f, 1e30f})
        EXPECT_TRUE(unchanged({{"clarity", none}})) << none;
    frame(40, 30).fill(level(77));
    EXPECT_TRUE(unchanged({{"clarity", 80}}));
}

TEST_F(LightRoom, SharpenWorksOnInnerPixels)
{
    frame(3, 3).fill(level(50));
    frame_->view().at(1, 1) = rgb(60, 40, 250);
    const auto out = run({{"sharpen", 51}});
    EXPECT_EQ(out.at(1, 1), rgb(68, 32, 255)) << "a fifth of four times the difference";
    EXPECT_EQ(out.at(1, 0), level(50));
    EXPECT_EQ(out.at(0, 1), level(50));
    for (const auto& [w, h] : {std::pair{40, 2}, {2, 40}, {1, 1}}) {
        frame(w, h).fillWithNoise(7);
        EXPECT_TRUE(unchanged({{"sharpen", 100}}));
    }
}

TEST_F(LightRoom, DistortKeepsTheCentreAndStaysInside)
{
    // Every pixel tells its place.
    frame(64, 48);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            frame_->view().at(x, y) = {u8(x), u8(y), 0, u8(x ^ y)};
    auto out = run({{"distort", 100}});
    EXPECT_EQ(out.at(32, 24), (Bgra{32, 24, 0, 32 ^ 24}));
    EXPECT_EQ(out.at(0, 0), (Bgra{0, 0, 0, 0})) << "the corner is the far end of the lens";
    EXPECT_EQ(out.at(52, 24), (Bgra{44, 24, 0, 44 ^ 24})) << "half as far, and a quarter of r squared more";
    set(*filter_, {{"distort", -100}});
    out = again();
    EXPECT_EQ(out.at(63, 24), (Bgra{62, 24, 0, 62 ^ 24}));
    set(*filter_, {{"distort", 0}});
    EXPECT_TRUE(std::ranges::equal(std::span(again().bytes(), frame_->bytes().size()), frame_->bytes()));
    for (const float wild : {-1e30f, 1e30f, -5000.0f})
        run({{"distort", wild}});
}

TEST_F(LightRoom, DiffuseBrightensAndSoftensOnOneSide)
{
    frame(3, 1).fill(level(30));
    frame_->view().at(1, 0) = level(70);
    EXPECT_EQ(run({{"diffuse", -720}}).at(1, 0), level(140));
    const auto out = run({{"diffuse", 240}}); // half more: 45 105 45
    EXPECT_EQ(out.at(0, 0), level(60));
    EXPECT_EQ(out.at(1, 0), level(75));
}

// Haze removal as it is defined, pixel by pixel.
void removeHaze(pixels::View picture, double amount)
{
    const int w = picture.width();
    const int h = picture.height();
    const auto darkAt = [](Bgra p) { return int(std::min({p.b, p.g, p.r})); };
    int brightest = 0;
    u64 sum = 0;
    std::vector<int> dark, average;
    for (int y = 0; y < h; ++y) {
        for (const Bgra p : picture.row(y)) {
            dark.push_back(darkAt(p));
            sum += u64(darkAt(p));
            brightest = std::max({brightest, int(p.b), int(p.g), int(p.r)});
        }
    }
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            int total = 0;
            int count = 0;
            for (int v = std::max(0, y - 7); v <= std::min(h - 1, y + 7); ++v)
                for (int u = std::max(0, x - 7); u <= std::min(w - 1, x + 7); ++u, ++count)
                    total += dark[std::size_t(v * w + u)];
            average.push_back(total / count);
        }
    }
    const double k = std::min(0.9, double(sum / dark.size()) * (amount / 100 * 1.6) / 255);
    const double light = (brightest + *std::ranges::max_element(average)) * 0.5;
    for (std::size_t i = 0; i < dark.size(); ++i) {
        const int haze = std::min(int(average[i] * k), dark[i]);
        Bgra& p = picture.at(int(i) % w, int(i) / w);
        const auto clear = [&](u8 v) { return u8(std::clamp((v - haze) / (1 - haze / light), 0.0, 255.0)); };
        p = {clear(p.b), clear(p.g), clear(p.r), p.a};
    }
}

TEST_F(LightRoom, DehazeClearsTheInputItself)
{
    for (const auto& [w, h] : {std::pair{33, 17}, {5, 3}, {333, 150}, {1, 40}}) {
        test::GuardedFrame expected(w, h);
        expected.fillWithNoise(11);
        for (int y = 0; y < h; ++y) // a veil, thicker to one side
            for (int x = 0; x < w; ++x)
                expected.view().at(x, y).b |= 0x80, expected.view().at(x, y).g |= 0x80,
                    expected.view().at(x, y).r = u8(200 + 50 * x / w);
        frame(w, h);
        std::ranges::copy(expected.bytes(), frame_->pixels());
        removeHaze(expected.view(), 60);
        const auto out = run({{"dehaze", 60}});
        EXPECT_EQ(expected.bytes(), frame_->bytes()) << w << " x " << h;
        EXPECT_TRUE(std::ranges::equal(std::span(out.bytes(), expected.bytes().size()), expected.bytes()));
    }
    frame(20, 20).fillWithNoise(12);
    const auto before = frame_->bytes();
    EXPECT_TRUE(unchanged({{"dehaze", -80}}));
    EXPECT_EQ(before, frame_->bytes());
    EXPECT_EQ(of(level(0), {{"dehaze", 100}}), level(0));
}

TEST_F(LightRoom, StepsFollowEachOtherAndEndInTheOutput)
{
    // Every step alone and in company: what two nodes in a row do, one node does.
    const Settings steps[] = {
        {{"u_exposure", 20}}, {{"clarity", 40}}, {{"sharpen", 40}}, {{"distort", 40}}, {{"diffuse", 40}}};
    frame(61, 43).fillWithNoise(3);
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        for (std::size_t j = i + 1; j < std::size(steps); ++j) {
            Settings both = steps[i];
            both.insert(steps[j].begin(), steps[j].end());
            const auto together = run(both);
            const std::vector<u8> expected(together.bytes(), together.bytes() + frame_->bytes().size());
            host::Filter first(kLightRoom, 61, 43);
            host::Filter second(kLightRoom, 61, 43);
            set(first, steps[i]);
            set(second, steps[j]);
            SetInputImage(first.handle(), frame_->image(), 0);
            second.connectFrom(first);
            EXPECT_TRUE(std::ranges::equal(host::bytesOf(second.run()), expected)) << i << " and " << j;
        }
    }
}

TEST_F(LightRoom, ThreadsAndVectorsNeverShowInTheBytes)
{
    const auto rendered = [&](std::size_t threads, pixels::VectorLevel vectors) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        pixels::limitVectors(vectors);
        frame(333, 301).fillWithNoise(6); // haze removal writes to it
        const auto out = run({{"dehaze", 50}, {"u_temperature", 13000}, {"u_tint", 10}, {"u_contrast", 20},
            {"u_sat", 80}, {"u_vignette_amount", -60}, {"u_vignette_feather", 90}, {"u_vignette_size", 40},
            {"clarity", 30}, {"sharpen", 30}, {"distort", 30}, {"diffuse", 10}});
        pixels::limitVectors(pixels::VectorLevel::avx512);
        return std::vector<u8>(out.bytes(), out.bytes() + frame_->bytes().size());
    };
    const auto plain = rendered(1, pixels::VectorLevel::base);
    EXPECT_TRUE(plain == rendered(1, pixels::VectorLevel::avx2));
    EXPECT_TRUE(plain == rendered(4, pixels::VectorLevel::avx512));
}

TEST_F(LightRoom, InOneImageOnlyTheStepsAfterTheColoursRun)
{
    const auto inPlace = [&](const Settings& settings) {
        frame(21, 13).fillWithNoise(5);
        host::Filter filter(kLightRoom, 21, 13);
        set(filter, settings);
        SetInputImage(filter.handle(), frame_->image(), 0);
        EXPECT_EQ(DoFilterEx(filter.handle(), frame_->image()), 0u);
        return frame_->bytes();
    };
    EXPECT_EQ(inPlace({{"u_exposure", 30}}), inPlace({}));
    const Settings rest{{"clarity", 30}, {"sharpen", 30}, {"distort", 30}, {"diffuse", 30}};
    const auto bytes = inPlace(rest);
    frame(21, 13).fillWithNoise(5);
    EXPECT_TRUE(std::ranges::equal(std::span(run(rest).bytes(), bytes.size()), bytes));
}

TEST_F(LightRoom, WithoutMemoryTheStepsThatNeedItAreLeftOut)
{
    frame(64, 64).fillWithNoise(9);
    pixels::limitBuffers(1000);
    EXPECT_TRUE(unchanged(
        {{"clarity", 40}, {"sharpen", 40}, {"distort", 40}, {"dehaze", 90}, {"u_vignette_amount", -90}}));
    const Bgra grey = run({{"u_sat", -100}, {"sharpen", 50}}).at(3, 3);
    EXPECT_EQ(grey, run({{"u_sat", -100}}).at(3, 3)) << "the others run";
}

TEST_F(LightRoom, TheNodeDeclaresItsSizeAsAVolatileArray)
{
    host::Filter filter(kLightRoom, 64, 40);
    float size[2] = {};
    int count = 2;
    EXPECT_EQ(KEXSDK::getParamFloatArrayValue(filter.handle(), "u_resolution", size, &count), 0u);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(size[0], 64);
    EXPECT_EQ(size[1], 40);
    unsigned parameters = 0;
    KEXSDK::GetParamCount(filter.handle(), &parameters);
    EXPECT_EQ(parameters, 7u) << "three standard ones, clarity, sharpen, the switch and the size";
}

} // namespace
