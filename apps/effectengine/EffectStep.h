// One effect of a chain with its parameters, as the command line names them.
#pragma once

#include "engine/effectList.h"
#include "host/Host.h"

#include <string>
#include <variant>
#include <vector>

/// "name=value" against what the effect declares.
struct ParameterValue {
    std::string name;
    std::variant<int, float, std::vector<int>, std::vector<float>, std::wstring> value;
};

struct EffectStep {
    KEXSDK::EffectInfo effect;
    std::vector<ParameterValue> parameters;
};

/// The effect with this name or GUID. Throws ToolError with the nearest name.
EffectStep stepFor(const std::string& nameOrGuid);

/// Adds "name=value" to the step. Throws ToolError: no such parameter, or not a value of its type. A number
/// outside the advised range is a warning on stderr.
void addParameter(EffectStep& step, const std::string& assignment);

/// A filter with the step's parameters stored. Throws ToolError.
host::Filter makeFilter(const EffectStep& step, unsigned width, unsigned height);
