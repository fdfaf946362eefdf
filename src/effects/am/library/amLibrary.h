// The numeric effect library: blocks, and their application to pictures.
#pragma once

#include "effects/am/library/amTypes.h"
#include "pixels/View.h"

namespace KEXSDK {

/// Makes a block with the defaults of an id of 1..97, 1025..1043 or 2049..2206, whether or not an effect
/// stands behind it. The first call of the process seeds the calling thread's random generator with the
/// current second and fills amRandomBytes; others wait for it.
/// @return kAmOk, kAmOutOfRange, or kAmUnknown for a null pointer or without memory
i32 AmCreateParams(AmEffectParams** out, i32 id);

/// Frees the block and its scratch buffers.
/// @return kAmOk, kAmUnknown for null, or kAmBadParams
i32 AmReleaseParams(AmEffectParams* block);

/// Changes the picture in place as the block's id and fields say. Animated effects advance by one step.
/// @param image   rows may be further apart than width x 4 bytes, but not closer
/// @param second  the picture that ids 2049 and above combine with, of the same size; null for none
/// @return kAmOk or a negative code
i32 AmApplyEffect(AmEffectParams* block, const AmImageDesc* image, const AmImageDesc* second);

/// Applies an effect to a picture that still lies elsewhere, as if source had been copied into image first;
/// most effects do without that pass over memory. When the effect fails, image is the plain copy; a block or
/// an image that is refused leaves everything as it is.
/// @param source  a picture of image's size that does not overlap image's pixels, or exactly those pixels
i32 AmApplyEffectFrom(
    pixels::ConstView source, AmEffectParams* block, const AmImageDesc* image, const AmImageDesc* second);

/// Prepares a block for AmApplyToRows() with rows of these pictures.
/// @return false, changing nothing, when the effect needs the whole picture or AmApplyEffectFrom() would fail
bool AmBeginRows(AmEffectParams& block, const AmImageDesc& image, const AmImageDesc* second);

/// Does for a run of rows what AmApplyEffectFrom() does for all. Several threads may do so at once.
/// @param second  the same rows of the second picture, or no bytes
void AmApplyToRows(
    pixels::ConstView source, AmEffectParams& block, pixels::View image, pixels::ConstView second);

} // namespace KEXSDK
