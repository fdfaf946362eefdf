// Opaque pictures, and making pictures opaque.
#pragma once

#include "EffectEngine/EffectEngine.h"

#include <span>

namespace host {

/// Whether no pixel of any of the pictures lets anything through.
bool areOpaque(std::span<CEffectImage* const> pictures);

void makeOpaque(CEffectImage* picture);

} // namespace host
