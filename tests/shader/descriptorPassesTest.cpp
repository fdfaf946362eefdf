// The passes of a descriptor: how they are read, and that a list with one fault gives none.
#include "descriptors/ShaderDescriptor.h"

#include <gtest/gtest.h>

namespace {

using shader::PassInput;
using Source = PassInput::Source;
using Wrap = PassInput::Wrap;

shader::DescriptorPtr parse(const std::string& passes, const std::string& members = "")
{
    return shader::parseDescriptor("{\"PASSES\": " + passes + members + "}");
}

TEST(DescriptorPasses, TellWhatIsDrawnFromWhat)
{
    const auto descriptor = parse(R"([
        {"NAME": "bright", "SHADER": "bright.frag", "SCALE": 0.25,
         "INPUTS": [{"FROM": 0, "FILTER": "nearest", "WRAP": "repeat"}, {"FROM": 3, "WRAP": "mirror"}]},
        {"NAME": "trail", "PERSISTENT": true, "FORMAT": "half",
         "INPUTS": [{"FROM": "bright"}, {"FROM": "trail"}, {"FROM": "late"}]},
        {"NAME": "late", "SHADER": "late.frag", "PERSISTENT": true, "INPUTS": []},
        {"SHADER": "join.frag", "SCALE": 1, "OTHER": 5}])",
        R"(, "SHADER": "old.frag", "HISTORY": 2, "TEXTURES": [{"FILE": "a.png", "INDEX": 3}])");
    ASSERT_TRUE(descriptor);
    EXPECT_EQ(descriptor->passFault, "");
    EXPECT_EQ(descriptor->shader, "old.frag");
    EXPECT_EQ(descriptor->facts.history.frames, KEXSDK::History::kFromStart);
    const auto& passes = descriptor->passes;
    ASSERT_EQ(passes.size(), 4u);
    EXPECT_EQ(passes[0].name + " " + passes[0].shader, "bright bright.frag");
    EXPECT_EQ(passes[0].scale, 0.25);
    EXPECT_FALSE(passes[0].persistent || passes[0].halfFloats);
    EXPECT_EQ(passes[0].inputs,
        (std::vector<PassInput>{
            {Source::picture, 0, true, Wrap::repeat}, {Source::picture, 3, false, Wrap::mirror}}));
    EXPECT_EQ(passes[1].shader, "");
    EXPECT_EQ(passes[1].scale, 1);
    EXPECT_TRUE(passes[1].persistent && passes[1].halfFloats);
    EXPECT_EQ(passes[1].inputs,
        (std::vector<PassInput>{{Source::pass, 0}, {Source::lastFrame, 1}, {Source::lastFrame, 2}}));
    EXPECT_EQ(passes[2].inputs, std::vector<PassInput>{});
    EXPECT_EQ(passes[3].inputs, std::nullopt);
    EXPECT_EQ(passes[3].name, "");

    const auto forgetful = parse(R"([{"NAME": "a"}, {}])", R"(, "HISTORY": 2)");
    EXPECT_EQ(forgetful->passes.size(), 2u);
    EXPECT_EQ(forgetful->facts.history.frames, 2);
    const auto none = parse("null");
    EXPECT_TRUE(none->passes.empty());
    EXPECT_EQ(none->passFault, "");
}

TEST(DescriptorPasses, OneFaultRefusesThemAll)
{
    std::string seventeen = "[";
    for (int i = 0; i < 17; ++i)
        seventeen += i ? ",{}" : "{}";
    std::string inputs = R"({"FROM": 0})";
    for (int i = 0; i < 16; ++i)
        inputs += R"(,{"FROM": 0})";
    const struct {
        std::string passes;
        const char* fault;
    } rows[] = {
        {"5", "list of 1 to 16"},
        {"{}", "list of 1 to 16"},
        {"[]", "list of 1 to 16"},
        {seventeen + "]", "list of 1 to 16"},
        {"[{}, 7]", "pass 2: it has to be an object"},
        {R"([{"NAME": 7}, {}])", "pass 1: NAME has"},
        {R"([{"NAME": ""}, {}])", "pass 1: NAME has"},
        {R"([{"NAME": "a\nb"}, {}])", "pass 1: NAME has"},
        {R"([{"NAME": ")" + std::string(64, 'x') + "\"}, {}]", "pass 1: NAME is longer"},
        {R"([{"NAME": "a"}, {"NAME": "a"}, {}])", "pass 2: the NAME \"a\""},
        {R"([{"SHADER": ["a"]}, {}])", "pass 1: SHADER has"},
        {R"([{"SHADER": ""}, {}])", "pass 1: SHADER has"},
        {R"([{"SCALE": 0.06}, {}])", "pass 1: SCALE has"},
        {R"([{"SCALE": 1.01}, {}])", "pass 1: SCALE has"},
        {R"([{"SCALE": "0.5"}, {}])", "pass 1: SCALE has"},
        {R"([{"SCALE": 1e999}, {}])", ""}, // which is no JSON
        {R"([{"PERSISTENT": 1}, {}])", "pass 1: PERSISTENT has"},
        {R"([{"FORMAT": "float"}, {}])", "pass 1: FORMAT has to be \"bytes\" or \"half\""},
        {R"([{"FORMAT": 8}, {}])", "pass 1: FORMAT has"},
        {R"([{"INPUTS": 2}])", "pass 1: INPUTS has"},
        {R"([{"INPUTS": [)" + inputs + "]}]", "pass 1: INPUTS has"},
        {R"([{"INPUTS": [0]}])", "pass 1: every entry"},
        {R"([{"INPUTS": [{}]}])", "pass 1: FROM has"},
        {R"([{"INPUTS": [{"FROM": -1}]}])", "pass 1: FROM has"},
        {R"([{"INPUTS": [{"FROM": 0.5}]}])", "pass 1: FROM has"},
        {R"([{"INPUTS": [{"FROM": 1}]}])", "pass 1: FROM names the picture 1"},
        {R"([{"INPUTS": [{"FROM": 0, "FILTER": true}]}])", "pass 1: FILTER has to be \"linear\" or"},
        {R"([{"INPUTS": [{"FROM": 0, "WRAP": "once"}]}])", "pass 1: WRAP has"},
        {R"([{"INPUTS": [{"FROM": 0}, {"FROM": 0, "WRAP": "mirror"}]}])", "pass 1: INPUTS shows one"},
        {R"([{"INPUTS": [{"FROM": 0}, {"FROM": 0, "FILTER": "nearest"}]}])", "pass 1: INPUTS shows one"},
        {R"([{}, {"INPUTS": [{"FROM": "a"}]}])", "pass 2: FROM names the pass \"a\", which there"},
        {R"([{"NAME": "a", "INPUTS": [{"FROM": "a"}]}, {}])",
            "pass 1: FROM names the pass \"a\", which is not"},
        {R"([{"INPUTS": [{"FROM": "b"}]}, {"NAME": "b"}, {}])",
            "pass 1: FROM names the pass \"b\", which is"},
        {R"([{"NAME": "a", "PERSISTENT": true}])", "pass 1: the last one"},
        {R"([{}, {"SCALE": 0.5}])", "pass 2: the last one"},
        {R"([{"FORMAT": "half"}])", "pass 1: the last one"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.passes);
        const auto descriptor = parse(row.passes, R"(, "TITLE": "Kept")");
        if (!*row.fault) {
            EXPECT_FALSE(descriptor);
            continue;
        }
        ASSERT_TRUE(descriptor);
        EXPECT_TRUE(descriptor->passes.empty());
        EXPECT_NE(descriptor->passFault.find(row.fault), std::string::npos) << descriptor->passFault;
        EXPECT_EQ(descriptor->passFault.find('\n'), std::string::npos);
        EXPECT_EQ(descriptor->facts.title, "Kept");
    }
}

} // namespace
