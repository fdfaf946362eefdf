// Large blocks of memory that an effect keeps from frame to frame.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

namespace pixels {

/// For tests: buffers of more bytes than this cannot be allocated. At the start there is no limit.
void limitBuffers(std::size_t mostBytes) noexcept;

namespace detail {

struct Freed {
    void operator()(void* block) const noexcept;
};
using Block = std::unique_ptr<void, Freed>;

/// `bytes` bytes of zeros at an address that is a multiple of 64; null without memory.
Block zeroedBlock(std::size_t bytes) noexcept;

} // namespace detail

/// Elements that are zeros at first. Allocation throws nothing: its answer says whether there was memory. The
/// system provides the memory page by page as it is written, so a buffer that is never used costs nothing.
template <class T> class Buffer {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    /// Frees what was held and makes room for `count` zeros. False, holding nothing, without memory.
    bool allocate(std::size_t count) noexcept
    {
        block_.reset();
        block_ = detail::zeroedBlock(count * sizeof(T));
        size_ = block_ ? count : 0;
        return block_ != nullptr;
    }
    /// Keeps the buffer and its contents when it has exactly this many elements, otherwise allocates it anew.
    /// False, holding nothing, without memory.
    bool ensure(std::size_t count) noexcept { return (block_ && size_ == count) || allocate(count); }
    void release() noexcept
    {
        block_.reset();
        size_ = 0;
    }

    explicit operator bool() const { return block_ != nullptr; }
    std::size_t size() const { return size_; }
    T* data() const { return static_cast<T*>(block_.get()); }

private:
    detail::Block block_;
    std::size_t size_ = 0;
};

} // namespace pixels
