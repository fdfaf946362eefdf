// The facts of effects in the form that the C interface hands out.
#pragma once

#include "EffectEngine/EffectEngineHost.h"
#include "facts/EffectInfo.h"

namespace host {

/// The effect of the list in use; valid for the life of the process.
const EffectHostEffect* factsOf(const KEXSDK::EffectInfo& effect);

} // namespace host
