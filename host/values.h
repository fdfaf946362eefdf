// Checks of the values that parameters take, and values as people write them.
#pragma once

#include "hosting/parameterValue.h"

#include <string>
#include <string_view>

namespace host {

/// Throws GraphError: wrong type, wrong number of elements, not finite, not whole where it must be.
void checkValue(const KEXSDK::ParamInfo& info, const ParameterValue& value);

/// The nearest number that the parameter's type holds: whole ones are rounded half up.
double storable(const KEXSDK::ParamInfo& info, double number);

/// An array parameter as one for a single element; others as they are.
KEXSDK::ParamInfo elementOf(const KEXSDK::ParamInfo& info);

bool isArray(const KEXSDK::ParamInfo& info);

/// A value as people type it: a number, numbers with commas between, the name of a mode's value, a path.
/// Throws GraphError.
ParameterValue parseValue(const KEXSDK::ParamInfo& info, std::string_view text);

/// Whether a path is a bare name that the effect looks for in the resource pack when there is no such file.
bool mayBeInPack(const KEXSDK::ParamInfo& info, std::string_view path);

/// "a whole number", "3 numbers", "a file": what a parameter takes, for messages.
std::string expectedValue(const KEXSDK::ParamInfo& info);

/// The fewest digits that are this number.
std::string shortNumber(double number);

} // namespace host
