// Values that make every effect visible, for benches, sheets and tests.
#pragma once

#include "host/Host.h"
#include "model/Param.h"

namespace host {

/// Stores a value for each parameter that the effect reads but does not declare; positions, whose examples
/// are made for 640 x 480, are scaled to the given size.
void setExampleValues(
    Filter& filter, std::span<const KEXSDK::ParamInfo* const> params, unsigned width, unsigned height);

} // namespace host
