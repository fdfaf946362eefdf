// Effects with two paths: how far the GPU's pictures are from the CPU's, on a photograph-like picture and on
// noise, with bounds that were measured.
#include "effects/gpu/preferredForm.h"
#include "gpu/OgreTest.h"
#include "pixels/View.h"
#include "support/EngineFixture.h"
#include "support/Environment.h"
#include "support/GuardedFrame.h"
#include "support/paths.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>

namespace {

using Settings = std::map<std::string, float>;

constexpr const char* kLightRoom = "CB87BAF6-5462-4877-BE55-C2A95D8FAF2A";
constexpr const char* kCubeLut = "BCEC4998-CB63-4c7d-9DCC-B76E6ACC6BB8";
constexpr int kWidth = 320;
constexpr int kHeight = 212;

struct Row {
    const char* name;
    const char* guid;
    Settings settings;
    double mean; ///< bound, in bytes
    int greatest;
};

/// Draws soft light, a skin-coloured disc with an edge, and a dark ground with some texture.
void drawScene(pixels::View to)
{
    for (int y = 0; y < to.height(); ++y)
        for (int x = 0; x < to.width(); ++x) {
            const double u = double(x) / to.width();
            const double v = double(y) / to.height();
            const bool face = std::hypot(u - 0.45, (v - 0.5) * 0.7) < 0.2;
            const double light = 0.55 + 0.4 * std::cos(3 * (u - 0.3)) * std::sin(2 * v + 0.4)
                + 0.04 * std::sin(90 * u) * std::sin(70 * v * v);
            const double r = face ? 0.86 : 0.35 + 0.5 * v;
            const double g = face ? 0.62 : 0.45 + 0.3 * u;
            const double b = face ? 0.48 : 0.75 - 0.5 * v;
            const auto byte = [&](double c) { return u8(std::clamp(c * light * 255, 0.0, 255.0)); };
            to.row(y)[x] = {byte(b), byte(g), byte(r), u8(face ? 255 : 200)};
        }
}

class GpuAgainstCpuTest : public OgreTest {
protected:
    /// Draws the pictures of all rows, with the graphics system or without one.
    std::vector<std::vector<u8>> render(std::span<const Row> rows, test::GuardedFrame& source, bool onGpu)
    {
        if (onGpu)
            KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        else
            test::useNoGraphics();
        EXPECT_EQ(InitializeEngine(test::kResourceDirectory, directory_.c_str()), 0u);
        EXPECT_EQ(KEXSDK::gpuAvailable(), onGpu) << read("Ogre.log");
        std::vector<std::vector<u8>> pictures;
        for (const Row& row : rows) {
            host::Filter filter(row.guid, kWidth, kHeight);
            for (const auto& [name, value] : row.settings)
                if (name == "u_temperature")
                    filter.set(name, int(value));
                else
                    filter.set(name, value);
            if (row.guid == kCubeLut) {
                const std::string file = path(std::string(row.name) + ".cube");
                EXPECT_TRUE(filter.set("CubeLutFile", std::wstring(file.begin(), file.end())));
            }
            SetInputImage(filter.handle(), source.image(), 0);
            filter.run();
            const auto bytes = host::bytesOf(filter.run());
            pictures.emplace_back(bytes.begin(), bytes.end());
        }
        UninitializeEngine();
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        return pictures;
    }

    /// As above, with the graphics system and EFFECTENGINE_PATH.
    std::vector<std::vector<u8>> render(
        std::span<const Row> rows, test::GuardedFrame& source, const char* preferred)
    {
        const test::Environment environment("EFFECTENGINE_PATH", preferred);
        return render(rows, source, true);
    }

    void compare(std::span<const Row> rows)
    {
        for (const bool noise : {false, true}) {
            test::GuardedFrame source(kWidth, kHeight);
            if (noise)
                source.fillWithNoise(7);
            else
                drawScene(source.view());
            const auto drawn = render(rows, source, true);
            const auto computed = render(rows, source, false);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                double sum = 0;
                int greatest = 0;
                for (std::size_t k = 0; k < drawn[i].size(); ++k) {
                    const int difference = std::abs(drawn[i][k] - computed[i][k]);
                    greatest = std::max(greatest, k % 4 == 3 ? difference * 1000 : difference);
                    sum += difference;
                }
                const double mean = sum / double(drawn[i].size());
                EXPECT_LE(mean, rows[i].mean) << rows[i].name << (noise ? " on noise" : " on a scene");
                EXPECT_LE(greatest, rows[i].greatest)
                    << rows[i].name << (noise ? " on noise" : " on a scene");
                if (std::getenv("EFFECTENGINE_SHOW_DIFFERENCES"))
                    std::printf("%-28s %-6s mean %.3f greatest %d\n", rows[i].name, noise ? "noise" : "scene",
                        mean, greatest);
            }
        }
    }

    void writeLut(const std::string& name, int size, auto colour) const
    {
        std::ostringstream text;
        text << "LUT_3D_SIZE " << size << '\n';
        for (int b = 0; b < size; ++b)
            for (int g = 0; g < size; ++g)
                for (int r = 0; r < size; ++r) {
                    const std::array<double, 3> c =
                        colour(r / (size - 1.0), g / (size - 1.0), b / (size - 1.0));
                    text << c[0] << ' ' << c[1] << ' ' << c[2] << '\n';
                }
        write(name + ".cube", text.str());
    }
};

TEST_F(GpuAgainstCpuTest, LookupTables)
{
    const auto identity = [](double r, double g, double b) { return std::array{r, g, b}; };
    const auto film = [](double r, double g, double b) {
        const double grey = 0.3 * r + 0.6 * g + 0.1 * b;
        return std::array{std::pow(0.7 * r + 0.3 * grey, 0.8), 0.05 + 0.9 * g * g, 0.2 + 0.6 * std::sqrt(b)};
    };
    const auto swapped = [](double r, double g, double b) { return std::array{b, r, g}; };
    writeLut("identity 17", 17, identity);
    writeLut("film 33", 33, film);
    writeLut("film 17", 17, film);
    writeLut("film 8", 8, film);
    writeLut("swapped 64", 64, swapped);
    const Row rows[] = {
        {"identity 17", kCubeLut, {}, 0.55, 1},
        {"film 33", kCubeLut, {}, 0.4, 2},
        {"film 17", kCubeLut, {}, 0.35, 2},
        {"film 8", kCubeLut, {}, 0.45, 2},
        {"swapped 64", kCubeLut, {}, 0.4, 1},
    };
    compare(rows);
}

TEST_F(GpuAgainstCpuTest, Adjustment)
{
    const auto with = [](Settings settings) {
        settings.insert({"u_temperature", 11500.0f});
        return settings;
    };
    const Row rows[] = {
        {"neutral", kLightRoom, with({}), 0, 0},
        {"cooler", kLightRoom, {{"u_temperature", 8000.0f}}, 1.1, 12},
        {"warmer", kLightRoom, {{"u_temperature", 15000.0f}}, 1.4, 14},
        {"tint", kLightRoom, with({{"u_tint", 40.0f}}), 0.5, 2},
        {"exposure", kLightRoom, with({{"u_exposure", 30.0f}}), 0.4, 1},
        {"brighter", kLightRoom, with({{"u_brightness", 20.0f}}), 0.35, 1},
        {"darker", kLightRoom, with({{"u_brightness", -30.0f}}), 0.05, 1},
        {"contrast", kLightRoom, with({{"u_contrast", 40.0f}}), 0.4, 1},
        {"soft contrast", kLightRoom, with({{"u_contrast", -60.0f}}), 0.4, 1},
        {"deeper", kLightRoom, with({{"u_sat", 80.0f}}), 0.25, 1},
        {"paler", kLightRoom, with({{"u_sat", -50.0f}}), 0.4, 1},
        {"vignette", kLightRoom,
            with({{"u_vignette_amount", -70.0f}, {"u_vignette_feather", 60.0f},
                {"u_vignette_highlights", 80.0f}, {"u_vignette_size", 40.0f}, {"u_vignette_roundness", 50.0f},
                {"u_vignette_exposure", 20.0f}}),
            0.4, 1},
        {"several, with detail", kLightRoom,
            with({{"u_tint", 10.0f}, {"u_exposure", 10.0f}, {"u_contrast", 10.0f}, {"clarity", 30.0f},
                {"sharpen", 20.0f}}),
            1.4, 7},
    };
    compare(rows);
}

TEST_F(GpuAgainstCpuTest, HostsChooseOne)
{
    writeLut("film 17", 17, [](double r, double g, double b) { return std::array{r * r, std::sqrt(g), b}; });
    const Row rows[] = {
        {"film 17", kCubeLut, {}, 0, 0},
        {"warmer", kLightRoom, {{"u_temperature", 15000.0f}}, 0, 0},
    };
    test::GuardedFrame source(kWidth, kHeight);
    drawScene(source.view());
    const auto drawn = render(rows, source, true);
    const auto computed = render(rows, source, false);
    for (std::size_t i = 0; i < std::size(rows); ++i)
        ASSERT_TRUE(drawn[i] != computed[i]) << rows[i].name << ": the test cannot tell the two apart";
    EXPECT_TRUE(render(rows, source, "gpu") == drawn);
    EXPECT_TRUE(render(rows, source, "cpu") == computed);
    const auto chosen = render(rows, source, "auto");
    const std::string renderer = KEXSDK::gpuCapabilities().renderer;
    EXPECT_FALSE(renderer.empty());
    EXPECT_TRUE(chosen == (KEXSDK::isSoftwareRenderer(renderer) ? computed : drawn)) << renderer;
}

TEST_F(GpuAgainstCpuTest, StepsOfTheGpuAlone)
{
    const struct {
        const char* name;
        float value;
        pixels::Bgra expected;
    } steps[] = {
        {"u_vib", 50, {39, 120, 201, 255}},
        {"u_highLight", 50, {76, 142, 199, 255}},
        {"u_shadow", 40, {71, 135, 192, 255}},
        {"u_shadow", -40, {57, 116, 177, 255}},
        {"u_whiteLevel", 60, {103, 173, 220, 255}},
        {"u_whiteLevel", -60, {41, 93, 158, 255}},
        {"u_blackLevel", 60, {64, 126, 185, 255}},
        {"u_blackLevel", -60, {44, 98, 161, 255}},
    };
    ASSERT_EQ(InitializeEngine(test::kResourceDirectory, directory_.c_str()), 0u);
    test::GuardedFrame source(8, 4);
    source.fill({60, 120, 180, 255});
    for (const auto& step : steps) {
        host::Filter filter(kLightRoom, 8, 4);
        filter.set("u_temperature", 11500);
        filter.set(step.name, step.value);
        SetInputImage(filter.handle(), source.image(), 0);
        const pixels::ConstView drawn(host::bytesOf(filter.run()).data(), {8, 4});
        EXPECT_EQ(drawn.at(3, 2), step.expected) << step.name << " " << step.value;
    }
    UninitializeEngine();
}

TEST_F(GpuAgainstCpuTest, AUniformTakesTheParameterOfItsPlainName)
{
    ASSERT_EQ(InitializeEngine(test::kResourceDirectory, directory_.c_str()), 0u);
    test::GuardedFrame source(8, 4);
    source.fill({60, 120, 180, 255});
    host::Filter filter(kLightRoom, 8, 4);
    filter.set("Temperature", 11500);
    SetInputImage(filter.handle(), source.image(), 0);
    const auto drawn = host::bytesOf(filter.run());
    EXPECT_TRUE(std::ranges::equal(drawn, source.bytes()));
    EXPECT_TRUE(logged("GL version is: "));
    UninitializeEngine();
}

} // namespace
