// Memory for the length of a block of code, off the stack: hosts call from threads that have little of it.
#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

namespace pixels {

namespace detail {

/// Room for `bytes` bytes at a multiple of 64, from memory that belongs to the calling thread. Throws
/// std::bad_alloc, having taken nothing.
void* takeScratch(std::size_t bytes);
/// Gives back what the thread took last.
void giveScratch(std::size_t bytes) noexcept;

} // namespace detail

/// `count` values of undefined content at a multiple of 64. A thread keeps the memory that it once needed for
/// its scratch, so nothing is allocated frame by frame. Only for variables of a function: a thread gives back
/// what it took in the opposite order.
template <class T> class Scratch {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T> && alignof(T) <= 64);

public:
    /// Throws std::bad_alloc.
    explicit Scratch(std::size_t count)
        : values_(static_cast<T*>(detail::takeScratch(count * sizeof(T)))),
          count_(count)
    {
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() { detail::giveScratch(count_ * sizeof(T)); }

    T* data() const { return values_; }
    std::size_t size() const { return count_; }
    T* begin() const { return values_; }
    T* end() const { return values_ + count_; }
    T& operator[](std::size_t i) const { return values_[i]; }

private:
    T* values_;
    std::size_t count_;
};

} // namespace pixels
