// The vertex and the fragment program of one picture plane, and the values of their uniforms.
#pragma once

#include "EffectTovOgre/ShaderParameter.h"

#include <OgreColourValue.h>
#include <OgreGpuProgramParams.h>
#include <OgreMatrix4.h>
#include <OgreVector.h>

#include <array>
#include <set>
#include <span>
#include <string>

/// A program that the effect does not supply is replaced by the default one of its kind: the vertex program
/// puts the plane into the picture, the fragment program shows the first texture. Between the two stands the
/// varying "textureCoord". Programs are the process's, known by name and kept until OGRE ends; their values
/// are this object's own. Render thread only.
class TovOgreShader {
public:
    /// Makes the default programs if they are missing.
    TovOgreShader();

    /// Makes a program of GLSL source, or of the file of that name; null keeps the default program. The same
    /// source, or file, is compiled once. @return the reason why it cannot be used, else empty
    std::string setShaderProgram(const char* text, bool isFragment, bool isSourceText);

    /// Tries the two programs together, once they are set. On a failure both defaults take over.
    /// @return the driver's message, else empty
    std::string link();

    /// Of the program in use.
    const std::string& programName(bool isFragment) const;
    const Ogre::GpuProgramParametersSharedPtr& parameters(bool isFragment) const;

    // Values by name, each converted to the type that the program declares. Names that the program lacks and
    // numbers beyond the uniform's end are left out. The default programs are never changed.

    void set(u32 programType, const std::string& name, std::span<const i32> values);
    void set(u32 programType, const std::string& name, std::span<const float> values);
    void set(u32 programType, const std::string& name, std::span<const double> values);
    void set(u32 programType, const std::string& name, std::span<const Ogre::Matrix4> values);

    /// Adds the uniforms of the own programs with their current values, the vertex program's first, each in
    /// the order of their names.
    void getShaderParameters(ShaderParameters& list) const;

private:
    struct Program {
        std::string name; ///< empty while the default is in use
        Ogre::GpuProgramParametersSharedPtr parameters;
    };

    Program& own(bool isFragment) { return programs_[isFragment]; }
    /// Null, with a line in the log, without an own program of that type.
    Ogre::GpuProgramParameters* changeable(u32 programType);
    template <class T> void store(u32 programType, const std::string& name, std::span<const T> values);

    std::array<Program, 2> programs_; ///< vertex, fragment
    std::array<Program, 2> defaults_;
    std::set<std::string> uniforms_; ///< those in use, by name
};
