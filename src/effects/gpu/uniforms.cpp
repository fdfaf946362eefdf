// The search for a uniform's parameter, and the copy of its value.
#include "effects/gpu/uniforms.h"

#include "core/Log.h"
#include "graphics/TovEffectBase.h"

namespace KEXSDK {

namespace {

/// The parameter behind a uniform; `name` becomes the name that was looked for last.
const ParamVariant* find(CEffectBaseParam& parameters, std::string& name, const char* tag)
{
    ParamVariant* value = nullptr;
    if (parameters.getParamVariant(name.c_str(), &value))
        return value;
    if (name.size() > 2 && name.starts_with("u_")) {
        logging::debug(tag, [&] { return "try fix variant [" + name + "]"; });
        name.erase(0, 2);
        if (name[0] >= 'a' && name[0] <= 'z')
            name[0] = char(name[0] - 'a' + 'A');
        if (parameters.getParamVariant(name.c_str(), &value))
            return value;
    }
    logging::debug(tag, [&] { return "can't find variant [" + name + "]"; });
    return nullptr;
}

void copy(const ParamVariant& value, const std::string& name, ShaderParameter& uniform, const char* tag)
{
    const auto report = [&](auto number) {
        logging::debug(tag, [&] { return "setParam:" + name + "=" + std::to_string(number); });
    };
    switch (ParamType(value.type)) {
    case ParamType::integer:
        report(value.value.integer);
        uniform.set(std::span<const i32>(&value.value.integer, 1));
        break;
    case ParamType::real:
        report(value.value.real);
        uniform.set(std::span<const float>(&value.value.real, 1));
        break;
    case ParamType::integerArray:
        uniform.set(value.integers());
        break;
    case ParamType::realArray:
        uniform.set(value.reals());
        break;
    case ParamType::filePath:
        break;
    }
}

} // namespace

void setUniforms(TovEffectBase& effect, CEffectBaseParam& parameters, const char* tag)
{
    ShaderParameters* const uniforms = effect.getShaderParameters();
    if (!uniforms || uniforms->empty())
        return;
    for (ShaderParameter& uniform : *uniforms) {
        std::string name = uniform.name;
        if (const ParamVariant* const value = find(parameters, name, tag))
            copy(*value, name, uniform, tag);
    }
    effect.setShaderParameters(*uniforms);
}

void bindInput(TovEffectBase& effect, CEffectBaseParam& parameters, const CEffectImage& image, i32 index)
{
    effect.setInput(image.record(), index);
    nameSampler(parameters, index);
}

void nameSampler(CEffectBaseParam& parameters, i32 index)
{
    const std::string name = "mSample" + std::to_string(index);
    if (parameters.getParamInt(name.c_str(), -1) != index)
        parameters.setParamIntValue(name.c_str(), index);
}

void BoundInputs::bind(
    TovEffectBase& effect, CEffectBaseParam& parameters, const std::map<i32, CEffectImage*>& images)
{
    std::erase_if(bound_, [&](i32 index) {
        const auto image = images.find(index);
        const bool gone = image == images.end() || !image->second;
        if (gone)
            effect.removeInput(index);
        return gone;
    });
    for (const auto& [index, image] : images)
        if (image) {
            bindInput(effect, parameters, *image, index);
            bound_.insert(index);
        }
}

} // namespace KEXSDK
