// What must hold for every descriptor that was read, whatever the file held.
#pragma once

#include "descriptors/ShaderDescriptor.h"

#include <cmath>
#include <cstring>
#include <set>

namespace fuzz {

/// Answers null, or what is wrong with the passes: whoever draws them believes all of this.
inline const char* faultOfPasses(const shader::ShaderDescriptor& descriptor)
{
    const auto& passes = descriptor.passes;
    if (passes.size() > shader::kMaxPasses || (!passes.empty() && !descriptor.passFault.empty()))
        return "passes beside a fault, or too many";
    if (!passes.empty() && (passes.back().scale != 1 || passes.back().persistent || passes.back().halfFloats))
        return "a last pass that cannot be the picture";
    for (std::size_t i = 0; i < passes.size(); ++i) {
        if (!(passes[i].scale >= 0.0625 && passes[i].scale <= 1))
            return "a scale out of range";
        if (!passes[i].inputs)
            continue;
        if (passes[i].inputs->size() > shader::kMaxPassInputs)
            return "more inputs than texture units";
        for (const shader::PassInput& input : *passes[i].inputs) {
            using Source = shader::PassInput::Source;
            if (input.source == Source::picture ? input.index >= shader::kMaxTextures
                                                : input.index >= passes.size())
                return "an input from nowhere";
            if (input.source == Source::pass && input.index >= i)
                return "an input that is not drawn yet";
            if (input.source == Source::lastFrame && (input.index < i || !passes[input.index].persistent))
                return "an input that is gone";
        }
    }
    return nullptr;
}

/// Answers null, or what is wrong with the result.
inline const char* faultOf(const shader::ShaderDescriptor& descriptor)
{
    if (const char* const fault = faultOfPasses(descriptor))
        return fault;
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
