// The catalogue file against the engine: every effect is made, described and run.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "engine/effectList.h"
#include "facts/catalogueJson.h"
#include "host/GraphDescription.h"
#include "host/GraphError.h"
#include "host/effectList.h"
#include "hosting/exampleValues.h"
#include "support/GuardedFrame.h"
#include "support/paths.h"
#include "text/jsonText.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

Json::Value readCatalogue()
{
    std::ifstream stream(test::kCatalogue);
    Json::Value json;
    stream >> json;
    return json;
}

class Catalogue : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        listShaderEffectsOf(test::kResourceDirectory);
        ASSERT_EQ(InitializeEngine(test::kResourceDirectory, nullptr), 0u);
        ASSERT_TRUE(KEXSDK::gpuAvailable());
    }
    static void TearDownTestSuite()
    {
        UninitializeEngine();
        listShaderEffectsOf("");
    }

    template <class Check> void eachEffect(Check check)
    {
        const Json::Value json = readCatalogue();
        ASSERT_GT(json["effects"].size(), 250u);
        for (const Json::Value& effect : json["effects"]) {
            SCOPED_TRACE(effect["name"].asString());
            check(effect);
        }
    }

    // Runs the effect on one frame of noise for each seed, in order. @return the last output
    std::vector<unsigned char> show(const Json::Value& effect, std::initializer_list<unsigned> seeds)
    {
        host::Filter filter(effect["guid"].asString(), kWidth, kHeight);
        return show(filter, seeds);
    }
    std::vector<unsigned char> show(host::Filter& filter, std::initializer_list<unsigned> seeds)
    {
        for (unsigned i = 0; i < 2; ++i)
            SetInputImage(filter.handle(), frames_[i].image(), i);
        filter.set(kEffectTotalTime, 2.0f);
        filter.set(kEffectCurrentTime, 1.0f);
        std::span<unsigned char> output;
        for (const unsigned seed : seeds) {
            frames_[0].fillWithNoise(seed);
            frames_[1].fillWithNoise(seed + 100);
            output = host::bytesOf(filter.run());
        }
        return {output.begin(), output.end()};
    }

    std::array<test::GuardedFrame, 2> frames_{
        test::GuardedFrame(kWidth, kHeight), test::GuardedFrame(kWidth, kHeight)};
};

std::map<std::string, std::string> storedParameters(const host::Filter& filter)
{
    static const std::map<unsigned, const char*> kTypes{{KEXSDK::VIParamInt, "integer"},
        {KEXSDK::VIParamFloat, "float"}, {KEXSDK::VIParamIntArray, "integers"},
        {KEXSDK::VIParamFloatArray, "floats"}, {KEXSDK::VIParamFilePath, "file"}};
    std::map<std::string, std::string> stored;
    unsigned count = 0;
    KEXSDK::GetParamCount(filter.handle(), &count);
    for (unsigned i = 0; i < count; ++i) {
        char name[256];
        KEXSDK::enumParamName(filter.handle(), i, name);
        auto type = KEXSDK::VIParamUnknown;
        KEXSDK::getParamType(filter.handle(), name, &type);
        stored[name] = kTypes.at(type);
    }
    return stored;
}

Json::Value storedValue(const host::Filter& filter, const std::string& name, const std::string& type)
{
    constexpr int kRoom = 16;
    int count = kRoom;
    std::array<int, kRoom> whole{};
    std::array<float, kRoom> real{};
    if (type == "integer")
        KEXSDK::getParamIntValue(filter.handle(), name.c_str(), whole.data());
    else if (type == "integers")
        KEXSDK::getParamIntArrayValue(filter.handle(), name.c_str(), whole.data(), &count);
    else if (type == "float")
        KEXSDK::getParamFloatValue(filter.handle(), name.c_str(), real.data());
    else if (type == "floats")
        KEXSDK::getParamFloatArrayValue(filter.handle(), name.c_str(), real.data(), &count);
    const auto one = [&](std::size_t i) {
        return type.starts_with("int") ? Json::Value(whole[i]) : Json::Value(text::shortest(real[i]));
    };
    if (!type.ends_with('s'))
        return one(0);
    Json::Value list(Json::arrayValue);
    for (int i = 0; i < count; ++i)
        list.append(one(std::size_t(i)));
    return list;
}

TEST_F(Catalogue, IsWhatTheRegistriesOfThisBuildHold)
{
    std::ifstream stream(test::kCatalogue);
    std::ostringstream text;
    text << stream.rdbuf();
    Json::Value entries(Json::arrayValue);
    for (const KEXSDK::EffectInfo& effect : listEffects())
        entries.append(catalogue::entryOf(effect, describeParameters(effect.guid)));
    EXPECT_EQ(text.str(), text::jsonText(catalogue::allOf(std::move(entries))));
    std::set<std::string> names;
    const Json::Value catalogue = readCatalogue();
    for (const Json::Value& effect : catalogue["effects"]) {
        EXPECT_TRUE(names.insert(effect["name"].asString()).second) << effect["name"];
        EXPECT_TRUE(names.insert(effect["guid"].asString()).second) << effect["guid"];
    }
}

// The host library has the file alone: what it reads back is what the engine knows.
TEST_F(Catalogue, IsReadBackAsTheEngineKnowsIt)
{
    const auto effects = listEffects();
    ASSERT_EQ(host::listEffects().size(), effects.size());
    for (const KEXSDK::EffectInfo& effect : effects) {
        SCOPED_TRACE(effect.name);
        const KEXSDK::EffectInfo* const read = host::findEffect(effect.guid);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(std::tie(read->name, read->title, read->family, read->summary, read->inputs, read->random),
            std::tie(effect.name, effect.title, effect.family, effect.summary, effect.inputs, effect.random));
        EXPECT_EQ(std::tie(read->shared, read->needsGpu, read->history.frames, read->alpha, read->descriptor),
            std::tie(effect.shared, effect.needsGpu, effect.history.frames, effect.alpha, effect.descriptor));
        EXPECT_EQ(std::tie(read->writesInput, read->keepsOutput, read->byRows),
            std::tie(effect.writesInput, effect.keepsOutput, effect.byRows));
        const auto known = describeParameters(effect.guid);
        const auto& listed = host::describeParameters(effect.guid);
        ASSERT_EQ(listed.size(), known.size());
        for (std::size_t i = 0; i < known.size(); ++i) {
            const KEXSDK::ParamInfo& a = *listed[i];
            const KEXSDK::ParamInfo& b = *known[i];
            SCOPED_TRACE(b.name);
            EXPECT_STREQ(a.name, b.name);
            EXPECT_EQ(titleOf(a), titleOf(b));
            EXPECT_STREQ(a.help, b.help);
            EXPECT_STREQ(a.unit, b.unit);
            EXPECT_STREQ(a.choices, b.choices);
            EXPECT_STREQ(a.packFolder, b.packFolder);
            EXPECT_STREQ(a.packExample, b.packExample);
            EXPECT_EQ(std::tie(a.type, a.elements, a.declared), std::tie(b.type, b.elements, b.declared));
            EXPECT_EQ(a.hostDefault, b.hostDefault);
            EXPECT_EQ(std::pair(float(a.low), float(a.high)), std::pair(float(b.low), float(b.high)));
            for (u32 element = 0; element < b.elements; ++element)
                EXPECT_EQ(float(a.value[element]), float(b.value[element])) << element;
        }
    }
}

// Who a typed word means, or why it means nobody.
template <class Find> std::string whoIs(const std::string& word, Find find)
{
    try {
        return find(word);
    } catch (const host::GraphError& error) {
        return error.what();
    }
}

std::string inCapitals(std::string text)
{
    for (char& c : text)
        c = c == '-' ? '_' : char(std::toupper(c));
    return text;
}

// Words with capitals, small ones in the middle of a title without.
bool isTitle(const std::string& text)
{
    static const std::regex words(
        "[A-Z0-9][A-Za-z0-9]*((-|,? ((and|of|on|or|per|the|to|with) )*)[A-Z0-9][A-Za-z0-9]*)*");
    static const std::regex smallInCapitals(" (A|An|And|At|By|For|Of|On|Or|Per|The|To|With) ");
    return std::regex_match(text, words) && !std::regex_search(text, smallInCapitals);
}

TEST_F(Catalogue, TitlesAreWordsThatMeanOneEffectOrParameter)
{
    eachEffect([](const Json::Value& effect) {
        EXPECT_TRUE(isTitle(effect["title"].asString())) << effect["title"];
        const auto effectOf = [](const std::string& word) { return host::effectNamed(word).name; };
        for (const std::string& word : {effect["title"].asString(), inCapitals(effect["name"].asString())})
            EXPECT_EQ(whoIs(word, effectOf), effect["name"].asString());
        const auto parameterOf = [&](const std::string& word) -> std::string {
            return host::parameterNamed(host::effectNamed(effect["guid"].asString()), word).name;
        };
        for (const Json::Value& parameter : effect["parameters"]) {
            const std::string title = parameter["title"].asString();
            EXPECT_TRUE(isTitle(title)) << title;
            for (const std::string& word : {title, inCapitals(parameter["name"].asString())})
                EXPECT_EQ(whoIs(word, parameterOf), parameter["name"].asString());
        }
    });
}

TEST_F(Catalogue, NamesTheInputsAndParametersThatNodesHave)
{
    eachEffect([](const Json::Value& effect) {
        constexpr int kRows = 1080; // shares of the height are told for this one
        const host::Filter filter(effect["guid"].asString(), kWidth, kRows);
        EXPECT_EQ(GetFilterInputCount(filter.handle()), effect["inputs"].asUInt());
        const auto stored = storedParameters(filter);
        std::set<std::string> listed;
        for (const Json::Value& parameter : effect["parameters"]) {
            const std::string name = parameter["name"].asString();
            SCOPED_TRACE(name);
            EXPECT_TRUE(listed.insert(name).second) << "twice";
            if (effect["needsGpu"].asBool() && !stored.contains(name))
                continue; // the program or the template holds the value
            // A node may store a value that depends on the size of its pictures; that is no default.
            const Json::Value& expected = parameter["default"];
            EXPECT_TRUE(stored.contains(name) || expected.isNull());
            if (stored.contains(name)) {
                EXPECT_EQ(stored.at(name), parameter["type"].asString());
            }
            if (!expected.isNull()) {
                EXPECT_EQ(
                    text::jsonText(storedValue(filter, name, stored.at(name))), text::jsonText(expected));
            }
        }
    });
}

// Nodes of the numeric library store its whole block, whatever the effect reads.
TEST_F(Catalogue, LeavesOutOnlyWhatEffectsDoNotRead)
{
    eachEffect([&](const Json::Value& effect) {
        if (effect["random"].asBool()
            || effect["needsGpu"].asBool()) // the latter store facts about the frame
            return;
        host::Filter filter(effect["guid"].asString(), kWidth, kHeight);
        auto unlisted = storedParameters(filter);
        for (const Json::Value& parameter : effect["parameters"])
            unlisted.erase(parameter["name"].asString());
        for (const auto& [name, type] : unlisted)
            EXPECT_TRUE(type == "integer" ? filter.set(name, 77) : filter.set(name, 77.0f)) << name;
        EXPECT_EQ(show(filter, {1}), show(effect, {1}));
    });
}

TEST_F(Catalogue, TellsTheTruthAboutHistoryAndAlpha)
{
    eachEffect([&](const Json::Value& effect) {
        if (effect["random"].asBool())
            return;
        const auto alone = show(effect, {3});
        const auto given = frames_[0].bytes();
        if (effect["history"] == "none") {
            EXPECT_EQ(show(effect, {1, 2, 3}), alone);
        }
        const bool told = effect["alpha"] == "opaque" || effect["alpha"] == "kept";
        for (std::size_t i = 3; i < alone.size() && told; i += 4)
            ASSERT_EQ(alone[i], effect["alpha"] == "opaque" ? 255 : given[i]) << "pixel " << i / 4;
    });
}

// Opaque pictures give opaque ones in the tool: effects that do not see to that themselves have loose alpha.
TEST_F(Catalogue, OpaqueInputsGiveOpaquePicturesUnlessAlphaIsLoose)
{
    eachEffect([&](const Json::Value& effect) {
        if (effect["alpha"] == "loose" || effect["name"] == "blank") // the latter is for being transparent
            return;
        host::Filter filter(effect["guid"].asString(), kWidth, kHeight);
        host::setExampleValues(filter, describeParameters(effect["guid"].asString()), kWidth, kHeight);
        for (unsigned i = 0; i < 2; ++i) {
            frames_[i].fillWithNoise(i);
            for (int y = 0; y < kHeight; ++y)
                for (pixels::Bgra& p : frames_[i].view().row(y))
                    p.a = 255;
            SetInputImage(filter.handle(), frames_[i].image(), i);
        }
        for (const float seconds : {0.0f, 1.3f, 2.5f, 4.1f, 5.0f}) {
            filter.set(kEffectCurrentTime, seconds);
            const auto output = host::bytesOf(filter.run());
            for (std::size_t i = 3; i < output.size(); i += 4)
                ASSERT_EQ(output[i], 255) << "pixel " << i / 4 << " at " << seconds;
        }
    });
}

// "50 changes nothing", "11500 is neutral", "neutral at 0", "0 leaves the picture".
TEST_F(Catalogue, ValuesThatAreToldToChangeNothingChangeNothing)
{
    const std::regex claim(
        R"((-?[0-9.]+) (?:changes nothing|is neutral|leaves the picture)|neutral at (-?[0-9.]+))");
    int claims = 0;
    eachEffect([&](const Json::Value& effect) {
        for (const Json::Value& parameter : effect["parameters"]) {
            const std::string help = parameter["help"].asString();
            std::smatch found;
            if (!std::regex_search(help, found, claim))
                continue;
            SCOPED_TRACE(parameter["name"].asString() + ": " + help);
            ++claims;
            host::Filter filter(effect["guid"].asString(), kWidth, kHeight);
            const auto set = [&](const Json::Value& one, double value) {
                EXPECT_TRUE(one["type"] == "integer" ? filter.set(one["name"].asString(), int(value))
                                                     : filter.set(one["name"].asString(), float(value)));
            };
            for (const Json::Value& other : effect["parameters"]) {
                if (other.isMember("hostDefault"))
                    set(other, other["hostDefault"].asDouble());
            }
            set(parameter, std::stod(found[1].matched ? found[1] : found[2]));
            auto shown = show(filter, {1});
            for (std::size_t i = 3; i < shown.size(); i += 4)
                shown[i] = frames_[0].bytes()[i];
            EXPECT_EQ(shown, frames_[0].bytes());
        }
    });
    EXPECT_GE(claims, 3);
}

} // namespace
