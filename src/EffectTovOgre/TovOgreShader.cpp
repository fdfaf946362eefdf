// Makes OGRE's programs from GLSL texts, and keeps the values of their uniforms.
#include "EffectTovOgre/TovOgreShader.h"

#include "EffectTovOgre/GlslKind.h"
#include "EffectTovOgre/GlslReads.h"
#include "EffectTovOgre/GlslText.h"
#include "EffectTovOgre/TovOgreBase.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <OgreHighLevelGpuProgram.h>
#include <OgreHighLevelGpuProgramManager.h>
#include <OgreRenderSystem.h>
#include <OgreResourceGroupManager.h>
#include <OgreRoot.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace KEXSDK {

namespace {

using ProgramPtr = Ogre::HighLevelGpuProgramPtr;

constexpr const char* kWorldViewProjection = "_worldViewProj";

const std::string kDefaultNames[] = {"defaultVertexProgram_GLSL", "defaultFragmentProgram_GLSL"};
const std::string kDefaultSources[] = {
    "attribute vec4 vertex; attribute vec2 uv0; uniform mat4 _worldViewProj; varying vec2 textureCoord; "
    "void main() { gl_Position = _worldViewProj * vertex; textureCoord = uv0; }",
    "uniform sampler2D Sample; varying vec2 textureCoord; "
    "void main() { gl_FragColor = texture2D(Sample, textureCoord); }"};

/// The texts that OGRE prepares in place of the real vertex and fragment program; load() says why.
constexpr const char* kOgresTexts[] = {
    "uniform mat4 _worldViewProj;\nvoid main() { gl_Position = _worldViewProj * gl_Vertex; }\n",
    "void main() { gl_FragColor = gl_Color; }\n"};

Ogre::HighLevelGpuProgramManager& manager() { return Ogre::HighLevelGpuProgramManager::getSingleton(); }

ProgramPtr find(const std::string& name)
{
    return manager().getByName(name, Ogre::ResourceGroupManager::AUTODETECT_RESOURCE_GROUP_NAME);
}

/// OGRE's number of the program, which no later one of that name has; 0 when there is none.
Ogre::ResourceHandle handleOf(const std::string& name)
{
    const ProgramPtr program = find(name);
    return program ? program->getHandle() : 0;
}

/// Loads a program that nobody knows yet.
///
/// OGRE preprocesses a text in its own way and then looks for uniforms by their spelling; for what GLSL
/// allows beyond that it ends the process, or loses values. So it prepares a text that declares the one
/// uniform it sets itself, and compiles the real one.
void load(Ogre::HighLevelGpuProgram& program, const std::string& text, bool isFragment)
{
    program.setSource(kOgresTexts[isFragment]);
    program.prepare();
    program.getConstantDefinitions();
    program.setSource(text);
    program.load();
}

/// The program of that name, made from the text if there is none.
ProgramPtr findOrMake(const std::string& name, const std::string& text, bool isFragment)
{
    if (ProgramPtr known = find(name))
        return known;
    try {
        const ProgramPtr made = manager().createProgram(name, Ogre::RGN_DEFAULT, "glsl",
            isFragment ? Ogre::GPT_FRAGMENT_PROGRAM : Ogre::GPT_VERTEX_PROGRAM);
        load(*made, text, isFragment);
        return made;
    } catch (...) { // half a program is not to be found by the next one to ask
        if (const ProgramPtr half = find(name))
            manager().remove(half);
        throw;
    }
}

/// While it lives, OGRE draws with a pair of programs. One left bound after its end would be taken for the
/// next program at its address.
class BoundPair {
public:
    BoundPair(Ogre::GpuProgram& vertex, Ogre::GpuProgram& fragment)
    {
        try {
            system_.bindGpuProgram(vertex._getBindingDelegate());
            system_.bindGpuProgram(fragment._getBindingDelegate());
        } catch (...) {
            unbind();
            throw;
        }
    }
    BoundPair(const BoundPair&) = delete;
    BoundPair& operator=(const BoundPair&) = delete;
    ~BoundPair() { unbind(); }

    /// OpenGL's number of the program that OGRE links from the two; 0 when it cannot.
    u32 linkedProgram(const Ogre::GpuProgramParametersSharedPtr& fragmentParameters)
    {
        system_.bindGpuProgramParameters(Ogre::GPT_FRAGMENT_PROGRAM, fragmentParameters, Ogre::GPV_ALL);
        GLint linked = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &linked);
        return u32(linked);
    }

private:
    void unbind()
    {
        system_.unbindGpuProgram(Ogre::GPT_FRAGMENT_PROGRAM);
        system_.unbindGpuProgram(Ogre::GPT_VERTEX_PROGRAM);
    }

    Ogre::RenderSystem& system_ = *Ogre::Root::getSingleton().getRenderSystem();
};

std::span<const float> numbers(const Ogre::Vector2& value) { return {value.ptr(), 2}; }
std::span<const float> numbers(const Ogre::Vector3& value) { return {value.ptr(), 3}; }
std::span<const float> numbers(const Ogre::Vector4& value) { return {value.ptr(), 4}; }
std::span<const float> numbers(const Ogre::ColourValue& value) { return {value.ptr(), 4}; }

} // namespace

std::string TovOgreShader::setShaderProgram(const char* text, bool isFragment, bool isSourceText)
{
    if (!text)
        return {};
    Program& program = programs_[isFragment];
    program = {glslText::programName(text, isFragment, isSourceText), {}, {}};
    try {
        const ProgramPtr known = find(program.name);
        program.text = known ? known->getSource() : glslText::complete(text, isSourceText);
        return {};
    } catch (const std::bad_alloc&) { // no fault of the program's
        program = {};
        throw;
    } catch (const std::exception& error) { // a file that is missing, or may not be read
        program = {};
        const auto* const ogre = dynamic_cast<const Ogre::Exception*>(&error);
        return ogre ? ogre->getDescription() : error.what();
    }
}

std::string TovOgreShader::link()
{
    auto& links = TovOgreBase::getInstance().links;
    auto known = links.find({handleOf(programName(false)), handleOf(programName(true))});
    if (known == links.end()) {
        GlslLink tried = GlslLink::of(textOf(false), textOf(true));
        if (!tried.message.empty()) { // not remembered: the file may be corrected
            programs_ = {};
            return tried.message;
        }
        createPrograms();
        tried.drawWith(linkedProgram());
        if (tried.program == 0)
            return "The program cannot be linked by the rendering library.";
        known = links
                    .emplace(std::pair(handleOf(programName(false)), handleOf(programName(true))),
                        std::move(tried))
                    .first;
    } else {
        createPrograms();
    }
    if (programs_[false].name.empty() && programs_[true].name.empty())
        return {};
    uniforms_ = known->second.uniforms;
    std::erase_if(
        uniforms_, [](const GlslUniform& uniform) { return uniform.value.name == kWorldViewProjection; });
    link_ = &known->second;
    if (programs_[false].name.empty())
        ownPixelSamplers_ = glslReads::atOwnPixelOnly(programs_[true].text);
    return {};
}

bool TovOgreShader::readAtOwnPixelOnly(u32 unit) const
{
    if (!programs_[false].name.empty())
        return false;
    for (const GlslUniform& uniform : uniforms_) {
        if (!GlslKind::isSampler(uniform.type) || ownPixelSamplers_.contains(uniform.value.name))
            continue;
        for (u32 i = 0; i < uniform.value.arraySize; ++i) {
            u32 shown = 0;
            std::memcpy(&shown, uniform.value.data.data() + i * sizeof shown, sizeof shown);
            if (shown == unit)
                return false;
        }
    }
    return true;
}

u32 TovOgreShader::linkedProgram()
{
    const ProgramPtr fragment = find(programName(true));
    try {
        return BoundPair(*find(programName(false)), *fragment).linkedProgram(parameters(true));
    } catch (...) {
        // OGRE keeps what it has linked of the two, and would take it for complete. A fragment program made
        // anew is another pair.
        manager().remove(fragment);
        throw;
    }
}

void TovOgreShader::createPrograms()
{
    programs_[false].parameters = createVertexProgram(textOf(false), programName(false));
    programs_[true].parameters = createFragmentProgram(textOf(true), programName(true));
}

Ogre::GpuProgramParametersSharedPtr TovOgreShader::createVertexProgram(
    const std::string& text, const std::string& name)
{
    auto parameters = findOrMake(name, text, false)->createParameters();
    parameters->setNamedAutoConstant(
        kWorldViewProjection, Ogre::GpuProgramParameters::ACT_WORLDVIEWPROJ_MATRIX);
    return parameters;
}

Ogre::GpuProgramParametersSharedPtr TovOgreShader::createFragmentProgram(
    const std::string& text, const std::string& name)
{
    return findOrMake(name, text, true)->createParameters();
}

const std::string& TovOgreShader::textOf(bool isFragment) const
{
    return programs_[isFragment].name.empty() ? kDefaultSources[isFragment] : programs_[isFragment].text;
}

const std::string& TovOgreShader::programName(bool isFragment) const
{
    const std::string& own = programs_[isFragment].name;
    return own.empty() ? kDefaultNames[isFragment] : own;
}

const Ogre::GpuProgramParametersSharedPtr& TovOgreShader::parameters(bool isFragment) const
{
    return programs_[isFragment].parameters;
}

void TovOgreShader::sendValues() const
{
    if (link_)
        link_->send(uniforms_);
}

bool TovOgreShader::hasOwn(u32 programType) const
{
    const bool isFragment = programType != ShaderParameter::vertex;
    if (!programs_[isFragment].name.empty())
        return true;
    TovOgreBase::log(isFragment
            ? "You don't create fragment program. Please call setShaderProgram function to load."
            : "You don't create vertex program. Please call setShaderProgram function to load.");
    return false;
}

template <class T> void TovOgreShader::store(u32 programType, const char* name, std::span<const T> values)
{
    if (!hasOwn(programType))
        return;
    const auto found = std::ranges::find(uniforms_, std::string_view(name),
        [](const GlslUniform& uniform) -> std::string_view { return uniform.value.name; });
    if (found != uniforms_.end())
        found->value.set(values);
}

void TovOgreShader::setParam(u32 programType, const char* name, const Ogre::ColourValue& value)
{
    store(programType, name, numbers(value));
}

void TovOgreShader::setIntArrayParam(
    u32 programType, const char* name, const i32* values, u32 count, u32 multiple)
{
    store(programType, name, std::span(values, std::size_t{count} * multiple));
}

void TovOgreShader::setDoubleArrayParam(
    u32 programType, const char* name, const double* values, u32 count, u32 multiple)
{
    store(programType, name, std::span(values, std::size_t{count} * multiple));
}

void TovOgreShader::setFloatArrayParam(
    u32 programType, const char* name, const float* values, u32 count, u32 multiple)
{
    store(programType, name, std::span(values, std::size_t{count} * multiple));
}

void TovOgreShader::setParam(u32 programType, const char* name, const Ogre::Matrix4* values, u32 count)
{
    std::vector<float> all;
    for (const Ogre::Matrix4& matrix : std::span(values, count))
        for (int row = 0; row < 4; ++row)
            all.insert(all.end(), matrix[row], matrix[row] + 4);
    store(programType, name, std::span<const float>(all));
}

void TovOgreShader::setParam(u32 programType, const char* name, const Ogre::Matrix4& value)
{
    setParam(programType, name, &value, 1);
}

void TovOgreShader::setParam(u32 programType, const char* name, const Ogre::Vector2& value)
{
    store(programType, name, numbers(value));
}

void TovOgreShader::setParam(u32 programType, const char* name, const Ogre::Vector3& value)
{
    store(programType, name, numbers(value));
}

void TovOgreShader::setParam(u32 programType, const char* name, const Ogre::Vector4& value)
{
    store(programType, name, numbers(value));
}

void TovOgreShader::setFloatParam(u32 programType, const char* name, float value)
{
    store(programType, name, std::span<const float>(&value, 1));
}

void TovOgreShader::setIntParam(u32 programType, const char* name, i32 value)
{
    store(programType, name, std::span<const i32>(&value, 1));
}

void TovOgreShader::getShaderParameters(ShaderParameters& list) const
{
    for (const u32 type : {ShaderParameter::vertex, ShaderParameter::fragment})
        if (!programs_[type].name.empty())
            collectConstants(type, list);
}

void TovOgreShader::collectConstants(u32 programType, ShaderParameters& list) const
{
    for (const GlslUniform& uniform : uniforms_)
        if (programType == ShaderParameter::vertex ? uniform.inVertex : uniform.inFragment) {
            list.push_back(uniform.value);
            list.back().programType = programType;
        }
}

} // namespace KEXSDK
