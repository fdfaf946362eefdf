// Stores numbers in a uniform's data, converted to its type.
#include "graphics/ShaderParameter.h"

#include "pixels/numbers.h"

#include <algorithm>
#include <cstring>

namespace KEXSDK {

namespace {

template <class To, class From> To convertedTo(From value)
{
    if constexpr (std::is_same_v<To, i32> && std::is_floating_point_v<From>)
        return pixels::truncated(value);
    else
        return To(value);
}

template <class To, class From> void store(std::span<const From> values, std::vector<u8>& data)
{
    const std::size_t count = std::min(values.size(), data.size() / sizeof(To));
    for (std::size_t i = 0; i < count; ++i) {
        const To value = convertedTo<To>(values[i]);
        std::memcpy(data.data() + i * sizeof(To), &value, sizeof value);
    }
}

template <class From> void storeAs(u32 baseType, std::span<const From> values, std::vector<u8>& data)
{
    if (baseType == ShaderParameter::real)
        store<float>(values, data);
    else if (baseType == ShaderParameter::doubleReal)
        store<double>(values, data);
    else
        store<i32>(values, data);
}

} // namespace

void ShaderParameter::set(std::span<const i32> values) { storeAs(baseType, values, data); }

void ShaderParameter::set(std::span<const float> values) { storeAs(baseType, values, data); }

void ShaderParameter::set(std::span<const double> values) { storeAs(baseType, values, data); }

} // namespace KEXSDK
