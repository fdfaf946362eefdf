// What hosts ask of the engine by environment variables.
#pragma once

#include "core/Types.h"
#include "effects/gpu/preferredForm.h"

#include <optional>
#include <string>

namespace KEXSDK::environment {

/// EFFECTENGINE_SEED: a whole number of 64 bits in decimal. No value when it is not set or empty, nor, with a
/// warning in the log, when it is anything else.
std::optional<i64> seed();

/// EFFECTENGINE_PATH: "gpu" (also when it is not set or empty, and, with a warning in the log, for any other
/// word), "cpu", or "auto", which is the GPU's form if hardware draws it. The choice and its reason become a
/// line of the log.
/// @param canDraw   whether there is a GPU
/// @param renderer  its name
EffectForm form(bool canDraw, const std::string& renderer);

} // namespace KEXSDK::environment
