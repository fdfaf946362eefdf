// How the threads of a run share the processor's cores.
#pragma once

#include "pixels/View.h"

namespace tool::media {

// Decoding, effects and encoding of a run are at work at the same time, and each could use all cores. Who
// gets how many threads:
// - Effects and conversions are tasks on one thread for each core, however many loops are at work.
// - A clip's encoder takes what it takes by itself, since its bytes may depend on that. Most time goes there.
// - Pictures have one encoder for each core.
// - Decoders have one thread for two cores: they need a fraction of an encoder's time, and run ahead of it by
// a few
//   frames only.
// Threads that wait cost nothing, so the stage that holds up the others gets the cores.

/// The cores that this process may use; at least 1.
unsigned coreCount();

/// Threads of a decoder: 1 on one core, at least 2 on more, where errors in damaged clips are then hidden in
/// one way alike, and at most 8.
int decoderThreads(unsigned cores);

/// Encoders of pictures of this size that are at work at a time: they keep to about 1 GiB of memory together.
unsigned pictureEncoders(unsigned cores, pixels::Extent size);

} // namespace tool::media
