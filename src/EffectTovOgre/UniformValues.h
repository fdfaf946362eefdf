// Values for the uniforms of an effect's programs, kept from frame to frame.
#pragma once

#include "core/Types.h"
#include "graphics/ShaderParameter.h"

#include <OgreColourValue.h>
#include <OgreMatrix4.h>
#include <OgreVector.h>

#include <map>
#include <string>
#include <tuple>
#include <variant>

namespace KEXSDK {

class TovOgrePicturePlane;

/// `count` elements of `multiple` values each; the memory stays the caller's.
template <class T> struct ValueArray {
    const T* values;
    u32 count;
    u32 multiple;
};
using _Matrix4Point = ValueArray<Ogre::Matrix4>;
using _FloatPoint = ValueArray<float>;
using _DoublePoint = ValueArray<double>;
using _IntPoint = ValueArray<i32>;

/// Sets a uniform of whatever has setters for arrays: an effect, a plane, the programs themselves. The values
/// stay the parameter's.
template <class Programs> void handTo(Programs& programs, const ShaderParameter& parameter)
{
    const u32 type = parameter.programType;
    const char* const name = parameter.name.c_str();
    const void* const data = parameter.data.data();
    switch (parameter.baseType) {
    case ShaderParameter::integer:
        programs.setIntArrayParam(
            type, name, static_cast<const i32*>(data), parameter.arraySize, parameter.valuesPerElement);
        break;
    case ShaderParameter::real:
        programs.setFloatArrayParam(
            type, name, static_cast<const float*>(data), parameter.arraySize, parameter.valuesPerElement);
        break;
    default:
        programs.setDoubleArrayParam(
            type, name, static_cast<const double*>(data), parameter.arraySize, parameter.valuesPerElement);
    }
}

/// One value of each kind for each program type and name.
class UniformValues {
public:
    using Value = std::variant<i32, float, Ogre::Vector4, Ogre::Vector3, Ogre::Vector2, Ogre::Matrix4,
        _Matrix4Point, _FloatPoint, _DoublePoint, _IntPoint, Ogre::ColourValue>;

    /// Replaces a value of the same kind, program type and name.
    void set(u32 programType, const char* name, const Value& value)
    {
        values_.insert_or_assign({value.index(), programType, name}, value);
    }
    void clear() { values_.clear(); }

    /// Hands all values to the plane's programs: kind after kind in the order of Value, so that a later kind
    /// overrules an earlier one, then by program type and name.
    void applyTo(TovOgrePicturePlane& plane) const;

private:
    using _CommDataType = std::tuple<std::size_t, u32, std::string>; ///< kind, program type, name

    std::map<_CommDataType, Value> values_;
};

} // namespace KEXSDK
