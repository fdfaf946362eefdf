// JSON as the tools write it: indented, numbers as short as they were typed.
#pragma once

#include <json/json.h>

#include <string>

namespace text {

/// The value as indented text that ends with a line break.
std::string jsonText(const Json::Value& value);

/// The shortest decimal number that is this float, so that 0.1f is written 0.1.
double shortest(float number);

} // namespace text
