// One stored parameter value.
#pragma once

#include "facts/Param.h"

#include <memory>
#include <span>
#include <string_view>

namespace KEXSDK {

/// A tagged value of 16 bytes that owns its array or string.
struct ParamVariant {
    u16 type = 0;
    u32 count = 0; ///< elements of an array, UTF-16 code units of a path without its terminator, else 0
    union {
        i32 integer;
        float real;
        i32* integers;
        float* reals;
        char16_t* text; ///< NUL-terminated UTF-16
    } value{};

    ParamVariant() = default;
    ParamVariant(const ParamVariant&) = delete;
    ParamVariant& operator=(const ParamVariant&) = delete;
    ~ParamVariant();

    // Makers copy what they are given. They throw std::bad_alloc.
    static std::unique_ptr<ParamVariant> ofInteger(i32 value);
    static std::unique_ptr<ParamVariant> ofReal(float value);
    static std::unique_ptr<ParamVariant> ofIntegers(std::span<const i32> values);
    static std::unique_ptr<ParamVariant> ofReals(std::span<const float> values);
    static std::unique_ptr<ParamVariant> ofPath(std::u16string_view path);

    bool holds(ParamType tag) const { return type == u16(tag); }
    std::span<const i32> integers() const { return {value.integers, count}; }
    std::span<const float> reals() const { return {value.reals, count}; }
    std::u16string_view path() const { return {value.text, count}; }

    /// True when both values are equal. Call it only for two values of one type. NaN equals nothing.
    bool sameValue(const ParamVariant& other) const;
};
static_assert(sizeof(ParamVariant) == 16);

} // namespace KEXSDK
