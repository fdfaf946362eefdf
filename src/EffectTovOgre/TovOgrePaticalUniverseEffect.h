// The effect class that the render thread makes.
#pragma once

#include "EffectTovOgre/TovOgreEffectBase.h"

class TovOgrePaticalUniverseEffect final : public TovOgreEffectBase { };
