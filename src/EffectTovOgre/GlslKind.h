// The types of uniforms that can be set: their shapes, and OpenGL's calls for each.
#pragma once

#include "core/Types.h"

namespace KEXSDK {

struct GlslKind {
    u32 type; ///< OpenGL's number
    u32 base; ///< a ShaderParameter::BaseType
    u32 columns;
    u32 rows;
    /// Reads one element of a uniform from a program, column by column.
    void (*read)(u32 program, i32 location, void* values);
    /// Writes elements into a uniform of the current program, each row by row.
    void (*send)(i32 location, i32 count, const void* values);

    /// Null for a type that is not to be set.
    static const GlslKind* of(u32 type);
    static bool isSampler(u32 type);
};

} // namespace KEXSDK
