// Each thread's scratch memory: blocks that grow, filled and emptied like a stack.
#include "pixels/Scratch.h"

#include "pixels/Buffer.h"

#include <algorithm>
#include <new>
#include <vector>

namespace pixels::detail {

namespace {

// Enough for the rows that most kernels hold of a picture of the largest width.
constexpr std::size_t kFirstBlock = std::size_t(256) << 10;
constexpr std::size_t kAlignment = 64;

constexpr std::size_t rounded(std::size_t bytes)
{
    return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

class Arena {
public:
    void* take(std::size_t bytes)
    {
        if (blocks_.empty() || blocks_[current_].used + bytes > blocks_[current_].memory.size())
            makeRoom(bytes);
        Held& block = blocks_[current_];
        void* const place = block.memory.data() + block.used;
        block.used += bytes;
        return place;
    }

    void give(std::size_t bytes) noexcept
    {
        blocks_[current_].used -= bytes;
        while (current_ > 0 && blocks_[current_].used == 0)
            --current_;
    }

private:
    struct Held {
        Buffer<std::byte> memory;
        std::size_t used = 0;
    };

    // The blocks behind the current one are empty: one that is too small is replaced.
    void makeRoom(std::size_t bytes)
    {
        const std::size_t next = blocks_.empty() || blocks_[current_].used == 0 ? current_ : current_ + 1;
        if (next == blocks_.size())
            blocks_.emplace_back();
        Held& block = blocks_[next];
        if (block.memory.size() < bytes && !block.memory.allocate(std::max(bytes, kFirstBlock << next)))
            throw std::bad_alloc();
        current_ = next;
    }

    std::vector<Held> blocks_;
    std::size_t current_ = 0;
};

thread_local Arena arena;

} // namespace

void* takeScratch(std::size_t bytes) { return arena.take(rounded(bytes)); }

void giveScratch(std::size_t bytes) noexcept { arena.give(rounded(bytes)); }

} // namespace pixels::detail
