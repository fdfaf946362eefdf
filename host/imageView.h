// Views of the pixels of the engine's images.
#pragma once

#include "host/Host.h"
#include "pixels/View.h"

namespace host {

/// The image's pixels, which it goes on owning. Rows in memory begin with the bottom one.
pixels::View viewOf(const Image& image);
pixels::ConstView viewOf(CEffectImage* image);

} // namespace host
