// A trial link of a pair of programs, and the way from values to the uniforms of a program in use.
#pragma once

#include "core/Types.h"
#include "graphics/ShaderParameter.h"

#include <span>
#include <string>
#include <vector>

namespace KEXSDK {

/// A uniform in use, as the driver names and counts it.
struct GlslUniform {
    /// Its shape, and its present values; first those that the program gives it. A name has no "[0]" at its
    /// end. Matrices go row by row, numbers of unsigned types as their bits.
    ShaderParameter value;
    u32 type = 0;      ///< OpenGL's number
    i32 location = -1; ///< in the program that is drawn with
    bool inVertex = false;
    bool inFragment = false;
};

/// What the driver says about a pair of programs. It is asked about everything: GLSL declares a uniform in so
/// many ways that reading the text for them would take a compiler.
struct GlslLink {
    /// Why the pair cannot be used, empty when it can: the driver's message, or a part that cannot be set.
    std::string message;
    std::vector<GlslUniform> uniforms; ///< in the order of their names
    u32 program = 0;                   ///< the one that is drawn with; 0 until drawWith

    // These functions need a current OpenGL context.

    /// Compiles and links the two, and lets the result go again.
    static GlslLink of(const std::string& vertexSource, const std::string& fragmentSource);

    /// Names the program, linked from the same two sources, that values are sent to from now on.
    void drawWith(u32 linkedProgram);

    /// Writes the values into the program. Throws std::runtime_error when two samplers of different types
    /// show one texture unit: nothing is drawn then.
    void send(std::span<const GlslUniform> values) const;
};

} // namespace KEXSDK
