// Catalogue facts out of descriptor files.
#include "descriptors/descriptorList.h"

#include "descriptors/descriptorFiles.h"
#include "facts/nodeParameters.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace shader {

namespace {

bool isGuid(std::string_view text)
{
    constexpr std::string_view kPattern = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    return std::ranges::equal(
        text, kPattern, [](unsigned char c, char p) { return p == 'x' ? std::isxdigit(c) != 0 : c == '-'; });
}

/// The text as lower-case letters, digits and single hyphens; empty when nothing of it is left.
std::string commandName(std::string_view text)
{
    std::string name;
    for (const unsigned char c : text) {
        if (c < 128 && std::isalnum(c))
            name += char(std::tolower(c));
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    while (name.ends_with('-'))
        name.pop_back();
    return name;
}

std::string firstOf(std::string first, std::string second) { return first.empty() ? second : first; }

KEXSDK::EffectInfo completed(
    KEXSDK::EffectInfo facts, const std::string& guid, const std::string& path, const char* family)
{
    std::string file = std::filesystem::path(path).filename().string();
    file.resize(file.find(".conf"));
    facts.guid = guid;
    facts.name = firstOf(firstOf(commandName(facts.name), commandName(file)), commandName(guid));
    facts.title = firstOf(facts.title, facts.name);
    facts.family = firstOf(commandName(facts.family), family);
    facts.summary = firstOf(facts.summary, facts.title);
    return facts;
}

} // namespace

DescriptorList listDescriptors(const std::string& resourceDirectory)
{
    constexpr std::array<const char*, kDescriptorDirectories.size()> kFamilies{
        "shader", "lookup", "transition"};
    DescriptorMap map;
    DescriptorList list;
    for (std::size_t i = 0; i < kDescriptorDirectories.size(); ++i) {
        const auto enter = [&](const std::string& guid, const std::string& path, std::string_view bytes) {
            const DescriptorPtr descriptor = isGuid(guid) ? parseDescriptor(bytes) : nullptr;
            if (!descriptor)
                return;
            KEXSDK::EffectInfo facts = completed(descriptor->facts, guid, path, kFamilies[i]);
            facts.descriptor = path.substr(resourceDirectory.size());
            list[guid] = {std::move(facts), descriptor};
        };
        scanDescriptors(resourceDirectory + kDescriptorDirectories[i], map, enter);
    }
    return list;
}

std::vector<const KEXSDK::ParamInfo*> describedParameters(const ShaderDescriptor& descriptor)
{
    std::vector<const KEXSDK::ParamInfo*> params{
        &KEXSDK::kEnable, &KEXSDK::kGlobalTime, &KEXSDK::kTotalTime, &kRotate, &kScale, &kTranslate};
    if (!descriptor.particleTemplate.empty())
        params.push_back(&kFrameRate);
    for (const KEXSDK::ParamInfo& param : descriptor.params)
        params.push_back(&param);
    return params;
}

} // namespace shader
