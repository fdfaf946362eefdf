// Programs and the values of their uniforms, stored until the next render.
#include "EffectTovOgre/TovOgreEffectBase.h"

namespace {

constexpr u32 kMatrixValues = 16;

} // namespace

void TovOgreEffectBase::setShaderSource(const char* text, bool isFragment, bool isSourceText)
{
    auto& program = isFragment ? fragmentText_ : vertexText_;
    if (text)
        program = ProgramText{text, isSourceText};
    else
        program.reset();
}

void TovOgreEffectBase::setShaderParameters(const ShaderParameters& parameters)
{
    TovEffectBase::setShaderParameters(parameters);
    for (const ShaderParameter& parameter : shaderParameters_) {
        const char* const name = parameter.name.c_str();
        const void* const data = parameter.data.data();
        switch (parameter.baseType) {
        case ShaderParameter::integer:
            setIntArrayParam(parameter.programType, name, static_cast<const i32*>(data), parameter.arraySize,
                parameter.valuesPerElement);
            break;
        case ShaderParameter::real:
            setFloatArrayParam(parameter.programType, name, static_cast<const float*>(data),
                parameter.arraySize, parameter.valuesPerElement);
            break;
        default:
            setDoubleArrayParam(parameter.programType, name, static_cast<const double*>(data),
                parameter.arraySize, parameter.valuesPerElement);
        }
    }
}

template <class T> void TovOgreEffectBase::store(u32 programType, const char* name, T value)
{
    std::get<Values<T>>(values_).insert_or_assign({programType, name}, value);
}

void TovOgreEffectBase::setIntParam(u32 programType, const char* name, i32 value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setFloatParam(u32 programType, const char* name, float value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setIntArrayParam(
    u32 programType, const char* name, const i32* values, u32 count, u32 multiple)
{
    store(programType, name, _IntPoint{values, count, multiple});
}

void TovOgreEffectBase::setFloatArrayParam(
    u32 programType, const char* name, const float* values, u32 count, u32 multiple)
{
    store(programType, name, _FloatPoint{values, count, multiple});
}

void TovOgreEffectBase::setDoubleArrayParam(
    u32 programType, const char* name, const double* values, u32 count, u32 multiple)
{
    store(programType, name, _DoublePoint{values, count, multiple});
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Vector2& value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Vector3& value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Vector4& value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Matrix4& value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::ColourValue& value)
{
    store(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Matrix4* values, u32 count)
{
    store(programType, name, _Matrix4Point{values, count, kMatrixValues});
}

template <class T> void TovOgreEffectBase::apply(const Values<T>& values)
{
    for (const auto& [key, value] : values) {
        const u32 type = key.first;
        const char* const name = key.second.c_str();
        if constexpr (std::is_same_v<T, i32>)
            plane_->setIntParam(type, name, value);
        else if constexpr (std::is_same_v<T, float>)
            plane_->setFloatParam(type, name, value);
        else if constexpr (std::is_same_v<T, _Matrix4Point>)
            plane_->setParam(type, name, value.values, value.count);
        else if constexpr (std::is_same_v<T, _FloatPoint>)
            plane_->setFloatArrayParam(type, name, value.values, value.count, value.multiple);
        else if constexpr (std::is_same_v<T, _DoublePoint>)
            plane_->setDoubleArrayParam(type, name, value.values, value.count, value.multiple);
        else if constexpr (std::is_same_v<T, _IntPoint>)
            plane_->setIntArrayParam(type, name, value.values, value.count, value.multiple);
        else
            plane_->setParam(type, name, value);
    }
}

void TovOgreEffectBase::applyShaderParameters()
{
    std::apply([this](const auto&... maps) { (apply(maps), ...); }, values_);
}
