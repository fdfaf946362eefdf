// The trial link of two programs, in plain OpenGL, and the reading and writing of their uniforms.
#define GL_GLEXT_PROTOTYPES
#include "EffectTovOgre/GlslLink.h"

#include "EffectTovOgre/GlslKind.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace KEXSDK {

namespace {

/// An OpenGL shader or program that is deleted at the end of its scope.
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
    text.erase(std::min(text.find('\0'), text.size()));
    text = oneLine(std::move(text));
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

/// Whether the context is of this version of OpenGL, times ten, or later.
bool isAtLeast(GLint version)
{
    GLint major = 0;
    GLint minor = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    return major * 10 + minor >= version;
}

/// Initial values of all elements, packed, matrices row by row.
std::vector<u8> valuesOf(GLuint program, const ShaderParameter& uniform, const GlslKind& kind)
{
    std::vector<u8> values;
    const std::size_t size = uniform.bytesPerElement / uniform.valuesPerElement;
    for (u32 i = 0; i < uniform.arraySize; ++i) {
        const std::string element = i == 0 ? uniform.name : uniform.name + "[" + std::to_string(i) + "]";
        alignas(double) std::array<u8, 16 * sizeof(double)> columns{};
        if (const GLint location = glGetUniformLocation(program, element.c_str()); location >= 0)
            kind.read(program, location, columns.data());
        for (u32 row = 0; row < kind.rows; ++row)
            for (u32 column = 0; column < kind.columns; ++column) {
                const u8* const value = columns.data() + (column * kind.rows + row) * size;
                values.insert(values.end(), value, value + size);
            }
    }
    return values;
}

/// Which programs read the uniform; a driver that cannot tell is taken to mean both.
void findUsers(GLuint program, GLint index, GlslUniform& uniform)
{
    uniform.inVertex = uniform.inFragment = true;
    if (!isAtLeast(43))
        return;
    const GLenum questions[] = {GL_REFERENCED_BY_VERTEX_SHADER, GL_REFERENCED_BY_FRAGMENT_SHADER};
    GLint answers[] = {1, 1};
    glGetProgramResourceiv(program, GL_UNIFORM, GLuint(index), 2, questions, 2, nullptr, answers);
    uniform.inVertex = answers[0] != 0;
    uniform.inFragment = answers[1] != 0;
}

/// The message about blocks and subroutines, which plain uniform calls cannot set; empty without any.
std::string unusableParts(GLuint program)
{
    GLint count = 0;
    glGetProgramiv(program, GL_ACTIVE_UNIFORM_BLOCKS, &count);
    if (count > 0)
        return "The program has a uniform block; only plain uniforms can be set.";
    if (!isAtLeast(43))
        return {};
    glGetProgramInterfaceiv(program, GL_SHADER_STORAGE_BLOCK, GL_ACTIVE_RESOURCES, &count);
    if (count > 0)
        return "The program has a storage block; only plain uniforms can be set.";
    for (const GLenum stage : {GL_VERTEX_SHADER, GL_FRAGMENT_SHADER}) {
        glGetProgramStageiv(program, stage, GL_ACTIVE_SUBROUTINE_UNIFORMS, &count);
        if (count > 0)
            return "The program has a subroutine uniform; only plain uniforms can be set.";
    }
    return {};
}

/// Points a sampler at the last texture unit. Inputs take the units from the first one on, and samplers of
/// two types must not show the same unit.
void separate(GlslUniform& sampler)
{
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, &units);
    const std::vector<i32> last(sampler.value.arraySize, std::max(units, 1) - 1);
    sampler.value.set(std::span(last));
}

/// Fills in the uniforms, or the message that one of them cannot be set.
void describeUniforms(GLuint program, GlslLink& result)
{
    GLint count = 0;
    GLint longest = 0;
    glGetProgramiv(program, GL_ACTIVE_UNIFORMS, &count);
    glGetProgramiv(program, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
    std::string name(std::size_t(std::max(longest, 1)), '\0');
    for (GLint i = 0; i < count; ++i) {
        GLint size = 0;
        GLenum type = 0;
        GLsizei length = 0;
        glGetActiveUniform(program, GLuint(i), longest, &length, &size, &type, name.data());
        GlslUniform uniform;
        uniform.type = type;
        uniform.value.name = name.substr(0, std::size_t(length));
        if (uniform.value.name.starts_with("gl_")) // the state of OpenGL itself
            continue;
        const GlslKind* const kind = GlslKind::of(type);
        if (!kind || glGetUniformLocation(program, uniform.value.name.c_str()) < 0) {
            result.message = "The uniform " + uniform.value.name
                + " cannot be set: it is no number, vector, matrix, sampler2D or sampler3D.";
            return;
        }
        if (uniform.value.name.ends_with("[0]"))
            uniform.value.name.erase(uniform.value.name.size() - 3);
        uniform.value.arraySize = u32(size);
        uniform.value.baseType = kind->base;
        uniform.value.valuesPerElement = kind->columns * kind->rows;
        uniform.value.bytesPerElement =
            uniform.value.valuesPerElement * u32(kind->base == ShaderParameter::doubleReal ? 8 : 4);
        uniform.value.data = valuesOf(program, uniform.value, *kind);
        if (type == GL_SAMPLER_3D)
            separate(uniform);
        findUsers(program, i, uniform);
        result.uniforms.push_back(std::move(uniform));
    }
    std::ranges::sort(
        result.uniforms, [](const auto& a, const auto& b) { return a.value.name < b.value.name; });
}

/// While it lives, a program is OpenGL's current one. Then the one before is again, because the rendering
/// library believes that it never changes.
class CurrentProgram {
public:
    explicit CurrentProgram(GLuint program)
    {
        glGetIntegerv(GL_CURRENT_PROGRAM, &before_);
        glUseProgram(program);
    }
    CurrentProgram(const CurrentProgram&) = delete;
    CurrentProgram& operator=(const CurrentProgram&) = delete;
    ~CurrentProgram() { glUseProgram(GLuint(before_)); }

private:
    GLint before_ = 0;
};

/// Throws when samplers of two types show one unit: OpenGL would draw nothing then, and say nothing.
void checkUnits(std::span<const GlslUniform> uniforms)
{
    std::array<u32, 256> types{}; // by unit; those beyond exist on no driver
    for (const GlslUniform& uniform : uniforms) {
        if (!GlslKind::isSampler(uniform.type))
            continue;
        for (u32 i = 0; i < uniform.value.arraySize; ++i) {
            u32 unit = 0;
            std::memcpy(&unit, uniform.value.data.data() + i * sizeof unit, sizeof unit);
            if (unit >= types.size())
                continue;
            const u32 other = std::exchange(types[unit], uniform.type);
            if (other != 0 && other != uniform.type)
                throw std::runtime_error(
                    "The sampler " + uniform.value.name + " shows the texture unit of another type's.");
        }
    }
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
        result.message = unusableParts(program);
    if (result.message.empty())
        describeUniforms(program, result);
    return result;
}

void GlslLink::drawWith(u32 linkedProgram)
{
    program = linkedProgram;
    for (GlslUniform& uniform : uniforms)
        uniform.location = glGetUniformLocation(program, uniform.value.name.c_str());
}

void GlslLink::send(std::span<const GlslUniform> values) const
{
    if (values.empty())
        return;
    checkUnits(values);
    const CurrentProgram current(program);
    for (const GlslUniform& uniform : values)
        if (uniform.location >= 0)
            GlslKind::of(uniform.type)
                ->send(uniform.location, GLsizei(uniform.value.arraySize), uniform.value.data.data());
}

} // namespace KEXSDK
