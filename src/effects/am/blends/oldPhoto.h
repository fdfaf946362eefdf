// A blurred photo under the picture of an old print.
#pragma once

#include "effects/am/library/amFrame.h"

namespace KEXSDK::am {

/// Needs kept rows and a texture of the picture's size. Keeps the half-blurred picture in scratch C.
i32 oldPhoto(const Frame& frame);

} // namespace KEXSDK::am
