// The table of uniform types.
#define GL_GLEXT_PROTOTYPES
#include "EffectTovOgre/GlslKind.h"

#include "graphics/ShaderParameter.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>

namespace KEXSDK {

namespace {

template <class T, auto get> void read(u32 program, i32 location, void* values)
{
    get(program, location, static_cast<T*>(values));
}

template <class T, auto set> void sendVectors(i32 location, i32 count, const void* values)
{
    set(location, count, static_cast<const T*>(values));
}

template <class T, auto set> void sendMatrices(i32 location, i32 count, const void* values)
{
    set(location, count, GL_TRUE, static_cast<const T*>(values));
}

constexpr auto kReal = ShaderParameter::real;
constexpr auto kDouble = ShaderParameter::doubleReal;
constexpr auto kInteger = ShaderParameter::integer;

constexpr auto readReals = read<GLfloat, glGetUniformfv>;
constexpr auto readDoubles = read<GLdouble, glGetUniformdv>;
constexpr auto readIntegers = read<GLint, glGetUniformiv>;
constexpr auto readUnsigned = read<GLuint, glGetUniformuiv>;

constexpr GlslKind kKinds[] = {
    {GL_FLOAT, kReal, 1, 1, readReals, sendVectors<GLfloat, glUniform1fv>},
    {GL_FLOAT_VEC2, kReal, 1, 2, readReals, sendVectors<GLfloat, glUniform2fv>},
    {GL_FLOAT_VEC3, kReal, 1, 3, readReals, sendVectors<GLfloat, glUniform3fv>},
    {GL_FLOAT_VEC4, kReal, 1, 4, readReals, sendVectors<GLfloat, glUniform4fv>},
    {GL_FLOAT_MAT2, kReal, 2, 2, readReals, sendMatrices<GLfloat, glUniformMatrix2fv>},
    {GL_FLOAT_MAT2x3, kReal, 2, 3, readReals, sendMatrices<GLfloat, glUniformMatrix2x3fv>},
    {GL_FLOAT_MAT2x4, kReal, 2, 4, readReals, sendMatrices<GLfloat, glUniformMatrix2x4fv>},
    {GL_FLOAT_MAT3x2, kReal, 3, 2, readReals, sendMatrices<GLfloat, glUniformMatrix3x2fv>},
    {GL_FLOAT_MAT3, kReal, 3, 3, readReals, sendMatrices<GLfloat, glUniformMatrix3fv>},
    {GL_FLOAT_MAT3x4, kReal, 3, 4, readReals, sendMatrices<GLfloat, glUniformMatrix3x4fv>},
    {GL_FLOAT_MAT4x2, kReal, 4, 2, readReals, sendMatrices<GLfloat, glUniformMatrix4x2fv>},
    {GL_FLOAT_MAT4x3, kReal, 4, 3, readReals, sendMatrices<GLfloat, glUniformMatrix4x3fv>},
    {GL_FLOAT_MAT4, kReal, 4, 4, readReals, sendMatrices<GLfloat, glUniformMatrix4fv>},
    {GL_DOUBLE, kDouble, 1, 1, readDoubles, sendVectors<GLdouble, glUniform1dv>},
    {GL_DOUBLE_VEC2, kDouble, 1, 2, readDoubles, sendVectors<GLdouble, glUniform2dv>},
    {GL_DOUBLE_VEC3, kDouble, 1, 3, readDoubles, sendVectors<GLdouble, glUniform3dv>},
    {GL_DOUBLE_VEC4, kDouble, 1, 4, readDoubles, sendVectors<GLdouble, glUniform4dv>},
    {GL_DOUBLE_MAT2, kDouble, 2, 2, readDoubles, sendMatrices<GLdouble, glUniformMatrix2dv>},
    {GL_DOUBLE_MAT2x3, kDouble, 2, 3, readDoubles, sendMatrices<GLdouble, glUniformMatrix2x3dv>},
    {GL_DOUBLE_MAT2x4, kDouble, 2, 4, readDoubles, sendMatrices<GLdouble, glUniformMatrix2x4dv>},
    {GL_DOUBLE_MAT3x2, kDouble, 3, 2, readDoubles, sendMatrices<GLdouble, glUniformMatrix3x2dv>},
    {GL_DOUBLE_MAT3, kDouble, 3, 3, readDoubles, sendMatrices<GLdouble, glUniformMatrix3dv>},
    {GL_DOUBLE_MAT3x4, kDouble, 3, 4, readDoubles, sendMatrices<GLdouble, glUniformMatrix3x4dv>},
    {GL_DOUBLE_MAT4x2, kDouble, 4, 2, readDoubles, sendMatrices<GLdouble, glUniformMatrix4x2dv>},
    {GL_DOUBLE_MAT4x3, kDouble, 4, 3, readDoubles, sendMatrices<GLdouble, glUniformMatrix4x3dv>},
    {GL_DOUBLE_MAT4, kDouble, 4, 4, readDoubles, sendMatrices<GLdouble, glUniformMatrix4dv>},
    {GL_INT, kInteger, 1, 1, readIntegers, sendVectors<GLint, glUniform1iv>},
    {GL_INT_VEC2, kInteger, 1, 2, readIntegers, sendVectors<GLint, glUniform2iv>},
    {GL_INT_VEC3, kInteger, 1, 3, readIntegers, sendVectors<GLint, glUniform3iv>},
    {GL_INT_VEC4, kInteger, 1, 4, readIntegers, sendVectors<GLint, glUniform4iv>},
    {GL_BOOL, kInteger, 1, 1, readIntegers, sendVectors<GLint, glUniform1iv>},
    {GL_BOOL_VEC2, kInteger, 1, 2, readIntegers, sendVectors<GLint, glUniform2iv>},
    {GL_BOOL_VEC3, kInteger, 1, 3, readIntegers, sendVectors<GLint, glUniform3iv>},
    {GL_BOOL_VEC4, kInteger, 1, 4, readIntegers, sendVectors<GLint, glUniform4iv>},
    {GL_UNSIGNED_INT, kInteger, 1, 1, readUnsigned, sendVectors<GLuint, glUniform1uiv>},
    {GL_UNSIGNED_INT_VEC2, kInteger, 1, 2, readUnsigned, sendVectors<GLuint, glUniform2uiv>},
    {GL_UNSIGNED_INT_VEC3, kInteger, 1, 3, readUnsigned, sendVectors<GLuint, glUniform3uiv>},
    {GL_UNSIGNED_INT_VEC4, kInteger, 1, 4, readUnsigned, sendVectors<GLuint, glUniform4uiv>},
    // Inputs are of these two types; other samplers have nothing to show.
    {GL_SAMPLER_2D, kInteger, 1, 1, readIntegers, sendVectors<GLint, glUniform1iv>},
    {GL_SAMPLER_3D, kInteger, 1, 1, readIntegers, sendVectors<GLint, glUniform1iv>},
};

} // namespace

const GlslKind* GlslKind::of(u32 type)
{
    const auto* const found = std::ranges::find(kKinds, type, &GlslKind::type);
    return found == std::end(kKinds) ? nullptr : found;
}

bool GlslKind::isSampler(u32 type) { return type == GL_SAMPLER_2D || type == GL_SAMPLER_3D; }

} // namespace KEXSDK
