// A source that keeps its pixels while the destination is written.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/rows.h"

namespace pixels {

/// Effects that move pixels cannot work in place. Hosts that run a chain in one image make them: then, and
/// only then, the source is copied into a buffer that lives with this object.
class StableInput {
public:
    /// src, or its copy when dst is the same memory. An empty view when there is no memory for the copy: dst
    /// holds the source then, which is the picture to leave.
    ConstView of(ConstView src, View dst)
    {
        if (src.bytes() != dst.bytes())
            return src;
        const Extent size = src.extent();
        if (!copy_.ensure(std::size_t(size.width) * size.height))
            return {};
        const View copy(reinterpret_cast<u8*>(copy_.data()), size);
        rows::copy(src, copy);
        return copy;
    }

private:
    Buffer<Bgra> copy_;
};

} // namespace pixels
