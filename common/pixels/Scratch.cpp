// Each thread's scratch memory: blocks that grow, filled and emptied like a stack.
#include "pixels/Scratch.h"

#include "pixels/Buffer.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace pixels::detail {

namespace {

// Enough for the rows that most kernels hold of a picture of the largest width.
constexpr std::size_t kFirstBlock = std::size_t(256) << 10;
constexpr std::size_t kAlignment = 64;

constexpr std::size_t rounded(std::size_t bytes)
{
    return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

// The block that is being filled. It needs neither construction nor destruction, so to reach it costs next to
// nothing.
struct Filling {
    std::byte* begin;
    std::byte* top;
    std::byte* end;
    bool first; ///< no block was filled before it
};
constinit thread_local Filling filling{nullptr, nullptr, nullptr, true};

// All blocks of a thread, in this order: full ones, the one that is being filled, empty ones.
class Arena {
public:
    /// Begins a block with room for `bytes`. The blocks behind the current one are empty: one that is too
    /// small is replaced.
    void makeRoom(std::size_t bytes)
    {
        const bool unused = filling.top == filling.begin;
        const std::size_t next = unused ? current_ : current_ + 1;
        if (next == blocks_.size())
            throw std::bad_alloc();
        Held& block = blocks_[next];
        if (block.memory.size() < bytes && !block.memory.allocate(std::max(bytes, kFirstBlock << next))) {
            if (unused)
                fill(next, 0);
            throw std::bad_alloc();
        }
        if (!unused)
            blocks_[current_].used = std::size_t(filling.top - filling.begin);
        fill(next, 0);
    }
    /// Goes back to the block before the one that has become empty.
    void leave() noexcept { fill(current_ - 1, blocks_[current_ - 1].used); }

private:
    struct Held {
        Buffer<std::byte> memory;
        std::size_t used = 0; ///< bytes in use, kept here while a later block is being filled
    };

    void fill(std::size_t block, std::size_t used) noexcept
    {
        std::byte* const begin = blocks_[block].memory.data();
        filling = {begin, begin + used, begin + blocks_[block].memory.size(), block == 0};
        current_ = block;
    }

    std::array<Held, 24> blocks_; ///< block i, once allocated, has at least kFirstBlock << i bytes
    std::size_t current_ = 0;
};

thread_local Arena arena;

} // namespace

void* takeScratch(std::size_t bytes)
{
    bytes = rounded(bytes);
    if (std::size_t(filling.end - filling.top) < bytes)
        arena.makeRoom(bytes);
    return std::exchange(filling.top, filling.top + bytes);
}

void giveScratch(std::size_t bytes) noexcept
{
    filling.top -= rounded(bytes);
    if (filling.top == filling.begin && !filling.first)
        arena.leave();
}

} // namespace pixels::detail
