// Pictures that hosts own, and their way to and from the engine's own form: blue, green, red, alpha, straight
// alpha, rows without padding, bottom row first in memory.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <optional>
#include <string>

namespace host {

/// What is wrong with a description, as the end of a sentence for an error message, or nothing when the
/// functions below can use it. The memory itself is not looked at.
std::optional<std::string> faultOf(const EffectHostPicture& picture);

/// The pixels of a picture that lies in memory in the engine's own form already, whichever way its
/// description counts the rows; null for all others. The description must be without fault.
void* nativePixels(const EffectHostPicture& picture);

inline bool isNative(const EffectHostPicture& picture) { return nativePixels(picture) != nullptr; }

/// Reads a picture into width x height x 4 bytes of the engine's own form, which must not overlap it. The
/// description must be without fault. Premultiplied colours are divided by alpha, rounded to nearest (a half
/// upwards) and limited to 255; transparent pixels get colour 0. Colours of a format without alpha stay as
/// they are.
void toNative(const EffectHostPicture& from, unsigned char* bgra);

/// Writes width x height x 4 bytes of the engine's own form as the picture, which must not overlap them. The
/// description must be without fault. Premultiplied colours are rounded to nearest, so that toNative and
/// fromNative give every premultiplied picture back whose colours are at most its alpha.
void fromNative(const unsigned char* bgra, const EffectHostPicture& to);

} // namespace host
