// A source that keeps its pixels while the destination is written.
#pragma once

#include "pixels/Scratch.h"
#include "pixels/rows.h"

#include <new>
#include <optional>

namespace pixels {

/// Hosts that run a chain in one image make an effect's source its destination, where pixels that move would
/// be overwritten before they are read. Then, and only then, this holds a copy of the source. A variable of a
/// function, as Scratch is, whose memory it uses: steady frames allocate nothing.
class StableInput {
public:
    /// The views are the same memory or do not overlap.
    StableInput(ConstView src, View dst) : view_(src)
    {
        if (src.bytes() != dst.bytes())
            return;
        view_ = {};
        try {
            copy_.emplace(std::size_t(src.width()) * std::size_t(src.height()));
        } catch (const std::bad_alloc&) {
            return;
        }
        const View copy(reinterpret_cast<u8*>(copy_->data()), src.extent());
        rows::copy(src, copy);
        view_ = copy;
    }

    /// src or its copy. Without bytes when there was no memory for a copy: dst holds the source then, which
    /// is the picture to leave.
    ConstView view() const { return view_; }

private:
    std::optional<Scratch<Bgra>> copy_;
    ConstView view_;
};

} // namespace pixels
