// Reads passes and checks that the pictures that they show are there when they are drawn.
#include "descriptors/descriptorPasses.h"

#include "descriptors/descriptorParams.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace shader {

namespace {

constexpr double kSmallestScale = 1.0 / 16;
constexpr std::size_t kLongestName = 63;

/// What is wrong with a pass; the text goes into a log.
struct Fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The value of the first word that is the text's; throws a Fault for any other.
template <class T, std::size_t n>
T chosen(const Json::Value& object, const char* key, const std::array<std::pair<const char*, T>, n>& words)
{
    const Json::Value& value = object[key];
    if (value.isNull())
        return words[0].second;
    for (const auto& [word, meaning] : words)
        if (value.isString() && value.asString() == word)
            return meaning;
    std::string all;
    for (const auto& [word, meaning] : words)
        all += (all.empty() ? "\"" : "\" or \"") + std::string(word);
    throw Fault(std::string(key) + " has to be " + all + "\"");
}

/// The text under a key, empty when there is none.
std::string textOf(const Json::Value& object, const char* key)
{
    if (object[key].isNull())
        return {};
    std::string text = plainText(object[key]);
    if (text.empty())
        throw Fault(std::string(key) + " has to be a text, and not empty");
    return text;
}

bool flagOf(const Json::Value& object, const char* key)
{
    const Json::Value& value = object[key];
    if (!value.isNull() && !value.isBool())
        throw Fault(std::string(key) + " has to be true or false");
    return value.isBool() && value.asBool();
}

double scaleOf(const Json::Value& value)
{
    if (value.isNull())
        return 1;
    if (!value.isNumeric() || !(value.asDouble() >= kSmallestScale && value.asDouble() <= 1))
        throw Fault("SCALE has to be a number from 0.0625 to 1");
    return value.asDouble();
}

class Reader {
public:
    explicit Reader(const ShaderDescriptor& descriptor) : descriptor_(descriptor) { }

    std::vector<DescriptorPass> read(const Json::Value& list)
    {
        if (!list.isArray() || list.empty() || list.size() > kMaxPasses)
            throw Fault("PASSES has to be a list of 1 to " + std::to_string(kMaxPasses) + " passes");
        for (Json::ArrayIndex i = 0; i < list.size(); ++i)
            inPass(i, [&] { passes_.push_back(passOf(list[i])); });
        // Inputs may name passes that come later.
        for (Json::ArrayIndex i = 0; i < list.size(); ++i)
            inPass(i, [&] { passes_[i].inputs = inputsOf(list[i]["INPUTS"], i); });
        inPass(list.size() - 1, [&] { checkLast(passes_.back()); });
        return std::move(passes_);
    }

private:
    /// Adds the number of the pass to the fault that a piece of work meets.
    template <class Work> static void inPass(Json::ArrayIndex index, Work work)
    {
        try {
            work();
        } catch (const Fault& fault) {
            throw Fault("in PASSES, pass " + std::to_string(index + 1) + ": " + fault.what());
        }
    }

    DescriptorPass passOf(const Json::Value& entry) const
    {
        if (!entry.isObject())
            throw Fault("it has to be an object");
        DescriptorPass pass;
        pass.name = textOf(entry, "NAME");
        if (pass.name.size() > kLongestName)
            throw Fault("NAME is longer than " + std::to_string(kLongestName) + " bytes");
        if (!pass.name.empty() && std::ranges::count(passes_, pass.name, &DescriptorPass::name))
            throw Fault("the NAME \"" + pass.name + "\" is an earlier pass's");
        pass.shader = textOf(entry, "SHADER");
        pass.scale = scaleOf(entry["SCALE"]);
        pass.persistent = flagOf(entry, "PERSISTENT");
        constexpr std::array<std::pair<const char*, bool>, 2> kFormats{{{"bytes", false}, {"half", true}}};
        pass.halfFloats = chosen(entry, "FORMAT", kFormats);
        return pass;
    }

    std::optional<std::vector<PassInput>> inputsOf(const Json::Value& list, u32 reader) const
    {
        if (list.isNull())
            return std::nullopt;
        if (!list.isArray() || list.size() > kMaxPassInputs)
            throw Fault("INPUTS has to be a list of at most " + std::to_string(kMaxPassInputs) + " entries");
        std::vector<PassInput> inputs;
        for (const Json::Value& entry : list) {
            const PassInput input = inputOf(entry, reader);
            // Filter and wrap belong to the texture: two samplers of it cannot differ.
            for (const PassInput& other : inputs)
                if (other.source == input.source && other.index == input.index && other != input)
                    throw Fault("INPUTS shows one picture with two kinds of FILTER or WRAP");
            inputs.push_back(input);
        }
        return inputs;
    }

    PassInput inputOf(const Json::Value& entry, u32 reader) const
    {
        if (!entry.isObject())
            throw Fault("every entry of INPUTS has to be an object");
        constexpr std::array<std::pair<const char*, bool>, 2> kFilters{
            {{"linear", false}, {"nearest", true}}};
        constexpr std::array<std::pair<const char*, PassInput::Wrap>, 3> kWraps{
            {{"clamp", PassInput::Wrap::clamp}, {"repeat", PassInput::Wrap::repeat},
                {"mirror", PassInput::Wrap::mirror}}};
        PassInput input = sourceOf(entry["FROM"], reader);
        input.nearest = chosen(entry, "FILTER", kFilters);
        input.wrap = chosen(entry, "WRAP", kWraps);
        return input;
    }

    PassInput sourceOf(const Json::Value& from, u32 reader) const
    {
        if (from.isUInt()) {
            const u32 index = from.asUInt();
            if (index >= descriptor_.inputs
                && !std::ranges::count(descriptor_.textures, index, &DescriptorTexture::index))
                throw Fault("FROM names the picture " + std::to_string(index) + ", which the effect lacks");
            return {PassInput::Source::picture, index};
        }
        const std::string name = plainText(from);
        if (name.empty())
            throw Fault("FROM has to be the number of a picture or the NAME of a pass");
        const auto found = std::ranges::find(passes_, name, &DescriptorPass::name);
        if (found == passes_.end())
            throw Fault("FROM names the pass \"" + name + "\", which there is not");
        const auto index = u32(found - passes_.begin());
        if (index < reader)
            return {PassInput::Source::pass, index};
        if (!found->persistent)
            throw Fault("FROM names the pass \"" + name
                + "\", which is not drawn before and has to be PERSISTENT for its last frame to be shown");
        return {PassInput::Source::lastFrame, index};
    }

    static void checkLast(const DescriptorPass& pass)
    {
        if (pass.persistent)
            throw Fault("the last one draws the effect's picture and cannot be PERSISTENT");
        if (pass.scale != 1)
            throw Fault("the last one draws the effect's picture and has no SCALE");
        if (pass.halfFloats)
            throw Fault("the last one draws the effect's picture, whose FORMAT is \"bytes\"");
    }

    const ShaderDescriptor& descriptor_;
    std::vector<DescriptorPass> passes_;
};

} // namespace

void readPasses(const Json::Value& list, ShaderDescriptor& descriptor)
{
    if (list.isNull())
        return;
    try {
        descriptor.passes = Reader(descriptor).read(list);
    } catch (const Fault& fault) {
        descriptor.passFault = fault.what();
        return;
    }
    if (std::ranges::count(descriptor.passes, true, &DescriptorPass::persistent))
        descriptor.facts.history = {KEXSDK::History::kFromStart}; // what is fed back never quite goes away
}

} // namespace shader
