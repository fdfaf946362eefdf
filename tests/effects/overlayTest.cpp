// Overlay effects over pictures that the test holds in place of files.
#include "effects/FrameEffect.h"
#include "pixels/widest.h"
#include "support/FilesInMemory.h"

#include <vector>

namespace {

using pixels::Bgra;
using test::files;

constexpr const char* kNightVision = "886112EE-FEBC-4e57-A11F-945EA86F6BC0";
constexpr const char* kCamcorder = "44F89F06-AF33-4630-AF91-19D266FE382C";
constexpr const char* kSight = "38E6C98E-7699-4f87-80EC-2F2D633E71B6";
constexpr const char* kWindowShades = "A2BFFA17-14AA-4b46-8B73-9D9439E31660";
constexpr const char* kWoven = "DCDFA16D-FDAE-45b5-8758-6477B9B3819F";
constexpr const char* kConcert = "0C38F204-F299-4de4-B481-7B94C155DE16";

class Overlays : public test::FrameEffect {
protected:
    // Hides the fixture's function of this name: this engine has a graphics system, and pictures.
    static void SetUpTestSuite()
    {
        test::useFilesInMemory();
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
    }
    void SetUp() override { files = {}; }

    /// One base pixel blended with one overlay pixel.
    Bgra over(const char* guid, Bgra base, Bgra overlay)
    {
        for (const char* const name : {"Sight", "NightGlassView", "CamcorderOn", "CamcorderOff", "Concert"})
            files.pixels[std::string(name) + "4_3.png"] = {overlay};
        open(guid, 1, 1);
        return show(base);
    }
};

TEST_F(Overlays, TheShapeOfTheFrameChoosesTheFile)
{
    const auto asked = [&](const char* guid, int width, int height) {
        files.asked.clear();
        open(guid, width, height);
        show();
        show();
        return files.asked;
    };
    using Names = std::vector<std::string>;
    for (const auto& [width, height] : {std::pair{16, 9}, {1280, 720}, {1920, 1080}})
        EXPECT_EQ(asked(kSight, width, height), Names{"Sight16_9.png"}) << width;
    for (const auto& [width, height] : {std::pair{1440, 1080}, {720, 576}, {1366, 768}, {9, 16}, {1, 1}})
        EXPECT_EQ(asked(kSight, width, height), Names{"Sight4_3.png"}) << width;
    EXPECT_EQ(asked(kNightVision, 16, 9), Names{"NightGlassView16_9.png"});
    EXPECT_EQ(asked(kNightVision, 4, 3), Names{"NightGlassView4_3.png"});
    EXPECT_EQ(asked(kCamcorder, 16, 9), (Names{"CamcorderOn16_9.png", "CamcorderOff16_9.png"}));
    EXPECT_EQ(asked(kCamcorder, 4, 3), (Names{"CamcorderOn4_3.png", "CamcorderOff4_3.png"}));
    EXPECT_EQ(asked(kWindowShades, 16, 9), Names{"WindowShades16_9.png"});
    EXPECT_EQ(asked(kWindowShades, 4, 3), Names{"WindowShades4_3.png"});
    EXPECT_EQ(asked(kWoven, 16, 9), Names{"Woven16_9.png"});
    EXPECT_EQ(asked(kWoven, 4, 3), Names{"Woven4_3.png"});
    EXPECT_EQ(asked(kConcert, 16, 9), Names{"Concert16_9.png"});
    EXPECT_EQ(asked(kConcert, 4, 3), Names{"Concert4_3.png"});
}

TEST_F(Overlays, EachBlendsOverItsOwnBase)
{
    const Bgra base{10, 20, 40, 7}; // the mean is 23, a third of that 7
    const Bgra clear{200, 100, 50, 0};
    EXPECT_EQ(over(kSight, base, clear), (Bgra{23, 23, 23, 255}));
    EXPECT_EQ(over(kNightVision, base, clear), (Bgra{7, 23, 7, 255}));
    EXPECT_EQ(over(kCamcorder, base, clear), (Bgra{10, 20, 40, 255}));
    EXPECT_EQ(over(kConcert, base, clear), (Bgra{10, 20, 40, 255}));

    // Blends round up, and at full alpha a 256th of the base remains.
    const Bgra half{200, 100, 50, 128};
    EXPECT_EQ(over(kSight, base, half), (Bgra{112, 62, 37, 255}));
    EXPECT_EQ(over(kNightVision, base, half), (Bgra{104, 62, 29, 255}));
    EXPECT_EQ(over(kCamcorder, base, half), (Bgra{105, 60, 45, 255}));
    EXPECT_EQ(over(kConcert, base, half), (Bgra{105, 60, 45, 255}));
    EXPECT_EQ(over(kCamcorder, {255, 0, 255, 0}, {0, 255, 255, 255}), (Bgra{1, 255, 255, 255}));
}

TEST_F(Overlays, WithoutTheirFileColoursStayAndAlphaIsOpaque)
{
    for (const char* const guid : {kNightVision, kCamcorder, kSight, kWindowShades, kWoven, kConcert}) {
        open(guid, 5, 3);
        EXPECT_EQ(show({10, 20, 40, 7}), (Bgra{10, 20, 40, 255})) << guid;
        files.asked.clear();
        show();
        EXPECT_TRUE(files.asked.empty()) << "a missing file is sought once";
    }
}

TEST_F(Overlays, TheRecordingLightBlinksByTheFramesOfAllCamcorders)
{
    files.pixels["CamcorderOn4_3.png"] = {{1, 1, 1, 255}};
    files.pixels["CamcorderOff4_3.png"] = {{2, 2, 2, 255}};
    std::vector<host::Filter> nodes;
    const host::Image frame(4, 3);
    for (int i = 0; i < 2; ++i) {
        nodes.emplace_back(kCamcorder, 4, 3);
        nodes.back().setInput(frame);
    }
    std::vector<int> lights;
    for (int i = 0; i < 61; ++i)
        lights.push_back(host::bytesOf(nodes[std::size_t(i % 2)].run())[0]);
    // Other tests may have shown frames before, so the first change is where the count starts.
    std::size_t first = 1;
    while (lights[first] == lights[0])
        ASSERT_LT(++first, 13u);
    for (std::size_t i = first; i < lights.size(); ++i)
        ASSERT_EQ(lights[i] == lights[first], (i - first) / 12 % 2 == 0) << "frame " << i;

    // A node without an input shows no frame and is not counted.
    host::Filter idle(kCamcorder, 4, 3);
    CEffectImage* none = nullptr;
    DoFilter(idle.handle(), &none);
    const std::size_t next = 61 - first;
    EXPECT_EQ(host::bytesOf(nodes[0].run())[0] == lights[first], next / 12 % 2 == 0);
}

TEST_F(Overlays, StrengthScalesTheAlphaOfAFrame)
{
    files.pixels["Concert4_3.png"] = {{200, 100, 50, 255}};
    files.pixels["Woven4_3.png"] = files.pixels["WindowShades4_3.png"] = files.pixels["Concert4_3.png"];
    const Bgra base{10, 200, 40, 7};
    for (const char* const guid : {kWindowShades, kWoven}) {
        open(guid, 1, 1);
        EXPECT_EQ(show(base), (Bgra{48, 181, 42, 255})) << "0.2 to begin with: 51 of 256, then 50";
    }
    host::Filter& concert = open(kConcert, 1, 1);
    const auto at = [&](float strength) {
        concert.set("Strength", strength);
        return show(base);
    };
    EXPECT_EQ(show(base), (Bgra{200, 101, 50, 255})) << "1 to begin with";
    EXPECT_EQ(at(0), (Bgra{10, 200, 40, 255}));
    EXPECT_EQ(at(0.5f), (Bgra{105, 151, 45, 255}));
    EXPECT_EQ(at(2), (Bgra{255, 1, 60, 255}));
    EXPECT_EQ(at(-1), (Bgra{0, 255, 31, 255}));
    EXPECT_EQ(at(1e30f), (Bgra{255, 0, 255, 255}));
    EXPECT_EQ(at(-1e30f), (Bgra{0, 255, 0, 255}));
    EXPECT_EQ(at(std::numeric_limits<float>::quiet_NaN()), (Bgra{10, 200, 40, 255}));
    // Equal bytes stay equal at any strength.
    concert.set("Strength", 1e30f);
    EXPECT_EQ(show({200, 100, 50, 0}), (Bgra{200, 100, 50, 255}));
}

TEST_F(Overlays, VectorsNeverShow)
{
    std::mt19937 random(7);
    std::vector<Bgra> noise(1009);
    for (Bgra& p : noise)
        p = {u8(random()), u8(random()), u8(random()), u8(random())};
    for (const char* const name : {"Sight", "NightGlassView", "CamcorderOn", "CamcorderOff", "Concert"})
        files.pixels[std::string(name) + "4_3.png"] = noise;
    for (const char* const guid : {kNightVision, kCamcorder, kSight, kConcert}) {
        for (const float strength : {0.7f, 1.3f}) {
            const auto shown = [&](pixels::VectorLevel level) {
                pixels::limitVectors(level);
                open(guid, 331, 203).set("Strength", strength);
                for (int y = 0; y < 203; ++y)
                    for (int x = 0; x < 331; ++x)
                        frame().at(x, y) = noise[std::size_t(y * 331 + x) * 7 % noise.size()];
                const pixels::ConstView out = show();
                pixels::limitVectors(pixels::VectorLevel::avx512);
                return std::vector<u8>(out.bytes(), out.bytes() + 331 * 203 * 4);
            };
            EXPECT_TRUE(shown(pixels::VectorLevel::base) == shown(pixels::VectorLevel::avx512)) << guid;
        }
    }
}

} // namespace
