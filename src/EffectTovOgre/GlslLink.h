// A trial link of a pair of programs: what the driver says about them.
#pragma once

#include "core/Types.h"

#include <string>
#include <variant>
#include <vector>

/// The rendering library draws black with programs that do not compile, forgets the values that GLSL gives
/// its uniforms, and takes the length of an array from the text where the driver counts the elements in use.
/// Linking the pair once more beside it answers all three.
struct GlslLink {
    struct Uniform {
        std::string name; ///< without the "[0]" of arrays
        u32 size = 1;     ///< elements in use
        /// Initial values of all elements, packed; matrices row by row.
        std::variant<std::vector<float>, std::vector<i32>, std::vector<double>> values;
    };

    std::string message; ///< the driver's; empty when the pair can be used
    std::vector<Uniform> uniforms;

    /// Needs a current OpenGL context.
    static GlslLink of(const std::string& vertexSource, const std::string& fragmentSource);
};
