// Views of the pixels of the engine's images.
#pragma once

#include "hosting/Host.h"
#include "pixels/View.h"

namespace host {

/// The image's pixels, which it goes on owning. Rows in memory begin with the bottom one.
pixels::View viewOf(const Image& image);
pixels::ConstView viewOf(CEffectImage* image);
/// The same for an image that is about to be written.
pixels::View viewToChange(CEffectImage* image);

} // namespace host
