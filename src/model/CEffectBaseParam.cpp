// The parameter store.
#include "model/CEffectBaseParam.h"

#include "core/Log.h"
#include "text/Text.h"

#include <algorithm>
#include <cstring>

namespace KEXSDK {

namespace {

template <class T> bool copyArray(std::span<const T> stored, T* values, int* count)
{
    const std::size_t room = std::size_t(std::max(*count, 0));
    std::copy_n(stored.begin(), std::min(room, stored.size()), values);
    *count = int(stored.size());
    return true;
}

template <class T> std::span<const T> spanOf(const T* values, int count)
{
    return {values, std::size_t(std::max(count, 0))};
}

} // namespace

CEffectBaseParam::~CEffectBaseParam() = default;

u32 CEffectBaseParam::GetParamCount() { return u32(parameters_.size()); }

bool CEffectBaseParam::enumParamName(u32 index, char* name)
{
    if (index >= parameters_.size())
        return false;
    const std::string& found = std::next(parameters_.begin(), index)->first;
    std::memcpy(name, found.c_str(), found.size() + 1);
    return true;
}

bool CEffectBaseParam::setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value)
{
    if (!value)
        return false;
    const auto entry = parameters_.find(std::string_view(name));
    if (entry == parameters_.end()) {
        parameters_.emplace(name, std::move(value));
        paramsChanged = 1;
        return true;
    }
    if (!paramsChanged && !volatileParams_.contains(std::string_view(name))) {
        if (entry->second->type != value->type) {
            logging::info("KEXSDK::CEffectBaseParam::setParamVariant",
                std::string("setParamVariant Variant type is not match, name is ") + name);
            return false;
        }
        if (!entry->second->sameValue(*value))
            paramsChanged = 1;
    }
    entry->second = std::move(value);
    return true;
}

bool CEffectBaseParam::setParamFilePathValue(const char* name, const wchar_t* path)
{
    auto value = ParamVariant::ofPath(text::utf16(path));
    return setParamVariant(name, value);
}

bool CEffectBaseParam::setParamFloatArrayValue(const char* name, const float* values, int count)
{
    auto value = ParamVariant::ofReals(spanOf(values, count));
    return setParamVariant(name, value);
}

bool CEffectBaseParam::setParamIntArrayValue(const char* name, const int* values, int count)
{
    auto value = ParamVariant::ofIntegers(spanOf(values, count));
    return setParamVariant(name, value);
}

bool CEffectBaseParam::setParamFloatValue(const char* name, float number)
{
    auto value = ParamVariant::ofReal(number);
    return setParamVariant(name, value);
}

bool CEffectBaseParam::setParamIntValue(const char* name, int number)
{
    auto value = ParamVariant::ofInteger(number);
    return setParamVariant(name, value);
}

bool CEffectBaseParam::getParamVariant(const char* name, ParamVariant** out)
{
    const auto entry = parameters_.find(std::string_view(name));
    *out = entry == parameters_.end() ? nullptr : entry->second.get();
    return *out != nullptr;
}

bool CEffectBaseParam::getParamIntArrayValue(const char* name, int* values, int* count)
{
    const ParamVariant* const stored = find(name, ParamType::integerArray);
    return stored && copyArray(stored->integers(), values, count);
}

bool CEffectBaseParam::getParamFloatArrayValue(const char* name, float* values, int* count)
{
    const ParamVariant* const stored = find(name, ParamType::realArray);
    return stored && copyArray(stored->reals(), values, count);
}

bool CEffectBaseParam::getParamIntValue(const char* name, int* value, int defaultValue)
{
    const ParamVariant* const stored = find(name, ParamType::integer);
    *value = stored ? stored->value.integer : defaultValue;
    return stored;
}

bool CEffectBaseParam::getParamFloatValue(const char* name, float* value, float defaultValue)
{
    const ParamVariant* const stored = find(name, ParamType::real);
    *value = stored ? stored->value.real : defaultValue;
    return stored;
}

float CEffectBaseParam::getParamFloat(const char* name, float defaultValue)
{
    float value;
    getParamFloatValue(name, &value, defaultValue);
    return value;
}

int CEffectBaseParam::getParamInt(const char* name, int defaultValue)
{
    int value;
    getParamIntValue(name, &value, defaultValue);
    return value;
}

std::span<const float> CEffectBaseParam::get(const ArrayParam<float>& param)
{
    const ParamVariant* const stored = find(param.name, ParamType::realArray);
    return stored ? stored->reals() : std::span<const float>{};
}

std::span<const i32> CEffectBaseParam::get(const ArrayParam<int>& param)
{
    const ParamVariant* const stored = find(param.name, ParamType::integerArray);
    return stored ? stored->integers() : std::span<const i32>{};
}

void CEffectBaseParam::declareVolatile(const char* name) { volatileParams_.emplace(name, 1); }

void CEffectBaseParam::declareOne(const ParamInfo& param)
{
    describe(param);
    if (!param.declared)
        return;
    const auto values = std::span(param.value).first(param.elements);
    switch (param.type) {
    case ParamType::integer:
        setParamIntValue(param.name, i32(values[0]));
        break;
    case ParamType::real:
        setParamFloatValue(param.name, float(values[0]));
        break;
    case ParamType::integerArray:
        setParamIntArrayValue(
            param.name, std::vector<i32>(values.begin(), values.end()).data(), int(values.size()));
        break;
    case ParamType::realArray:
        setParamFloatArrayValue(
            param.name, std::vector<float>(values.begin(), values.end()).data(), int(values.size()));
        break;
    case ParamType::filePath:
        break;
    }
}

const ParamVariant* CEffectBaseParam::find(const char* name, ParamType type) const
{
    const auto entry = parameters_.find(std::string_view(name));
    return entry != parameters_.end() && entry->second->holds(type) ? entry->second.get() : nullptr;
}

} // namespace KEXSDK
