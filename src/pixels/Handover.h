// Tells the thread sanitizer that work passed from one thread to another.
#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace pixels {

/// The task library's own synchronisation is invisible to the thread sanitizer, because its binary is not
/// instrumented. What happens before give() is ordered before what follows take(). Without the sanitizer
/// nothing is left of this.
class Handover {
public:
    void give()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_release(this);
#endif
    }
    void take()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_acquire(this);
#endif
    }
};

} // namespace pixels
