// The records and result codes of the numeric effect library, as its callers see them.
#pragma once

#include "core/Types.h"

#include <cstddef>

namespace KEXSDK {

/// A picture in the caller's memory: 4 bytes a pixel (blue, green, red, alpha), bottom row first.
struct AmImageDesc {
    u32 size = 32;
    i32 width = 0;
    i32 height = 0;
    i32 bitsPerPixel = 32;
    i32 stride = 0; ///< bytes from row to row
    i32 dataSize = 0;
    u8* data = nullptr;
};
static_assert(sizeof(AmImageDesc) == 32 && offsetof(AmImageDesc, data) == 24);

/// What one instance of an effect is told, and what it keeps between frames. Made by AmCreateParams.
struct AmEffectParams {
    u32 size;
    i32 id;
    i32 width; ///< of the picture last applied, 0 before the first
    i32 height;
    i32 percent;
    i32 radius;
    i32 posX;    ///< percent of the width
    i32 posY;    ///< percent of the height
    float pickX; ///< percent of the width
    float pickY; ///< percent of the height
    i32 left;
    i32 top;
    i32 right;
    i32 bottom;
    u8 blue;
    u8 green;
    u8 red;
    u8 alpha;
    i32 work1;
    i32 work2;
    i32 work3;
    i32 work4;
    i32 work5;
    i32 work6;
    i32 work7;
    i32 work8;
    double workF;
    void* scratchA; ///< the scratch buffers only grow; capacities are in bytes
    i32 scratchACapacity;
    void* scratchB;
    i32 scratchBCapacity;
    void* scratchC;
    i32 scratchCCapacity;
    i32 variant;
    u32 dirty; ///< what must be rebuilt, see AmDirty
    i32 usageMask;
    i32 toggle;
    i32 direction;
    float frameRate; ///< frames per second of animated effects
};
static_assert(sizeof(AmEffectParams) == 176);
static_assert(offsetof(AmEffectParams, pickX) == 32 && offsetof(AmEffectParams, blue) == 56);
static_assert(offsetof(AmEffectParams, work1) == 60 && offsetof(AmEffectParams, workF) == 96);
static_assert(offsetof(AmEffectParams, scratchA) == 104 && offsetof(AmEffectParams, scratchB) == 120);
static_assert(offsetof(AmEffectParams, scratchC) == 136 && offsetof(AmEffectParams, variant) == 148);
static_assert(offsetof(AmEffectParams, dirty) == 152 && offsetof(AmEffectParams, frameRate) == 168);

/// Bits of AmEffectParams::dirty. An effect clears those that it acted on.
enum AmDirty : u32 {
    kAmDirtyTable = 1, ///< tables, planes, sets: each effect's own
    kAmDirtyTable2 = 2,
    kAmDirtyMap = 4,
    kAmDirtyMap2 = 8,
    kAmDirtySize = 32, ///< the picture has another size than the last one
    kAmDirtyAll = 0xFFFFFFFF,
};

/// What the library's calls answer.
enum AmResult : i32 {
    kAmOk = 0,
    kAmUnknown = -1, ///< no effect of this id; null or no memory in AmCreateParams, null in AmReleaseParams
    kAmOutOfRange = -2,  ///< the id lies in no family
    kAmNoTemporary = -2, ///< from an effect: its temporary picture could not be allocated
    kAmBadImage = -3,    ///< bad descriptor, or a second picture needed and missing
    kAmMissing = -4,     ///< part of the numbering; no call answers it
    kAmBadParams = -5,   ///< no block, or not 176 bytes
    kAmNoMemory = -6,    ///< a scratch buffer could not be allocated
};

} // namespace KEXSDK
