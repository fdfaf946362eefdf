// Values of parameters as hosts hold them.
#pragma once

#include "facts/Param.h"
#include "hosting/Host.h"

#include <string>
#include <variant>
#include <vector>

namespace host {

/// What a parameter is set to: its numbers (one, or an array's elements), or a file's path in UTF-8.
using ParameterValue = std::variant<std::vector<double>, std::string>;

/// The value as people type it: numbers with commas between, or the path.
std::string valueText(const ParameterValue& value);

/// Stores a value under the parameter's name, as its type. @return whether the effect took it
bool store(Filter& filter, const KEXSDK::ParamInfo& info, const ParameterValue& value);

} // namespace host
