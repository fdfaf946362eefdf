// What the exported functions share: the engine pointer and the size limit.
#pragma once

#include "EffectEngine/EffectEngine.h"
#include "pixels/View.h"

namespace KEXSDK {
class CEffectEngine;
}

/// Null while the engine does not exist.
KEXSDK::CEffectEngine* engineInstance();

static_assert(
    EFFECTENGINE_LARGEST_SIDE == pixels::kLargestSide, "what hosts are told is what pictures may be");

/// True for 1..kLargestSide; a negative int converted to u32 is out of range.
constexpr bool sizeInRange(u32 value) { return value - 1 < u32(pixels::kLargestSide); }
