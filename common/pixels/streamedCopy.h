// Copies that leave the caches to what is still needed.
#pragma once

#include "pixels/View.h"

namespace pixels {

/// Copies src to dst, which must not overlap it, without reading dst's memory into the caches first: for rows
/// that nobody is about to read.
void copyStreamed(ConstView src, View dst);

} // namespace pixels
