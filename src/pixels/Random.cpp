// Per-thread random state.
#include "pixels/Random.h"

namespace pixels {

RandomGenerator& threadRandom()
{
    thread_local RandomGenerator generator;
    return generator;
}

} // namespace pixels
