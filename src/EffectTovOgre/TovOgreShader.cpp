// GLSL programs as OGRE's, and conversion of values into their parameter sets.
#include "EffectTovOgre/TovOgreShader.h"

#include "EffectTovOgre/GlslLink.h"
#include "EffectTovOgre/GlslText.h"
#include "EffectTovOgre/TovOgreBase.h"
#include "pixels/numbers.h"

#include <OgreHighLevelGpuProgram.h>
#include <OgreHighLevelGpuProgramManager.h>
#include <OgreResourceGroupManager.h>

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

namespace {

using Ogre::GpuConstantDefinition;
using ProgramPtr = Ogre::HighLevelGpuProgramPtr;

constexpr const char* kWorldViewProjection = "_worldViewProj";

constexpr const char* kDefaultNames[] = {"defaultVertexProgram_GLSL", "defaultFragmentProgram_GLSL"};
constexpr const char* kDefaultSources[] = {
    "attribute vec4 vertex; attribute vec2 uv0; uniform mat4 _worldViewProj; varying vec2 textureCoord; "
    "void main() { gl_Position = _worldViewProj * vertex; textureCoord = uv0; }",
    "uniform sampler2D Sample; varying vec2 textureCoord; "
    "void main() { gl_FragColor = texture2D(Sample, textureCoord); }"};

Ogre::HighLevelGpuProgramManager& manager() { return Ogre::HighLevelGpuProgramManager::getSingleton(); }

ProgramPtr find(const std::string& name)
{
    return manager().getByName(name, Ogre::ResourceGroupManager::AUTODETECT_RESOURCE_GROUP_NAME);
}

/// The next one to ask for that name makes the program anew.
void forget(const std::string& name)
{
    if (const ProgramPtr known = find(name))
        manager().remove(known);
}

/// The program of that name, made from the source if there is none.
template <class Source> ProgramPtr findOrMake(const std::string& name, bool isFragment, Source source)
{
    if (ProgramPtr known = find(name))
        return known;
    const std::string text = source();
    ProgramPtr made = manager().createProgram(
        name, Ogre::RGN_DEFAULT, "glsl", isFragment ? Ogre::GPT_FRAGMENT_PROGRAM : Ogre::GPT_VERTEX_PROGRAM);
    made->setSource(text);
    made->load();
    return made;
}

Ogre::GpuProgramParametersSharedPtr parametersOf(const ProgramPtr& program, bool isFragment)
{
    auto parameters = program->createParameters();
    if (!isFragment && parameters->_findNamedConstantDefinition(kWorldViewProjection, false))
        parameters->setNamedAutoConstant(
            kWorldViewProjection, Ogre::GpuProgramParameters::ACT_WORLDVIEWPROJ_MATRIX);
    return parameters;
}

template <class To, class From> To convertedTo(From value)
{
    if constexpr (std::is_integral_v<To> && std::is_floating_point_v<From>)
        return To(pixels::truncated(value));
    else
        return To(value);
}

template <class To, class From>
void write(Ogre::GpuProgramParameters& parameters, const GpuConstantDefinition& definition,
    std::span<const From> values)
{
    std::vector<To> converted(values.size());
    std::ranges::transform(values, converted.begin(), convertedTo<To, From>);
    parameters._writeRawConstants(definition.physicalIndex, converted.data(), converted.size());
}

template <class From>
void writeAs(Ogre::GpuProgramParameters& parameters, const GpuConstantDefinition& definition,
    std::span<const From> values)
{
    values = values.first(std::min(values.size(), definition.elementSize * definition.arraySize));
    if (definition.isFloat())
        write<float>(parameters, definition, values);
    else if (definition.isDouble())
        write<double>(parameters, definition, values);
    else if (definition.isUnsignedInt())
        write<unsigned>(parameters, definition, values);
    else
        write<int>(parameters, definition, values);
}

/// What the text says about arrays and initial values is corrected by what the driver made of it.
void adopt(const GlslLink::Uniform& uniform, Ogre::GpuProgramParameters& parameters)
{
    const auto* const definition = parameters._findNamedConstantDefinition(uniform.name, false);
    if (!definition)
        return;
    // OGRE asserts that the lengths agree, and sends no booleans; it has no call to say so.
    auto& changed = const_cast<GpuConstantDefinition&>(*definition);
    changed.arraySize = uniform.size;
    if (changed.isBool())
        changed.constType = Ogre::GpuConstantType(changed.constType - Ogre::GCT_BOOL1 + Ogre::GCT_INT1);
    std::visit(
        [&](const auto& values) {
            using T = typename std::decay_t<decltype(values)>::value_type;
            writeAs(parameters, *definition, std::span<const T>(values));
        },
        uniform.values);
}

ShaderParameter describe(const std::string& name, u32 programType, const GpuConstantDefinition& definition,
    const Ogre::GpuProgramParameters& parameters)
{
    ShaderParameter described;
    described.name = name;
    described.programType = programType;
    described.arraySize = u32(definition.arraySize);
    described.valuesPerElement = u32(definition.elementSize);
    const std::size_t count = described.capacity();
    const void* values = nullptr;
    if (definition.isFloat()) {
        described.baseType = ShaderParameter::real;
        values = parameters.getFloatPointer(definition.physicalIndex);
    } else if (definition.isDouble()) {
        described.baseType = ShaderParameter::doubleReal;
        values = parameters.getDoublePointer(definition.physicalIndex);
    } else {
        described.baseType = ShaderParameter::integer;
        values = parameters.getIntPointer(definition.physicalIndex);
    }
    const u32 bytesPerValue = definition.isDouble() ? sizeof(double) : sizeof(float);
    described.bytesPerElement = bytesPerValue * described.valuesPerElement;
    described.data.resize(count * bytesPerValue);
    std::memcpy(described.data.data(), values, described.data.size());
    return described;
}

} // namespace

TovOgreShader::TovOgreShader()
{
    for (const bool isFragment : {false, true}) {
        const ProgramPtr program = findOrMake(
            kDefaultNames[isFragment], isFragment, [&] { return std::string(kDefaultSources[isFragment]); });
        defaults_[isFragment] = {program->getName(), parametersOf(program, isFragment)};
    }
}

std::string TovOgreShader::setShaderProgram(const char* text, bool isFragment, bool isSourceText)
{
    if (!text)
        return {};
    const std::string name = glslText::programName(text, isFragment, isSourceText);
    try {
        const ProgramPtr program = findOrMake(
            name, isFragment, [&] { return isSourceText ? std::string(text) : glslText::readFile(text); });
        own(isFragment) = {name, parametersOf(program, isFragment)};
        return {};
    } catch (const std::exception& error) { // a missing file, or a text that OGRE's preprocessor refuses
        forget(name);
        const auto* const ogre = dynamic_cast<const Ogre::Exception*>(&error);
        return ogre ? ogre->getDescription() : error.what();
    }
}

std::string TovOgreShader::link()
{
    if (own(false).name.empty() && own(true).name.empty())
        return {};
    const std::string key = programName(false) + "\n" + programName(true);
    auto& links = TovOgreBase::getInstance().links;
    auto known = links.find(key);
    if (known == links.end())
        known =
            links
                .emplace(key,
                    GlslLink::of(find(programName(false))->getSource(), find(programName(true))->getSource()))
                .first;
    const GlslLink& link = known->second;
    if (!link.message.empty()) {
        const std::string message = link.message;
        // Forgotten everywhere: the file may have been corrected when the next effect asks for it.
        links.erase(known);
        for (Program& program : programs_) {
            if (!program.name.empty())
                forget(program.name);
            program = {};
        }
        return message;
    }
    for (const GlslLink::Uniform& uniform : link.uniforms) {
        uniforms_.insert(uniform.name);
        for (const Program& program : programs_)
            if (program.parameters && uniform.name != kWorldViewProjection)
                adopt(uniform, *program.parameters);
    }
    return {};
}

const std::string& TovOgreShader::programName(bool isFragment) const
{
    const auto& programs = programs_[isFragment].name.empty() ? defaults_ : programs_;
    return programs[isFragment].name;
}

const Ogre::GpuProgramParametersSharedPtr& TovOgreShader::parameters(bool isFragment) const
{
    const auto& programs = programs_[isFragment].name.empty() ? defaults_ : programs_;
    return programs[isFragment].parameters;
}

Ogre::GpuProgramParameters* TovOgreShader::changeable(u32 programType)
{
    const bool isFragment = programType != ShaderParameter::vertex;
    if (own(isFragment).name.empty())
        TovOgreBase::log(isFragment
                ? "You don't create fragment program. Please call setShaderProgram function to load."
                : "You don't create vertex program. Please call setShaderProgram function to load.");
    return own(isFragment).parameters.get();
}

template <class T>
void TovOgreShader::store(u32 programType, const std::string& name, std::span<const T> values)
{
    Ogre::GpuProgramParameters* const parameters = changeable(programType);
    if (!parameters)
        return;
    if (const auto* const definition = parameters->_findNamedConstantDefinition(name, false))
        writeAs(*parameters, *definition, values);
}

void TovOgreShader::set(u32 programType, const std::string& name, std::span<const i32> values)
{
    store(programType, name, values);
}

void TovOgreShader::set(u32 programType, const std::string& name, std::span<const float> values)
{
    store(programType, name, values);
}

void TovOgreShader::set(u32 programType, const std::string& name, std::span<const double> values)
{
    store(programType, name, values);
}

void TovOgreShader::set(u32 programType, const std::string& name, std::span<const Ogre::Matrix4> values)
{
    Ogre::GpuProgramParameters* const parameters = changeable(programType);
    const auto* const definition =
        parameters ? parameters->_findNamedConstantDefinition(name, false) : nullptr;
    if (!definition || !definition->isFloat())
        return;
    for (std::size_t i = 0; i < std::min(values.size(), definition->arraySize); ++i)
        parameters->_writeRawConstant(
            definition->physicalIndex + i * definition->elementSize, values[i], definition->elementSize);
}

void TovOgreShader::getShaderParameters(ShaderParameters& list) const
{
    for (const u32 type : {ShaderParameter::vertex, ShaderParameter::fragment}) {
        const Program& program = programs_[type];
        if (program.name.empty())
            continue;
        // OGRE takes initial values in the text for names.
        for (const auto& [name, definition] : program.parameters->getConstantDefinitions().map)
            if (uniforms_.contains(name))
                list.push_back(describe(name, type, definition, *program.parameters));
    }
}
