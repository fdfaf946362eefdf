// The uniforms of an effect's programs, as nodes read and fill them.
#pragma once

#include "core/Types.h"

#include <span>
#include <string>
#include <vector>

namespace KEXSDK {

/// One uniform with its current value. Tools for descriptors see the numbers of the enumerators.
struct ShaderParameter {
    enum ProgramType : u32 { vertex = 0, fragment = 1 };
    enum BaseType : u32 { integer = 2, real = 3, doubleReal = 4, notSet = 99 };

    std::string name;
    u32 programType = fragment;
    u32 pass = 0; ///< 0 for the programs that draw the effect's picture, n for those of its n-th earlier pass
    u32 arraySize = 1;
    u32 baseType = notSet;    ///< samplers and booleans count as integers
    u32 valuesPerElement = 1; ///< of a vector or matrix
    u32 bytesPerElement = 0;  ///< valuesPerElement times 4, or 8 for doubles
    std::vector<u8> data;     ///< arraySize * bytesPerElement bytes, packed

    /// Numbers that `data` has room for.
    u32 capacity() const { return arraySize * valuesPerElement; }

    /// Writes the numbers at the start of `data`, each converted to the uniform's type (reals toward zero,
    /// saturating). Numbers beyond the capacity are left out; what is not covered keeps its value.
    void set(std::span<const i32> values);
    void set(std::span<const float> values);
    void set(std::span<const double> values);
};

using ShaderParameters = std::vector<ShaderParameter>;

} // namespace KEXSDK
