// Programs and the values of their uniforms, kept until the next render.
#include "EffectTovOgre/TovOgreEffectBase.h"

namespace {

constexpr std::size_t kMatrixValues = 16;

std::span<const float> numbers(const Ogre::Vector2& value) { return {value.ptr(), 2}; }
std::span<const float> numbers(const Ogre::Vector3& value) { return {value.ptr(), 3}; }
std::span<const float> numbers(const Ogre::Vector4& value) { return {value.ptr(), 4}; }
std::span<const float> numbers(const Ogre::ColourValue& value) { return {value.ptr(), 4}; }
std::span<const float> numbers(const float& value) { return {&value, 1}; }
std::span<const i32> numbers(const i32& value) { return {&value, 1}; }
std::span<const Ogre::Matrix4> numbers(const Ogre::Matrix4& value) { return {&value, 1}; }

} // namespace

void TovOgreEffectBase::setShaderSource(const char* text, bool isFragment, bool isSourceText)
{
    auto& program = isFragment ? fragmentText_ : vertexText_;
    if (text)
        program = ProgramText{text, isSourceText};
    else
        program.reset();
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
    store(programType, name, _Matrix4Point{values, count, u32(kMatrixValues)});
}

template <class T> void TovOgreEffectBase::apply(const Values<T>& values)
{
    TovOgreShader& shader = plane_->shader();
    for (const auto& entry : values) {
        const auto& [programType, name] = entry.first;
        const T& value =
            entry.second; // (not a structured binding: Clang allows none in a requires-expression)
        if constexpr (std::is_same_v<T, _Matrix4Point>)
            shader.set(programType, name, std::span(value.values, value.count));
        else if constexpr (requires { value.multiple; })
            shader.set(programType, name, std::span(value.values, std::size_t{value.count} * value.multiple));
        else
            shader.set(programType, name, numbers(value));
    }
}

void TovOgreEffectBase::applyShaderParameters()
{
    std::apply([this](const auto&... maps) { (apply(maps), ...); }, values_);
}
