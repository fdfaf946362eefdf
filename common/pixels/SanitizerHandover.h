// An annotation for the thread sanitizer: work passed from one thread to another.
#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace pixels {

/// Tells the thread sanitizer that what happens before give() is ordered before what follows take(). It
/// cannot see the task library's own synchronisation, because that library's binary is not instrumented.
/// Without the sanitizer both functions are empty.
class SanitizerHandover {
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
