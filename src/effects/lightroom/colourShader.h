// The colour steps of the photographic adjustment on the GPU.
#pragma once

namespace lightroom {

/// Fragment program: the picture in "mSample0", one uniform per value, each step left out while its value is
/// neutral. Alpha is the picture's.
extern const char* const kColourShader;

} // namespace lightroom
