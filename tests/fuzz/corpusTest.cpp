// The fuzzers' corpus, read again by the ordinary tests.
#include "fuzz/examine.h"
#include "fuzz/examineDescriptor.h"
#include "shader/ShaderEngine.h"
#include "support/paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

namespace {

void readAll(const char* directory, lut::LutFile (*parse)(std::istream&))
{
    int accepted = 0;
    int refused = 0;
    for (const auto& entry :
        std::filesystem::directory_iterator(std::filesystem::path(test::kFuzzCorpus) / directory)) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const lut::LutFile file = parse(stream);
        ++(file.status == lut::LutStatus::success ? accepted : refused);
        EXPECT_STREQ(fuzz::faultOf(file), nullptr) << entry.path();
    }
    EXPECT_GT(accepted, 3);
    EXPECT_GT(refused, 3);
}

TEST(FuzzCorpus, EveryCubeFileIsReadOrRefused) { readAll("cube", lut::parseCube); }

TEST(FuzzCorpus, EveryThreeDlFileIsReadOrRefused) { readAll("3dl", lut::parse3dl); }

TEST(FuzzCorpus, EveryDescriptorIsReadOrRefused)
{
    int read = 0;
    int refused = 0;
    for (const auto& entry :
        std::filesystem::directory_iterator(std::filesystem::path(test::kFuzzCorpus) / "descriptor")) {
        const shader::DescriptorFile file = shader::readDescriptor(entry.path().string());
        ++(file.descriptor ? read : refused);
        if (file.descriptor) {
            EXPECT_STREQ(fuzz::faultOf(*file.descriptor), nullptr) << entry.path();
        }
    }
    EXPECT_GT(read, 3);
    EXPECT_GT(refused, 3);
}

using ParticleCorpus = test::ShaderEngine;

TEST_F(ParticleCorpus, NoTemplateEndsTheEngine)
{
    int drawn = 0;
    for (const auto& entry :
        std::filesystem::directory_iterator(std::filesystem::path(test::kFuzzCorpus) / "particles")) {
        SCOPED_TRACE(entry.path());
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        files.write("Particles/fuzz.particle", text);
        static const std::regex kTemplate("particle_system +([a-z0-9/]+)");
        std::smatch name;
        const bool found = std::regex_search(text, name, kTemplate);
        describe(0, R"("PU": ")" + (found ? name[1].str() : "none") + R"(")");
        start();
        const auto picture = plain(24, 16, {0, 0, 0, 255});
        auto scene = filter(0, 24, 16);
        scene.setInput(picture);
        for (const int frame : {1, 2, 20, 5}) {
            scene.set(kEffectCurrentTime, float(frame) / 25);
            EXPECT_NO_THROW(scene.run());
        }
        drawn += found;
        engine.reset();
    }
    EXPECT_GT(drawn, 10);
}

} // namespace
