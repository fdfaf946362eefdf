// The values of an effect's uniforms, as they are set.
#include "EffectTovOgre/TovOgreEffectBase.h"

namespace KEXSDK {

namespace {

constexpr u32 kMatrixValues = 16;

} // namespace

void TovOgreEffectBase::setShaderParameters(const ShaderParameters& parameters)
{
    TovEffectBase::setShaderParameters(parameters);
    for (const ShaderParameter& parameter : shaderParameters_)
        if (parameter.pass == 0) // those of earlier passes go to them with every render
            handTo(*this, parameter);
}

void TovOgreEffectBase::setIntParam(u32 programType, const char* name, i32 value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setFloatParam(u32 programType, const char* name, float value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setIntArrayParam(
    u32 programType, const char* name, const i32* values, u32 count, u32 multiple)
{
    values_.set(programType, name, _IntPoint{values, count, multiple});
}

void TovOgreEffectBase::setFloatArrayParam(
    u32 programType, const char* name, const float* values, u32 count, u32 multiple)
{
    values_.set(programType, name, _FloatPoint{values, count, multiple});
}

void TovOgreEffectBase::setDoubleArrayParam(
    u32 programType, const char* name, const double* values, u32 count, u32 multiple)
{
    values_.set(programType, name, _DoublePoint{values, count, multiple});
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Vector2& value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Vector3& value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Vector4& value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Matrix4& value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::ColourValue& value)
{
    values_.set(programType, name, value);
}

void TovOgreEffectBase::setParam(u32 programType, const char* name, const Ogre::Matrix4* values, u32 count)
{
    values_.set(programType, name, _Matrix4Point{values, count, kMatrixValues});
}

void TovOgreEffectBase::applyShaderParameters()
{
    values_.applyTo(*plane_);
    if (passChain_)
        passChain_->setShaderParameters(shaderParameters_);
}

} // namespace KEXSDK
