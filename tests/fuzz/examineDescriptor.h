// What must hold for every descriptor that was read, whatever the file held.
#pragma once

#include "descriptors/ShaderDescriptor.h"

#include <cmath>
#include <cstring>
#include <set>

namespace fuzz {

/// Answers null, or what is wrong with the result.
inline const char* faultOf(const shader::ShaderDescriptor& descriptor)
{
    if (descriptor.inputs > shader::kMaxTextures || descriptor.textures.size() > shader::kMaxTextures)
        return "more pictures than texture units";
    for (const auto& texture : descriptor.textures) {
        if (texture.index >= shader::kMaxTextures)
            return "a texture without a unit";
    }
    std::set<std::string> names;
    for (const KEXSDK::ParamInfo& param : descriptor.params) {
        const std::string name = param.name;
        if (name.empty() || name.size() > 63 || !names.insert(name).second)
            return "a name that hosts cannot use";
        if (param.elements < 1 || param.elements > KEXSDK::ParamInfo::kMaxElements)
            return "a number of elements out of range";
        if (!(param.low <= param.high))
            return "a range the wrong way round";
        std::size_t texts = 0;
        for (const char* text : {param.help, param.unit, param.choices, param.title})
            texts += std::strlen(text);
        if (texts > (1u << 21))
            return "texts longer than any file";
        for (const double value : param.value) {
            // The store converts the value without checking it, so it has to fit its type.
            const bool whole =
                param.type == KEXSDK::ParamType::integer || param.type == KEXSDK::ParamType::integerArray;
            if (!std::isfinite(value) || !std::isfinite(float(value)))
                return "a default that is no number";
            if (whole && double(int(value)) != value)
                return "a whole default that is none";
        }
    }
    return nullptr;
}

} // namespace fuzz
