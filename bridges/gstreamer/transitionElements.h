// Elements with two inputs: one for each transition, and for other effects that take two pictures.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <gst/gst.h>

namespace bridge {

/// The type of an effect's element, made when it is first asked for. The effect takes two pictures.
GType transitionType(const EffectHostEffect& effect);

} // namespace bridge
