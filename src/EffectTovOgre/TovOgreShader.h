// The vertex and the fragment program of one picture plane, and the values of their uniforms.
#pragma once

#include "EffectTovOgre/GlslLink.h"
#include "graphics/ShaderParameter.h"

#include <OgreColourValue.h>
#include <OgreGpuProgramParams.h>
#include <OgreMatrix4.h>
#include <OgreVector.h>

#include <array>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace KEXSDK {

/// A program that the effect does not supply is replaced by the default one of its kind: the vertex program
/// puts the plane into the picture, the fragment program shows the first texture. Between the two stands the
/// varying "textureCoord". Programs are the process's, known by name, and live until OGRE ends; their values
/// are this object's own. Render thread only.
class TovOgreShader {
public:
    TovOgreShader() = default;
    TovOgreShader(const TovOgreShader&) = delete;
    TovOgreShader& operator=(const TovOgreShader&) = delete;
    virtual ~TovOgreShader() = default;

    /// Takes GLSL source, or the file of that name; null keeps the default program. link() follows.
    /// @return the reason why it cannot be used, else empty
    virtual std::string setShaderProgram(const char* text, bool isFragment, bool isSourceText);

    /// The name of the program in use, the effect's own or the default.
    virtual const std::string& programName(bool isFragment) const;

    // Values by name, each converted to the type that the program declares. Names that the program lacks and
    // numbers beyond the uniform's end are left out. The default programs are never changed: without an own
    // one of the type there is a line in the log.

    virtual void setParam(u32 programType, const char* name, const Ogre::ColourValue& value);
    /// @param count, multiple  elements, and values per element
    virtual void setIntArrayParam(
        u32 programType, const char* name, const i32* values, u32 count, u32 multiple);
    virtual void setDoubleArrayParam(
        u32 programType, const char* name, const double* values, u32 count, u32 multiple);
    virtual void setFloatArrayParam(
        u32 programType, const char* name, const float* values, u32 count, u32 multiple);
    virtual void setParam(u32 programType, const char* name, const Ogre::Matrix4* values, u32 count);
    virtual void setParam(u32 programType, const char* name, const Ogre::Matrix4& value);
    virtual void setParam(u32 programType, const char* name, const Ogre::Vector2& value);
    virtual void setParam(u32 programType, const char* name, const Ogre::Vector3& value);
    virtual void setParam(u32 programType, const char* name, const Ogre::Vector4& value);
    virtual void setFloatParam(u32 programType, const char* name, float value);
    virtual void setIntParam(u32 programType, const char* name, i32 value);

    /// Adds the uniforms of the own programs with their current values, the vertex program's first, each in
    /// the order of their names.
    virtual void getShaderParameters(ShaderParameters& list) const;

    /// Whether the programs are known to read the picture of a texture unit at each pixel's own place and
    /// nowhere else; after link().
    bool readAtOwnPixelOnly(u32 unit) const;

    /// Makes the programs ready to be drawn with. Call it once, after setShaderProgram.
    /// @return the driver's message when that is not possible, else empty; both defaults are in use then
    std::string link();

    /// OGRE's parameters of the program in use; null before link(). Of the uniforms they hold those that OGRE
    /// sets.
    const Ogre::GpuProgramParametersSharedPtr& parameters(bool isFragment) const;

    /// Gives the values to the programs, which others may have used since.
    void sendValues() const;

protected:
    /// The program of that name, made from the text if there is none yet. @return its parameters
    virtual Ogre::GpuProgramParametersSharedPtr createVertexProgram(
        const std::string& text, const std::string& name);
    virtual Ogre::GpuProgramParametersSharedPtr createFragmentProgram(
        const std::string& text, const std::string& name);
    /// Adds the uniforms that one program reads.
    virtual void collectConstants(u32 programType, ShaderParameters& list) const;

private:
    struct Program {
        std::string name; ///< empty while the default is in use
        std::string text; ///< read by link()
        Ogre::GpuProgramParametersSharedPtr parameters;
    };

    void createPrograms();
    u32 linkedProgram();
    const std::string& textOf(bool isFragment) const;
    bool hasOwn(u32 programType) const;
    template <class T> void store(u32 programType, const char* name, std::span<const T> values);

    std::array<Program, 2> programs_;        ///< vertex, fragment
    std::set<std::string> ownPixelSamplers_; ///< of an own fragment program behind the default vertex program
    const GlslLink* link_ = nullptr;         ///< of the environment; null without an own program
    std::vector<GlslUniform> uniforms_;
};

} // namespace KEXSDK
