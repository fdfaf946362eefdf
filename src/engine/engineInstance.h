// What the exported functions share: the engine pointer and the size limit.
#pragma once

#include "core/Types.h"

class CEffectEngine;

/// Null while the engine does not exist.
CEffectEngine* engineInstance();

/// 1..4096; negative numbers passed as int fail too.
constexpr bool sizeInRange(u32 value) { return value - 1 <= 4095; }
