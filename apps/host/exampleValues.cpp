// From parameter metadata to stored values.
#include "host/exampleValues.h"

#include <string_view>

namespace host {

void setExampleValues(
    Filter& filter, std::span<const KEXSDK::ParamInfo* const> params, unsigned width, unsigned height)
{
    for (const KEXSDK::ParamInfo* param : params) {
        if (param->declared)
            continue;
        auto value = param->value;
        if (std::string_view(param->unit) == "pixels" && param->elements == 2)
            value = {value[0] * width / 640, value[1] * height / 480};
        const auto end = value.begin() + param->elements;
        switch (param->type) {
        case KEXSDK::ParamType::integer:
            filter.set(param->name, int(value[0]));
            break;
        case KEXSDK::ParamType::real:
            filter.set(param->name, float(value[0]));
            break;
        case KEXSDK::ParamType::integerArray:
            filter.set(param->name, std::vector<int>(value.begin(), end));
            break;
        case KEXSDK::ParamType::realArray:
            filter.set(param->name, std::vector<float>(value.begin(), end));
            break;
        case KEXSDK::ParamType::filePath:
            break;
        }
    }
}

} // namespace host
