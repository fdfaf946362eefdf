// Storage and comparison of parameter values.
#include "model/ParamVariant.h"

#include <algorithm>

namespace KEXSDK {

namespace {

template <class T> T* copied(const T* values, std::size_t count, std::size_t room)
{
    auto copy = std::make_unique<T[]>(room);
    std::copy_n(values, count, copy.get());
    return copy.release();
}

std::unique_ptr<ParamVariant> tagged(ParamType type, std::size_t count = 0)
{
    auto variant = std::make_unique<ParamVariant>();
    variant->type = u16(type);
    variant->count = u32(count);
    return variant;
}

} // namespace

ParamVariant::~ParamVariant()
{
    switch (ParamType(type)) {
    case ParamType::integerArray:
        delete[] value.integers;
        break;
    case ParamType::realArray:
        delete[] value.reals;
        break;
    case ParamType::filePath:
        delete[] value.text;
        break;
    default:
        break;
    }
}

std::unique_ptr<ParamVariant> ParamVariant::ofInteger(i32 number)
{
    auto variant = tagged(ParamType::integer);
    variant->value.integer = number;
    return variant;
}

std::unique_ptr<ParamVariant> ParamVariant::ofReal(float number)
{
    auto variant = tagged(ParamType::real);
    variant->value.real = number;
    return variant;
}

std::unique_ptr<ParamVariant> ParamVariant::ofIntegers(std::span<const i32> values)
{
    auto variant = tagged(ParamType::integerArray, values.size());
    variant->value.integers = copied(values.data(), values.size(), values.size());
    return variant;
}

std::unique_ptr<ParamVariant> ParamVariant::ofReals(std::span<const float> values)
{
    auto variant = tagged(ParamType::realArray, values.size());
    variant->value.reals = copied(values.data(), values.size(), values.size());
    return variant;
}

std::unique_ptr<ParamVariant> ParamVariant::ofPath(std::u16string_view path)
{
    auto variant = tagged(ParamType::filePath, path.size());
    variant->value.text = copied(path.data(), path.size(), path.size() + 1);
    return variant;
}

bool ParamVariant::sameValue(const ParamVariant& other) const
{
    switch (ParamType(type)) {
    case ParamType::integer:
        return value.integer == other.value.integer;
    case ParamType::real:
        return value.real == other.value.real;
    case ParamType::integerArray:
        return std::ranges::equal(integers(), other.integers());
    case ParamType::realArray:
        return std::ranges::equal(reals(), other.reals());
    case ParamType::filePath:
        return path() == other.path();
    default:
        return true;
    }
}

} // namespace KEXSDK
