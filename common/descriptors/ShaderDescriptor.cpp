// Reads the JSON members of a descriptor and checks the type and range of each.
#include "descriptors/ShaderDescriptor.h"

#include "descriptors/descriptorFiles.h"
#include "descriptors/descriptorParams.h"
#include "descriptors/descriptorPasses.h"

#include <json/reader.h>

namespace shader {

namespace {

std::string textOf(const Json::Value& object, const char* key) { return plainText(object[key]); }

/// The whole number under a key, or `absent` when there is none within 0..last.
u32 numberOf(const Json::Value& object, const char* key, u32 last, u32 absent)
{
    const Json::Value& value = object[key];
    return value.isUInt() && value.asUInt() <= last ? value.asUInt() : absent;
}

double leadOf(const Json::Value& value)
{
    constexpr double kLongest = 60; // every node simulates it before its first frame
    return value.isNumeric() && value.asDouble() >= 0 && value.asDouble() <= kLongest ? value.asDouble() : 0;
}

std::vector<DescriptorTexture> texturesOf(const Json::Value& list)
{
    std::vector<DescriptorTexture> textures;
    if (!list.isArray())
        return textures;
    for (const Json::Value& entry : list) {
        if (textures.size() == kMaxTextures)
            break;
        if (entry.isObject())
            textures.push_back({textOf(entry, "FILE"), numberOf(entry, "INDEX", kMaxTextures - 1, 0)});
    }
    return textures;
}

KEXSDK::History historyOf(const Json::Value& value)
{
    if (value.isString() && value.asString() == "start")
        return {KEXSDK::History::kFromStart};
    return {value.isUInt() && value.asUInt() <= 1000 ? int(value.asUInt()) : 0};
}

KEXSDK::Alpha alphaOf(const std::string& word)
{
    if (word == "opaque")
        return KEXSDK::Alpha::opaque;
    if (word == "loose")
        return KEXSDK::Alpha::loose;
    return word == "computed" ? KEXSDK::Alpha::computed : KEXSDK::Alpha::kept;
}

KEXSDK::EffectInfo factsOf(const Json::Value& object)
{
    KEXSDK::EffectInfo facts;
    facts.name = textOf(object, "NAME");
    facts.title = textOf(object, "TITLE");
    facts.family = textOf(object, "FAMILY");
    facts.summary = textOf(object, "SUMMARY");
    facts.random = object["RANDOM"].isBool() && object["RANDOM"].asBool();
    facts.needsGpu = true;
    facts.history = historyOf(object["HISTORY"]);
    facts.alpha = alphaOf(textOf(object, "ALPHA"));
    return facts;
}

DescriptorPtr parse(std::string_view json)
{
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = 64; // no descriptor nests deeper; without a limit the stack could run out
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value object;
    if (!reader->parse(json.data(), json.data() + json.size(), &object, nullptr) || !object.isObject())
        return nullptr;

    auto descriptor = std::make_shared<ShaderDescriptor>();
    descriptor->shader = textOf(object, "SHADER");
    descriptor->textures = texturesOf(object["TEXTURES"]);
    descriptor->inputs = numberOf(object, "INPUTS", kMaxTextures, 1);
    descriptor->particleTemplate = textOf(object, "PU");
    descriptor->lead = leadOf(object["LEAD"]);
    descriptor->facts = factsOf(object);
    descriptor->facts.inputs = descriptor->inputs;
    readPasses(object["PASSES"], *descriptor);
    readParams(object["PARAMS"], *descriptor);
    return descriptor;
}

} // namespace

DescriptorPtr parseDescriptor(std::string_view json) noexcept
{
    try {
        return parse(json);
    } catch (...) { // the JSON reader's own, for nesting without end; or out of memory
        return nullptr;
    }
}

DescriptorFile readDescriptor(const std::string& path) noexcept
{
    try {
        std::string text;
        switch (readSmallFile(path, text)) {
        case SmallFile::missing:
            return {DescriptorStatus::missing, nullptr};
        case SmallFile::tooLarge:
            return {DescriptorStatus::broken, nullptr};
        case SmallFile::read:
            break;
        }
        const DescriptorPtr descriptor = parse(text);
        return {descriptor ? DescriptorStatus::read : DescriptorStatus::broken, descriptor};
    } catch (...) {
        return {DescriptorStatus::broken, nullptr};
    }
}

} // namespace shader
