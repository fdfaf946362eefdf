// Particle scenes: whatever way a host takes to a frame, it sees the same picture; attributes by name.
#include "particles/attributePath.h"
#include "pictures/PictureCodecs.h"
#include "shader/ShaderEngine.h"

#include <algorithm>
#include <limits>

namespace {

using particles::AttributePath;
using particles::parseAttributePath;

TEST(AttributePath, SelectsByLettersWithTwoDigits)
{
    EXPECT_EQ(parseAttributePath(".SmoothLod"), (AttributePath{-1, -1, -1, "SmoothLod"}));
    EXPECT_EQ(parseAttributePath(":T01.VPQuota"), (AttributePath{1, -1, -1, "VPQuota"}));
    EXPECT_EQ(parseAttributePath(":T00:E12.EmissionRate"), (AttributePath{0, 12, -1, "EmissionRate"}));
    EXPECT_EQ(parseAttributePath(":T09:A03.x"), (AttributePath{9, -1, 3, "x"}));
    EXPECT_EQ(parseAttributePath(":E01:T00.Width"), (AttributePath{0, -1, -1, "Width"}));
    EXPECT_EQ(parseAttributePath(":E01.Width"), (AttributePath{-1, -1, -1, "Width"}));
    for (const char* malformed :
        {":T1.Width", ":X00.Width", ":T00", ":T00:E0x.Width", ":", "Width", ":T00Width"})
        EXPECT_EQ(parseAttributePath(malformed), AttributePath{}) << malformed;
}

constexpr const char* kTemplates = R"(
particle_system plain
{
    material sprite
    particle_width 2
    particle_height 2
    quota 200
    emitter Point
    {
        emission_rate 25
        angle 180
        velocity_min 5
        velocity_max 12
        time_to_live 3
        colour 1 0.5 0.25 1
    }
    affector DirectionRandomiser
    {
        randomness 20
    }
}
particle_system plain/1
{
    material sprite
    particle_width 1
    particle_height 1
    emitter Box
    {
        width 40
        height 30
        depth 1
        emission_rate 10
        velocity 0
        time_to_live 1
        colour 0 0 1 1
    }
}
particle_system still
{
    material sprite
    quota 100
    particle_width 4
    particle_height 4
    emitter Ranged
    {
        emission_rate 25
        velocity 0
        time_to_live 100
        colour 1 1 1 1
    }
}
particle_system ranged
{
    material sprite
    quota 1000
    particle_width 1
    particle_height 1
    emitter Ranged
    {
        shape box
        width 60
        height 40
        depth 1
        emission_rate_min 50
        emission_rate_max 300
        angle_min 80
        angle_max 90
        velocity_min 1
        velocity_max 200
        time_to_live_min 0.5
        time_to_live_max 3
        all_dimensions_min 0.5
        all_dimensions_max 2
        mass_min 1
        mass_max 20
        colour 1 1 1 1
    }
    affector MassForce
    {
        force_vector 0 60 0
    }
    affector MaxVelocity
    {
        limit 30
    }
}
)";

// A template with more particles than OGRE can draw, and than any scene needs.
constexpr const char* kFlood = R"(
particle_system flood
{
    material sprite
    quota 1000000
    emitter Ranged
    {
        emission_rate_min 1000000
        emission_rate_max 2000000
        time_to_live 100
    }
    affector MaxVelocity
    {
        limit 1
    }
}
)";

class Particles : public test::ShaderEngine {
protected:
    static constexpr int kWidth = 96;
    static constexpr int kHeight = 64;

    void SetUp() override
    {
        files.write("Particles/sprite.material", test::kSpriteMaterial);
        files.write("Particles/templates.particle", std::string(kTemplates) + kFlood);
        describe(0, R"("PU": "plain")");
        describe(1, R"("PU": "still")");
        describe(2, R"("PU": "ranged")");
        describe(4, R"("PU": "flood")");
        start();
        input.emplace(plain(kWidth, kHeight, {0, 0, 0, 255}));
    }

    host::Filter scene(int number)
    {
        auto filter = this->filter(number, kWidth, kHeight);
        filter.setInput(*input);
        return filter;
    }
    static std::vector<unsigned char> at(host::Filter& filter, int frame)
    {
        filter.set(kEffectCurrentTime, float(frame) / 25);
        return bytes(filter.run());
    }
    /// Pixels that are not the picture's black.
    static int lit(const std::vector<unsigned char>& picture)
    {
        int count = 0;
        for (std::size_t i = 0; i < picture.size(); i += 4)
            count += picture[i] + picture[i + 1] + picture[i + 2] > 0;
        return count;
    }

    std::optional<host::Image> input;
};

TEST_F(Particles, EveryWayToAFrameShowsTheSamePicture)
{
    for (const int template_ : {0, 2}) {
        SCOPED_TRACE(template_);
        auto walking = scene(template_);
        std::vector<std::vector<unsigned char>> frames;
        for (int i = 0; i <= 30; ++i)
            frames.push_back(at(walking, i));
        EXPECT_EQ(lit(frames[0]), 0);
        EXPECT_GT(lit(frames[30]), 50);
        EXPECT_NE(frames[29], frames[30]);

        auto other = scene(template_); // lives beside the first one from here on
        for (const int frame : {30, 10, 11, 10, 25, 25, 0, 3, 30, 29})
            EXPECT_TRUE(at(other, frame) == frames[std::size_t(frame)]) << "frame " << frame;
        // Two scenes draw in turns.
        auto third = scene(template_);
        for (const int frame : {5, 6, 20}) {
            EXPECT_TRUE(at(other, frame) == frames[std::size_t(frame)]) << "frame " << frame;
            EXPECT_TRUE(at(third, frame) == frames[std::size_t(frame)]) << "frame " << frame;
        }
    }
}

TEST_F(Particles, TheFrameRateGivesTheStep)
{
    auto filter = scene(1);
    filter.set(kEffectFrameRate, 50.0f);
    filter.set(kEffectCurrentTime, 1.0f);
    const auto fine = bytes(filter.run());
    auto coarse = scene(1);
    coarse.set(kEffectFrameRate, 10.0f);
    coarse.set(kEffectCurrentTime, 1.0f);
    EXPECT_TRUE(bytes(coarse.run()) == fine) << "what stands still does not depend on steps";
    EXPECT_GT(lit(fine), 30);
    for (const float wild : {0.0f, -5.0f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
        auto node = scene(1);
        node.set(kEffectFrameRate, wild);
        node.set(kEffectCurrentTime, wild > 1 ? 0.5f : wild);
        EXPECT_NO_THROW(node.run());
    }
}

// Attributes are told by what they do to still particles: where the lit pixels are, and how many.
TEST_F(Particles, AttributesReachTechniquesAndEmitters)
{
    const auto shows = [&](auto... settings) {
        auto filter = scene(1);
        (filter.set(settings.first, settings.second), ...);
        return at(filter, 20);
    };
    using Real = std::pair<const char*, float>;
    using Reals = std::pair<const char*, std::vector<float>>;
    const auto usual = shows();
    const int size = lit(usual);
    ASSERT_GT(size, 20);
    EXPECT_GT(lit(shows(Real{":T00.Width", 8})), size * 3 / 2);
    EXPECT_GT(lit(shows(Real{":T00:E00.AllDimensions", 8})), size * 3);
    EXPECT_GT(lit(shows(Real{":T00:E00.ParticleHeight", 8})), size * 3 / 2);
    EXPECT_EQ(lit(shows(Real{":T00:E00.EmissionRate", 0})), 0);
    EXPECT_EQ(lit(shows(Real{":T00:E00.Duration", 0.1f}, Real{":T00:E00.TimeToLive", 0.1f})), 0);
    EXPECT_EQ(lit(shows(std::pair{":T00.VPQuota", 0})), 0);
    EXPECT_EQ(lit(shows(Reals{":T00.position", {500, 0, 0}})), 0);
    EXPECT_EQ(lit(shows(Reals{":T00:E00.position", {500, 0, 0}})), 0);
    EXPECT_GT(lit(shows(Real{":T00:E00.Velocity", 20}, Real{":T00:E00.Angle", 90})), size * 2);
    const auto red = shows(Reals{":T00:E00.Colour", {1, 0, 0, 1}});
    EXPECT_EQ(lit(red), size);
    EXPECT_EQ(std::ranges::count(red, 255), size + kWidth * kHeight); // one byte a particle pixel, and alpha
    // Selections that are not there, values that do not fit, and what has no counterpart.
    for (const auto& same : {shows(Real{":T01.Width", 8}), shows(Real{":T00:E01.EmissionRate", 0}),
             shows(Real{":T00:E01.Width", 8}), shows(Real{":T00:A00.Width", 8}), shows(Real{".Width", 8}),
             shows(Reals{":T00.position", {500, 0}}), shows(Reals{":T00:E00.EmissionRate", {0, 0}}),
             shows(Reals{":T00:E00.Colour", {1, 0, 0}}),
             shows(Real{":T00.Width", std::numeric_limits<float>::quiet_NaN()}),
             shows(std::pair{".SmoothLod", 1}), shows(std::pair{":T00.SHCDimension", 5}),
             shows(Reals{":T00.Width", {}}), shows(Real{":T00:E00.ParticleDepth", 9})})
        EXPECT_TRUE(same == usual);
    for (const float wild : {-1e30f, 1e30f, std::numeric_limits<float>::infinity()})
        for (const char* name : {":T00.Width", ":T00.MaxVelocity", ":T00:E00.EmissionRate",
                 ":T00:E00.Velocity", ":T00:E00.AllDimensions", ":T00:E00.Duration", ":T00:E00.RepeatDelay",
                 ":T00:E00.TimeToLive", ":T00:E00.Angle", ":T00:E00.Mass"})
            EXPECT_NO_THROW(shows(Real{name, wild})) << name << " = " << wild;
    for (const int wild : {-1, 1 << 30})
        EXPECT_NO_THROW(shows(std::pair{":T00.VPQuota", wild}, std::pair{":T00.EEQuota", wild}));
}

TEST_F(Particles, ARandomNumberTakesTwoValuesAndAFixedOneTakesOne)
{
    const auto shows = [&](const char* name, std::vector<float> ends) {
        auto filter = scene(2);
        ends.size() == 1 ? filter.set(name, ends[0]) : filter.set(name, ends);
        return at(filter, 20);
    };
    const auto usual = shows(":T00:E00.Nothing", {0});
    EXPECT_EQ(lit(shows(":T00:E00.EmissionRate", {0, 0})), 0);
    EXPECT_TRUE(shows(":T00:E00.EmissionRate", {0}) == usual);
    EXPECT_GT(lit(shows(":T00:E00.AllDimensions", {5, 6})), lit(usual) * 2);
    EXPECT_TRUE(shows(":T00:E00.Velocity", {0}) == usual);
    EXPECT_FALSE(shows(":T00:E00.Velocity", {0, 1}) == usual);
    EXPECT_FALSE(shows(":T00:E00.Mass", {0.001f, 0.002f}) == usual);
    EXPECT_FALSE(shows(":T00.MaxVelocity", {1}) == usual);
}

TEST_F(Particles, AttributesHoldWhenTheSceneBeginsAnew)
{
    auto filter = scene(0);
    const auto usual = at(filter, 12);
    filter.set(":T00:E00.EmissionRate", 100.0f);
    const auto after = at(filter, 20);
    const auto replayed = at(filter, 12);
    EXPECT_GT(lit(replayed), lit(usual));
    EXPECT_FALSE(after == at(filter, 20)) << "the rate holds from the first frame on now";
    EXPECT_TRUE(replayed == at(filter, 12));
}

TEST_F(Particles, SpritesAreReadFromPictureFiles)
{
    const std::vector<u8> red = [] {
        std::vector<u8> pixels;
        for (int i = 0; i < 16 * 16; ++i)
            pixels.insert(pixels.end(), {0, 0, 255, 255});
        return pixels;
    }();
    const auto sprite = [&](int number, const std::string& file) {
        const std::string name = "sprite" + std::to_string(number);
        files.write("Particles/" + name + ".material",
            "material " + name
                + "\n{\ntechnique\n{\npass\n{\nlighting off\ndepth_write off\nscene_blend "
                  "alpha_blend\ntexture_unit\n{\ntexture "
                + file + "\n}\n}\n}\n}\n");
        files.write("Particles/" + name + ".particle",
            "particle_system " + name + "\n{\nmaterial " + name
                + "\nparticle_width 20\nparticle_height 20\nemitter Ranged\n{\nemission_rate "
                  "25\nvelocity 0\n"
                  "time_to_live 100\n}\n}\n");
        describe(number, R"("PU": ")" + name + R"(")");
    };
    const char* const names[] = {"red.png", "red.jpg", "red.bmp", "red.tga"};
    for (int i = 0; i < 4; ++i) {
        const auto bytes = pictures::encode(*pictures::kindOf(names[i]), red.data(), 16, 16);
        files.write(std::string("Particles/") + names[i], std::string(bytes.begin(), bytes.end()));
        sprite(10 + i, names[i]);
    }
    files.write("Particles/short.png", files.read("Particles/red.png").substr(0, 40));
    sprite(20, "short.png");
    sprite(21, "absent.png");
    engine.reset();
    start(true);
    for (int i = 0; i < 4; ++i) {
        auto filter = scene(10 + i);
        const auto picture = at(filter, 20);
        const u8* const pixel = &picture[(kHeight / 2 * kWidth + kWidth / 2) * 4];
        EXPECT_TRUE(pixel[2] > 250 && pixel[1] < 5 && pixel[0] < 5) << names[i];
    }
    for (const int broken : {20, 21}) {
        auto filter = scene(broken);
        EXPECT_GT(lit(at(filter, 20)), 100) << "drawn without its picture";
    }
    EXPECT_NE(files.read("Ogre.log").find("cannot be read as a picture: short.png"), std::string::npos);
}

TEST_F(Particles, AFloodIsDammed)
{
    auto filter = scene(4);
    EXPECT_GT(lit(at(filter, 20)), 0);
}

TEST_F(Particles, DescribedAttributesChangeNothing)
{
    describe(3, R"("PU": "still", "PARAMS": [{"name": ":T00.Width", "type": "float", "default": 12}])");
    engine.reset();
    start();
    auto usual = scene(1);
    auto described = scene(3);
    EXPECT_TRUE(at(described, 20) == at(usual, 20));
}

} // namespace
