// Hands kept values to the setters of the picture plane.
#include "EffectTovOgre/UniformValues.h"

#include "EffectTovOgre/TovOgrePicturePlane.h"

namespace KEXSDK {

namespace {

struct Setter {
    TovOgrePicturePlane& plane;
    u32 programType;
    const char* name;

    void operator()(i32 value) const { plane.setIntParam(programType, name, value); }
    void operator()(float value) const { plane.setFloatParam(programType, name, value); }
    void operator()(const _IntPoint& all) const
    {
        plane.setIntArrayParam(programType, name, all.values, all.count, all.multiple);
    }
    void operator()(const _FloatPoint& all) const
    {
        plane.setFloatArrayParam(programType, name, all.values, all.count, all.multiple);
    }
    void operator()(const _DoublePoint& all) const
    {
        plane.setDoubleArrayParam(programType, name, all.values, all.count, all.multiple);
    }
    void operator()(const _Matrix4Point& all) const
    {
        plane.setParam(programType, name, all.values, all.count);
    }
    template <class OgreValue> void operator()(const OgreValue& value) const
    {
        plane.setParam(programType, name, value);
    }
};

} // namespace

void UniformValues::applyTo(TovOgrePicturePlane& plane) const
{
    for (const auto& [key, value] : values_) {
        const auto& [kind, programType, name] = key;
        std::visit(Setter{plane, programType, name.c_str()}, value);
    }
}

} // namespace KEXSDK
