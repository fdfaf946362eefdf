// Elements with one input: one for each effect, and one for looks.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <gst/gst.h>

namespace bridge {

/// The type of an effect's element, made when it is first asked for. The effect takes one picture.
GType filterType(const EffectHostEffect& effect);

/// The type of the element that runs graph and preset files.
GType lookType();

} // namespace bridge
