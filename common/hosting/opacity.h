// Opaque pictures, and making pictures opaque.
#pragma once

#include "EffectEngine/EffectEngine.h"

#include <span>

namespace host {

/// Whether every pixel of all pictures is opaque.
bool areOpaque(std::span<CEffectImage* const> pictures);

void makeOpaque(CEffectImage* picture);

} // namespace host
