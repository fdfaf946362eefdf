// Particle scenes whose attributes change while they run, at any rate of frames; and templates that ask too
// much.
#include "shader/ShaderEngine.h"

#include <algorithm>
#include <string>

namespace {

/// A particle system of one emitter.
std::string system(const std::string& name, const std::string& emitter, const std::string& parameters,
    const std::string& settings = "quota 500\nparticle_width 1.5\nparticle_height 1.5\n")
{
    return "particle_system " + name + "\n{\nmaterial sprite\n" + settings + "emitter " + emitter
        + "\n{\ncolour 1 1 1 1\n" + parameters + "}\n}\n";
}

class ChangingParticles : public test::ShaderEngine {
protected:
    static constexpr int kWidth = 96;
    static constexpr int kHeight = 64;
    using Picture = std::vector<unsigned char>;

    void SetUp() override { files.write("Particles/sprite.material", test::kSpriteMaterial); }

    /// The descriptor of that number shows the template "t" + number.
    void scene(int number, const std::string& emitter, const std::string& parameters)
    {
        const std::string name = "t" + std::to_string(number);
        files.write("Particles/" + name + ".particle", system(name, emitter, parameters));
        describe(number, R"("PU": ")" + name + R"(")");
    }
    host::Filter node(int number)
    {
        auto made = filter(number, kWidth, kHeight);
        made.setInput(black_);
        return made;
    }
    static Picture at(host::Filter& filter, int frame)
    {
        filter.set(kEffectCurrentTime, float(frame) / 25);
        return bytes(filter.run());
    }
    static int lit(const Picture& picture)
    {
        int count = 0;
        for (std::size_t i = 0; i < picture.size(); i += 4)
            count += picture[i] + picture[i + 1] + picture[i + 2] > 0;
        return count;
    }

private:
    host::Image black_ = plain(kWidth, kHeight, {0, 0, 0, 255});
};

constexpr const char* kBox = "width 50\nheight 30\ndepth 1\nvelocity 0\n";

TEST_F(ChangingParticles, OneChangedAttributeLeavesTheClocksOfTheOthersAlone)
{
    scene(0, "Box", std::string(kBox) + "emission_rate 100\ntime_to_live 0.2\n");
    scene(1, "Box",
        std::string(kBox)
            + "emission_rate 100\ntime_to_live 0.2\nduration_min 0.2\nduration_max 0.4\nrepeat_delay_min "
              "0.1\n"
              "repeat_delay_max 0.3\n");
    start();
    auto ending = node(0);
    ending.set(":T00:E00.Duration", 0.6f);
    for (int frame = 0; frame <= 60; ++frame) {
        ending.set(":T00:E00.EmissionRate", 100.0f + float(frame));
        const int pixels = lit(at(ending, frame));
        if (frame >= 3 && frame <= 15) {
            EXPECT_GT(pixels, 0) << frame;
        }
        if (frame >= 22) {
            EXPECT_EQ(pixels, 0) << frame;
        }
    }
    // What has no effect on the picture changes nothing of it, however often it is set.
    for (const int number : {0, 1}) {
        auto quiet = node(number);
        auto busy = node(number);
        for (auto* scene : {&quiet, &busy}) {
            number == 0 ? scene->set(":T00:E00.Duration", 0.4f)
                        : scene->set(":T00:E00.Duration", std::vector<float>{0.2f, 0.5f});
            number == 0 ? scene->set(":T00:E00.RepeatDelay", 0.4f)
                        : scene->set(":T00:E00.RepeatDelay", std::vector<float>{0.3f, 0.6f});
        }
        std::vector<Picture> frames;
        for (int frame = 0; frame <= 50; ++frame) {
            busy.set(":T00:E00.Mass", float(frame + 1));
            if (number == 0)
                busy.set(":T00:E00.Duration", 0.4f);
            frames.push_back(at(quiet, frame));
            EXPECT_TRUE(at(busy, frame) == frames.back()) << number << " frame " << frame;
        }
        EXPECT_GT(std::ranges::count_if(frames, [](const Picture& picture) { return lit(picture) == 0; }), 1);
        auto direct = node(number);
        direct.set(":T00:E00.Duration", 0.4f);
        direct.set(":T00:E00.RepeatDelay", 0.4f);
        if (number == 1) {
            direct.set(":T00:E00.Duration", std::vector<float>{0.2f, 0.5f});
            direct.set(":T00:E00.RepeatDelay", std::vector<float>{0.3f, 0.6f});
        }
        for (const int frame : {43, 44, 17, 30})
            EXPECT_TRUE(at(direct, frame) == frames[std::size_t(frame)]) << number << " frame " << frame;
    }
}

TEST_F(ChangingParticles, AChangedDurationCountsWhatHasPassed)
{
    scene(0, "Box", std::string(kBox) + "emission_rate 100\ntime_to_live 0.2\nduration 10\n");
    start();
    auto shortened = node(0);
    EXPECT_GT(lit(at(shortened, 20)), 0);
    shortened.set(":T00:E00.Duration", 0.4f);
    EXPECT_EQ(lit(at(shortened, 28)), 0) << "over since frame 10";
    auto prolonged = node(0);
    prolonged.set(":T00:E00.Duration", 0.8f);
    EXPECT_GT(lit(at(prolonged, 10)), 0);
    prolonged.set(":T00:E00.Duration", 1.2f);
    EXPECT_GT(lit(at(prolonged, 29)), 0);
    EXPECT_EQ(lit(at(prolonged, 38)), 0);
}

TEST_F(ChangingParticles, ColourRangesStandOverAColourThatChanges)
{
    scene(0, "Box", std::string(kBox) + "emission_rate 100\ntime_to_live 0.5\n");
    start();
    auto walking = node(0);
    walking.set(":T00:E00.ColourRangeStart", std::vector<float>{1, 0, 0, 1});
    walking.set(":T00:E00.ColourRangeEnd", std::vector<float>{1, 0, 0, 1});
    at(walking, 5);
    walking.set(":T00:E00.Colour", std::vector<float>{0, 1, 0, 1});
    const Picture walked = at(walking, 30);
    at(walking, 3);
    EXPECT_TRUE(at(walking, 30) == walked) << "as from the start";
}

TEST_F(ChangingParticles, SizesReachEveryTypeOfEmitter)
{
    const char* const types[] = {
        "Point", "Box", "Cylinder", "Ellipsoid", "HollowEllipsoid", "Ring", "Ranged"};
    int number = 0;
    for (const char* type : types) {
        const std::string area = type == std::string("Point") || type == std::string("Ranged")
            ? ""
            : "width 8\nheight 8\ndepth 1\n";
        const std::string rest = area + "velocity 0\nemission_rate 25\ntime_to_live 9\n";
        scene(number++, type, rest);
        scene(number++, type, rest + "all_dimensions_min 20\nall_dimensions_max 24\n");
    }
    start();
    for (int i = 0; i < number; i += 2) {
        SCOPED_TRACE(types[i / 2]);
        const auto shows = [&](const char* attribute, float size) {
            auto scene = node(i);
            scene.set(attribute, size);
            return lit(at(scene, 20));
        };
        const int usual = shows(":T00:E00.Nothing", 0);
        ASSERT_GT(usual, 0);
        EXPECT_GT(shows(":T00:E00.AllDimensions", 20), usual * 4);
        EXPECT_GT(shows(":T00:E00.ParticleWidth", 30), usual * 2);
        EXPECT_GT(shows(":T00:E00.ParticleHeight", 30), usual * 2);
        EXPECT_EQ(shows(":T00:E00.AllDimensions", -1), 0);
        auto ranged = node(i + 1);
        EXPECT_GT(lit(at(ranged, 20)), usual * 4) << "in the template";
    }
}

TEST_F(ChangingParticles, AFallingQuotaLetsParticlesLiveOutAndStartsFewer)
{
    scene(0, "Box", std::string(kBox) + "emission_rate 200\ntime_to_live 1\n");
    start();
    constexpr int kPixelsOfOne = 9;
    auto scene = node(0);
    const int many = lit(at(scene, 40));
    EXPECT_GT(many, 20 * kPixelsOfOne);
    scene.set(":T00.VPQuota", 10);
    EXPECT_GT(lit(at(scene, 45)), many / 2) << "those that are there live out";
    for (const int frame : {70, 90, 120}) {
        const int few = lit(at(scene, frame));
        EXPECT_GT(few, 0) << frame;
        EXPECT_LE(few, 10 * kPixelsOfOne) << frame;
    }
    scene.set(":T00.VPQuota", 0);
    EXPECT_EQ(lit(at(scene, 150)), 0);
    scene.set(":T00.VPQuota", 500);
    EXPECT_GT(lit(at(scene, 190)), 20 * kPixelsOfOne);
    scene.set(":T00.VPQuota", 900);
    EXPECT_GT(lit(at(scene, 220)), 20 * kPixelsOfOne);

    auto low = node(0);
    low.set(":T00.VPQuota", 10);
    const int few = lit(at(low, 90));
    EXPECT_GT(few, 0);
    EXPECT_LE(few, 10 * kPixelsOfOne);
    at(low, 4);
    EXPECT_EQ(lit(at(low, 90)), few);
}

TEST_F(ChangingParticles, RatesFitIntoAStepOfAnyLength)
{
    // 65,536 particles in the ten seconds of a frame are none in 16 bits.
    scene(0, "Box", std::string(kBox) + "emission_rate 6553.6\ntime_to_live 100\n");
    scene(1, "Ranged", std::string(kBox) + "shape box\nemission_rate 60000\ntime_to_live 100\n");
    start();
    for (const int number : {0, 1}) {
        auto slow = node(number);
        slow.set(kEffectFrameRate, 0.1f);
        slow.set(kEffectCurrentTime, 10.0f);
        EXPECT_GT(lit(bytes(slow.run())), 200) << number;
    }
}

TEST_F(ChangingParticles, ARequestSimulatesSoManyFramesAndTheNextOneGoesOn)
{
    constexpr int kMost = 10'000;
    scene(0, "Point", "emission_rate 2\nangle 180\nvelocity 9\ntime_to_live 1\n");
    start(true);
    auto far = node(0);
    const auto log = [&] { return files.read("EffectEngine.log"); };
    const Picture last = at(far, kMost);
    EXPECT_EQ(log().find("simulated at once"), std::string::npos);
    const Picture beyond = at(far, kMost + 30);
    EXPECT_FALSE(beyond == last);

    auto farther = node(0);
    EXPECT_TRUE(at(farther, kMost + 30) == last) << "as far as one request goes";
    EXPECT_TRUE(at(farther, kMost + 30) == beyond) << "the next one goes on";
    farther.set(kEffectCurrentTime, 1e9f);
    EXPECT_NO_THROW(farther.run());
    const std::string text = log();
    const auto line = text.find("simulated at once");
    EXPECT_NE(line, std::string::npos);
    EXPECT_EQ(text.find("simulated at once", line + 1), std::string::npos) << "said once";
}

TEST_F(ChangingParticles, AScriptThatCannotBeReadLeavesTheOthersAlone)
{
    scene(0, "Point", "emission_rate 25\nvelocity 9\n");
    files.write("Particles/a.particle", system("a", "Nothing", ""));
    files.write("Particles/b.particle", "particle_system b\n{\nemitter Point\n{\nemitter Box\n{\n}\n}\n}\n");
    files.write("Particles/d.particle", "import * from \"d.particle\"\n");
    files.write("Particles/e.particle", "particle_system e\n" + std::string(100'000, '{'));
    files.write("Particles/f.particle", "emitter Point\n{\n}\n");
    files.write("Particles/g.particle", "affector Scaler\n{\n}\n");
    files.write("Particles/a.material", "material a\n{\ntechnique\n{\npass\n{\n");
    files.write("Particles/z.particle",
        system("t1", "Point", "emission_rate nan\nvelocity -inf\ntime_to_live -1\nangle nan\n")
            + system(
                "t2", "Ring", "inner_width 7\n", "quota 4000000000\nrenderer nothing\nparticle_width -1\n"));
    for (const int number : {1, 2})
        describe(number, R"("PU": "t)" + std::to_string(number) + R"(")");
    start(true);
    for (const int number : {0, 1, 2}) {
        auto scene = node(number);
        EXPECT_NO_THROW(at(scene, 20)) << number;
    }
    auto usual = node(0);
    EXPECT_GT(lit(at(usual, 20)), 0);
    const std::string log = files.read("Ogre.log");
    for (const char* line :
        {"The script a.particle cannot", "The script b.particle cannot", "The script d.particle cannot",
            "The script e.particle cannot", "The script f.particle cannot", "The script g.particle cannot",
            "\"emission_rate nan\" is left out", "\"time_to_live -1\" is taken as \"0\"",
            "\"quota 4000000000\" is taken as \"16383\"", "no renderer \"nothing\""})
        EXPECT_NE(log.find(line), std::string::npos) << line;
}

TEST_F(ChangingParticles, AFaultOfOneSceneStaysItsOwn)
{
    scene(0, "Point", "emission_rate 25\nvelocity 9\n");
    files.write("Particles/t1.particle",
        "particle_system t1\n{\nemitter Point\n{\n}\naffector ColourImage\n{\nimage absent.png\n}\n}\n");
    describe(1, R"("PU": "t1")");
    start(true);
    auto alone = node(0);
    std::vector<Picture> frames;
    for (int frame = 0; frame < 12; ++frame)
        frames.push_back(at(alone, frame));
    auto usual = node(0);
    auto faulty = node(1);
    for (int frame = 0; frame < 12; ++frame) {
        EXPECT_EQ(lit(at(faulty, frame)), 0) << "the picture without particles";
        EXPECT_TRUE(at(usual, frame) == frames[std::size_t(frame)]) << frame;
    }
    const std::string log = files.read("EffectEngine.log");
    EXPECT_NE(log.find("The particles of [t1] are left out"), std::string::npos);
}

} // namespace
