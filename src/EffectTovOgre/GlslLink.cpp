// The trial link, in plain OpenGL.
#define GL_GLEXT_PROTOTYPES
#include "EffectTovOgre/GlslLink.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <array>
#include <map>

namespace {

/// A shader or program of OpenGL's, for the time of one scope.
template <void (*destroy)(GLuint)> class Name {
public:
    explicit Name(GLuint name) : name_(name) { }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;
    ~Name() { destroy(name_); }
    operator GLuint() const { return name_; }

private:
    GLuint name_;
};
using Shader = Name<+[](GLuint name) { glDeleteShader(name); }>;
using Program = Name<+[](GLuint name) { glDeleteProgram(name); }>;

std::string oneLine(std::string text)
{
    std::ranges::replace_if(
        text, [](char c) { return c >= 0 && c < ' '; }, ' ');
    text.erase(std::find_if(text.rbegin(), text.rend(), [](char c) { return c != ' '; }).base(), text.end());
    return text;
}

/// The driver's report, or "failed" from one that gives no reason.
template <class Get> std::string report(GLint length, Get get)
{
    std::string text(std::size_t(std::max(length, 1)), '\0');
    get(GLsizei(text.size()), text.data());
    text = oneLine(text.c_str());
    return text.empty() ? "failed" : text;
}

/// @return the driver's message, empty after a success
std::string compile(GLuint shader, const std::string& source)
{
    const char* const text = source.data();
    const auto length = GLint(source.size());
    glShaderSource(shader, 1, &text, &length);
    glCompileShader(shader);
    GLint done = 0;
    GLint reportLength = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &done);
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &reportLength);
    return done ? "" : report(reportLength, [&](GLsizei room, char* to) {
        glGetShaderInfoLog(shader, room, nullptr, to);
    });
}

std::string link(GLuint program)
{
    glLinkProgram(program);
    GLint done = 0;
    GLint reportLength = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &done);
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &reportLength);
    return done ? "" : report(reportLength, [&](GLsizei room, char* to) {
        glGetProgramInfoLog(program, room, nullptr, to);
    });
}

struct Kind {
    enum class Base { real, integer, doubleReal } base;
    u32 columns;
    u32 rows;
};

/// Samplers, booleans and unsigned numbers are read as integers.
Kind kindOf(GLenum type)
{
    using enum Kind::Base;
    static const std::map<GLenum, Kind> kinds{
        {GL_FLOAT, {real, 1, 1}},
        {GL_FLOAT_VEC2, {real, 1, 2}},
        {GL_FLOAT_VEC3, {real, 1, 3}},
        {GL_FLOAT_VEC4, {real, 1, 4}},
        {GL_FLOAT_MAT2, {real, 2, 2}},
        {GL_FLOAT_MAT2x3, {real, 2, 3}},
        {GL_FLOAT_MAT2x4, {real, 2, 4}},
        {GL_FLOAT_MAT3x2, {real, 3, 2}},
        {GL_FLOAT_MAT3, {real, 3, 3}},
        {GL_FLOAT_MAT3x4, {real, 3, 4}},
        {GL_FLOAT_MAT4x2, {real, 4, 2}},
        {GL_FLOAT_MAT4x3, {real, 4, 3}},
        {GL_FLOAT_MAT4, {real, 4, 4}},
        {GL_DOUBLE, {doubleReal, 1, 1}},
        {GL_DOUBLE_VEC2, {doubleReal, 1, 2}},
        {GL_DOUBLE_VEC3, {doubleReal, 1, 3}},
        {GL_DOUBLE_VEC4, {doubleReal, 1, 4}},
        {GL_DOUBLE_MAT2, {doubleReal, 2, 2}},
        {GL_DOUBLE_MAT3, {doubleReal, 3, 3}},
        {GL_DOUBLE_MAT4, {doubleReal, 4, 4}},
        {GL_INT_VEC2, {integer, 1, 2}},
        {GL_INT_VEC3, {integer, 1, 3}},
        {GL_INT_VEC4, {integer, 1, 4}},
        {GL_UNSIGNED_INT_VEC2, {integer, 1, 2}},
        {GL_UNSIGNED_INT_VEC3, {integer, 1, 3}},
        {GL_UNSIGNED_INT_VEC4, {integer, 1, 4}},
        {GL_BOOL_VEC2, {integer, 1, 2}},
        {GL_BOOL_VEC3, {integer, 1, 3}},
        {GL_BOOL_VEC4, {integer, 1, 4}},
    };
    const auto kind = kinds.find(type);
    return kind == kinds.end() ? Kind{integer, 1, 1} : kind->second;
}

/// Row by row, as OGRE keeps matrices.
template <class T, class Read>
std::vector<T> valuesOf(GLuint program, const GlslLink::Uniform& uniform, Kind kind, Read read)
{
    constexpr std::size_t kMost = 16;
    std::vector<T> values;
    for (u32 i = 0; i < uniform.size; ++i) {
        const std::string element = i == 0 ? uniform.name : uniform.name + "[" + std::to_string(i) + "]";
        std::array<T, kMost> columns{};
        if (const GLint location = glGetUniformLocation(program, element.c_str()); location >= 0)
            read(program, location, columns.data());
        for (u32 row = 0; row < kind.rows; ++row)
            for (u32 column = 0; column < kind.columns; ++column)
                values.push_back(columns[column * kind.rows + row]);
    }
    return values;
}

std::vector<GlslLink::Uniform> uniformsOf(GLuint program)
{
    GLint count = 0;
    GLint longest = 0;
    glGetProgramiv(program, GL_ACTIVE_UNIFORMS, &count);
    glGetProgramiv(program, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
    std::vector<GlslLink::Uniform> uniforms;
    std::string name(std::size_t(std::max(longest, 1)), '\0');
    for (GLint i = 0; i < count; ++i) {
        GLint size = 0;
        GLenum type = 0;
        GLsizei length = 0;
        glGetActiveUniform(program, GLuint(i), longest, &length, &size, &type, name.data());
        GlslLink::Uniform uniform{name.substr(0, std::size_t(length)), u32(size), {}};
        if (uniform.name.ends_with("[0]"))
            uniform.name.erase(uniform.name.size() - 3);
        const Kind kind = kindOf(type);
        if (kind.base == Kind::Base::real)
            uniform.values = valuesOf<float>(program, uniform, kind, glGetUniformfv);
        else if (kind.base == Kind::Base::doubleReal)
            uniform.values = valuesOf<double>(program, uniform, kind, glGetUniformdv);
        else
            uniform.values = valuesOf<i32>(program, uniform, kind, glGetUniformiv);
        uniforms.push_back(std::move(uniform));
    }
    return uniforms;
}

} // namespace

GlslLink GlslLink::of(const std::string& vertexSource, const std::string& fragmentSource)
{
    const Shader vertex(glCreateShader(GL_VERTEX_SHADER));
    const Shader fragment(glCreateShader(GL_FRAGMENT_SHADER));
    const Program program(glCreateProgram());
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);

    GlslLink result;
    result.message = compile(vertex, vertexSource);
    if (result.message.empty())
        result.message = compile(fragment, fragmentSource);
    if (result.message.empty())
        result.message = link(program);
    if (result.message.empty())
        result.uniforms = uniformsOf(program);
    return result;
}
