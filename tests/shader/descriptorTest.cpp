// Descriptor files: which are found, what is read from them, and what a bad one costs.
#include "EffectEngine/EffectEngine.h"
#include "descriptors/ShaderDescriptor.h"
#include "descriptors/descriptorFiles.h"
#include "engine/effectList.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

std::string guid(int number)
{
    return "0000000" + std::to_string(number) + "-AbCd-4000-8000-00000000000" + std::to_string(number);
}

std::string withGuid(int number, const std::string& members = "")
{
    return "{\n\"GUID\":\"" + guid(number) + "\"" + members + "}\n";
}

class DescriptorScan : public testing::Test {
protected:
    shader::DescriptorMap scan(const std::string& below = "")
    {
        shader::DescriptorMap map;
        shader::scanDescriptors(files.path() + below, map);
        return map;
    }
    test::TemporaryDirectory files;
};

TEST_F(DescriptorScan, TakesEveryFileThatHasConfInItsName)
{
    files.write("a.conf", withGuid(1));
    files.write("b.conf.bak", withGuid(2));
    files.write("c.config", withGuid(3));
    files.write("d.json", withGuid(4));
    files.write("below/e.conf", withGuid(5));
    const auto map = scan();
    EXPECT_EQ(map,
        (shader::DescriptorMap{{guid(1), files.path() + "a.conf"}, {guid(2), files.path() + "b.conf.bak"},
            {guid(3), files.path() + "c.config"}}));
    EXPECT_TRUE(scan("nowhere/").empty());
}

TEST_F(DescriptorScan, TheGuidFollowsTheColonAtOnce)
{
    files.write("space.conf", "{\"GUID\": \"" + guid(1) + "\"}");
    files.write("short.conf", "{\"GUID\":\"0000\"}");
    files.write("long.conf", std::string(160, ' ') + "\"GUID\":\"" + guid(2) + "\""); // cut at 199
    files.write("late.conf", std::string(199, ' ') + "\"GUID\":\"" + guid(3) + "\""); // starts the next piece
    const auto map = scan();
    EXPECT_FALSE(map.contains(guid(1))); // (the text one place further on is what this file registers)
    EXPECT_FALSE(map.contains(guid(2)));
    EXPECT_TRUE(map.contains(guid(3)));
}

TEST_F(DescriptorScan, TheFirstFileKeepsAGuidAndALaterLineMayOfferAnother)
{
    files.write("a.conf", withGuid(1));
    files.write("b.conf", withGuid(1));
    files.write("c.conf", withGuid(1) + withGuid(2) + withGuid(3));
    const auto map = scan();
    EXPECT_EQ(map.at(guid(1)), files.path() + "a.conf");
    EXPECT_EQ(map.at(guid(2)), files.path() + "c.conf");
    EXPECT_FALSE(map.contains(guid(3))); // one GUID a file
}

TEST_F(DescriptorScan, NothingButRegularFilesOfSensibleSizeIsOpened)
{
    ASSERT_EQ(mkfifo((files.path() + "pipe.conf").c_str(), 0600), 0); // opening it would wait for a writer
    std::filesystem::create_directory(files.path() + "folder.conf");
    std::filesystem::create_symlink("/dev/zero", files.path() + "endless.conf");
    files.write("huge.conf", withGuid(1) + std::string(2 << 20, ' '));
    files.write("good.conf", withGuid(2));
    EXPECT_EQ(scan().size(), 1u);
    for (const char* name : {"pipe.conf", "folder.conf", "endless.conf", "none.conf"})
        EXPECT_EQ(shader::readDescriptor(files.path() + name).status, shader::DescriptorStatus::missing)
            << name;
    EXPECT_EQ(shader::readDescriptor(files.path() + "huge.conf").status, shader::DescriptorStatus::broken);
}

TEST(Descriptor, TellsWhatAnEffectNeedsAndReads)
{
    const auto descriptor = shader::parseDescriptor(R"({
        "SHADER": "tint.frag", "INPUTS": 2, "PU": "snow", "LEAD": 2.5,
        "TEXTURES": [{"FILE": "paper.png", "INDEX": 3}, {"FILE": "grain.png"}],
        "HISTORY": 2, "ALPHA": "computed", "RANDOM": true,
        "PARAMS": [
            {"name": "Strength", "type": "float", "default": 0.5, "range": [0, 2], "help": "how much",
             "unit": "percent", "title": "Share"},
            {"name": "Mode", "type": "integer", "default": 1, "choices": ["off", "mix"]},
            {"name": "Tint", "type": "floats", "default": [1, 0.5, 0.25]},
            {"name": "Free", "type": "integers", "count": 2}
        ]})");
    ASSERT_TRUE(descriptor);
    EXPECT_EQ(descriptor->shader, "tint.frag");
    EXPECT_EQ(descriptor->inputs, 2u);
    EXPECT_EQ(descriptor->particleTemplate, "snow");
    EXPECT_EQ(descriptor->lead, 2.5);
    ASSERT_EQ(descriptor->textures.size(), 2u);
    EXPECT_EQ(descriptor->textures[0].file, "paper.png");
    EXPECT_EQ(descriptor->textures[0].index, 3u);
    EXPECT_EQ(descriptor->textures[1].index, 0u);
    EXPECT_EQ(descriptor->facts.history.frames, 2);
    EXPECT_EQ(descriptor->facts.alpha, KEXSDK::Alpha::computed);
    EXPECT_TRUE(descriptor->facts.random);

    ASSERT_EQ(descriptor->params.size(), 4u);
    const ParamInfo& strength = descriptor->params[0];
    EXPECT_EQ(std::string(strength.name) + "/" + strength.help + "/" + strength.unit + "/" + strength.title,
        "Strength/how much/percent/Share");
    EXPECT_STREQ(descriptor->params[1].title, "");
    EXPECT_TRUE(strength.declared);
    EXPECT_EQ(strength.value[0], 0.5);
    EXPECT_EQ(strength.high, 2);
    EXPECT_STREQ(descriptor->params[1].choices, "0 off, 1 mix");
    EXPECT_EQ(descriptor->params[1].high, 1);
    EXPECT_EQ(descriptor->params[2].elements, 3u);
    EXPECT_EQ(descriptor->params[2].value[2], 0.25);
    EXPECT_EQ(descriptor->params[3].elements, 2u);
    EXPECT_FALSE(descriptor->params[3].declared);
}

TEST(Descriptor, AMemberOfTheWrongTypeCountsAsAbsent)
{
    const auto descriptor = shader::parseDescriptor(R"({
        "SHADER": 5, "INPUTS": "2", "PU": [], "TEXTURES": "paper.png", "PARAMS": [
            {"name": "A", "type": "float", "default": "0.5", "range": [2, 1]},
            {"name": "B", "type": "integer", "default": 1.5, "title": 7},
            {"name": "C", "type": "matrix"}, {"name": 4, "type": "float"}, {"name": "u_offset", "type": "floats"},
            {"name": "A", "type": "integer"}]})");
    ASSERT_TRUE(descriptor);
    EXPECT_EQ(descriptor->shader, "");
    EXPECT_EQ(descriptor->inputs, 1u);
    EXPECT_TRUE(descriptor->textures.empty());
    ASSERT_EQ(descriptor->params.size(), 2u);
    EXPECT_EQ(descriptor->params[0].type, ParamType::real);
    EXPECT_FALSE(descriptor->params[0].declared);
    EXPECT_FALSE(descriptor->params[1].declared);
    EXPECT_STREQ(descriptor->params[1].title, "");
    for (const char* inputs : {"-1", "17", "1e9", "null", "{}", "1.5"})
        EXPECT_EQ(shader::parseDescriptor(std::string("{\"INPUTS\":") + inputs + "}")->inputs, 1u) << inputs;
    for (const char* lead : {"-1", "61", "1e300", "\"5\"", "null", "[3]"})
        EXPECT_EQ(shader::parseDescriptor(std::string("{\"LEAD\":") + lead + "}")->lead, 0) << lead;
}

TEST(Descriptor, TextsWithControlCharactersCountAsAbsent)
{
    const auto descriptor = shader::parseDescriptor(
        R"({"SHADER": "x.frag\n2026 ERROR", "PU": "a\u0000b", "TITLE": "\u001b[31mred", "SUMMARY": "grün",
            "PARAMS": [{"name": "a", "type": "float", "default": 1, "help": "two\nlines", "unit": "mm", "title": "a\tb"}]})");
    ASSERT_TRUE(descriptor);
    EXPECT_EQ(descriptor->shader, "");
    EXPECT_EQ(descriptor->particleTemplate, "");
    EXPECT_EQ(descriptor->facts.title, "");
    EXPECT_EQ(descriptor->facts.summary, "grün");
    EXPECT_STREQ(descriptor->params.at(0).help, "");
    EXPECT_STREQ(descriptor->params.at(0).title, "");
    EXPECT_STREQ(descriptor->params.at(0).unit, "mm");
}

TEST_F(DescriptorScan, ListedEffectsCompleteWhatTheirFilesLeaveOut)
{
    files.write("Shader/Soft_Glow 2.conf", withGuid(1));
    files.write("Shader/broken.conf", withGuid(2, ":"));
    files.write("Shader/lookup/warm.conf", withGuid(3, R"(,"TITLE":"Warm evening","SUMMARY":"Warms.")"));
    files.write("Transitions/other.conf", withGuid(1, R"(,"NAME":"shadowed")"));
    files.write("Transitions/fade.conf",
        withGuid(4, R"(,"INPUTS":2,"NAME":"blank","PARAMS":[{"name":"Width","type":"float","default":2}])"));
    listShaderEffectsOf(files.path());

    const KEXSDK::EffectInfo* const glow = findEffect("soft-glow-2");
    ASSERT_TRUE(glow);
    EXPECT_EQ(glow->guid, guid(1));
    EXPECT_EQ(glow->family, "shader");
    EXPECT_TRUE(glow->needsGpu);
    EXPECT_FALSE(findEffect(guid(2)));
    EXPECT_EQ(findEffect("warm")->title, "Warm evening");
    EXPECT_FALSE(findEffect("shadowed"));
    const KEXSDK::EffectInfo* const fade = findEffect("blank-2"); // there is an effect "blank"
    ASSERT_TRUE(fade);
    EXPECT_EQ(fade->family, "transition");
    EXPECT_EQ(fade->inputs, 2u);
    const auto params = describeParameters(guid(4));
    EXPECT_STREQ(params.front()->name, kEffectEnable);
    EXPECT_STREQ(params.back()->name, "Width");

    listShaderEffectsOf(files.path() + "nowhere/");
    EXPECT_FALSE(findEffect(guid(4)));
    EXPECT_STREQ(params.back()->name, "Width"); // earlier answers stay valid
}

} // namespace
