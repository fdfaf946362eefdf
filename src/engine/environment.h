// What hosts ask of the engine by environment variables.
#pragma once

#include "core/Types.h"
#include "effects/gpu/preferredForm.h"

#include <functional>
#include <optional>

namespace KEXSDK::environment {

/// EFFECTENGINE_SEED: a whole number of 64 bits in decimal. No value when it is not set or empty, nor, with a
/// warning in the log, when it is anything else.
std::optional<i64> seed();

/// EFFECTENGINE_GRAPHICS: true for "when-needed"; false for "at-start", also when it is not set or empty,
/// and, with a warning in the log, for any other word.
bool graphicsWhenNeeded();

/// EFFECTENGINE_PATH: "gpu" (also when it is not set or empty, and, with a warning in the log, for any other
/// word), "cpu", or "auto", which is the GPU's form if hardware draws it. The choice and its reason become a
/// line of the log.
/// @return what chooses by the word that the variable has now; asks the graphics system, unless that is "cpu"
std::function<EffectForm()> chooseForm();

} // namespace KEXSDK::environment
