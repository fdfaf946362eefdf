// An event that one thread sets and one thread waits for; each set releases exactly one wait.
#pragma once

#include <condition_variable>
#include <mutex>

namespace platform {

/// Resets itself: a wait consumes the set that released it. Sets without a waiter release one later wait.
class Event {
public:
    void set()
    {
        // Notified under the lock: the woken thread may end, and take this event with it, as soon as it runs.
        const std::lock_guard guard(mutex_);
        signalled_ = true;
        changed_.notify_one();
    }
    void wait()
    {
        std::unique_lock guard(mutex_);
        changed_.wait(guard, [this] { return signalled_; });
        signalled_ = false;
    }
    void reset()
    {
        const std::lock_guard guard(mutex_);
        signalled_ = false;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool signalled_ = false;
};

} // namespace platform
