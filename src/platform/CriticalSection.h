// A mutex that refuses, rather than deadlocks, when its owner asks for it again; and its scoped lock.
#pragma once

#include "core/Types.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

namespace platform {

class CriticalSection {
public:
    /// Waits until the section is free. False, at once, when the calling thread is inside already.
    bool enter()
    {
        // Only the calling thread can have stored its own id, so this read cannot be outdated by another.
        if (owner_.load(std::memory_order_relaxed) == std::this_thread::get_id())
            return false;
        mutex_.lock();
        owner_.store(std::this_thread::get_id(), std::memory_order_relaxed);
        return true;
    }
    /// To be called by the thread that entered.
    void leave()
    {
        owner_.store(std::thread::id(), std::memory_order_relaxed);
        mutex_.unlock();
    }

private:
    std::mutex mutex_;
    std::atomic<std::thread::id> owner_;
};

/// Holds a critical section for a scope, or does not hold it when the calling thread was inside already.
class MyCSingleLock {
public:
    explicit MyCSingleLock(CriticalSection& section) : section_(&section), locked_(section.enter()) { }
    MyCSingleLock(MyCSingleLock&& other) noexcept
        : section_(other.section_),
          locked_(std::exchange(other.locked_, 0))
    {
    }
    MyCSingleLock& operator=(MyCSingleLock&&) = delete;
    virtual ~MyCSingleLock()
    {
        if (locked_)
            section_->leave();
    }

    explicit operator bool() const { return locked_ != 0; }

private:
    CriticalSection* section_;
    u32 locked_;
};

} // namespace platform
