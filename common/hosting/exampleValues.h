// Example values of parameters, with which every effect shows something, for benches, sheets and tests.
#pragma once

#include "hosting/parameterValue.h"

#include <span>

namespace host {

/// A value that shows the effect: positions, whose examples are made for 640 x 480, are scaled to the given
/// size; files become a lookup table that bends every channel.
ParameterValue exampleValue(const KEXSDK::ParamInfo& param, unsigned width, unsigned height);

/// Stores an example value for each parameter that the effect reads but does not declare.
void setExampleValues(
    Filter& filter, std::span<const KEXSDK::ParamInfo* const> params, unsigned width, unsigned height);

} // namespace host
