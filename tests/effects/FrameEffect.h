// One effect and one frame: the fixture of tests that look at an effect frame by frame.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/Scratch.h"
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"

#include <limits>
#include <optional>

namespace test {

/// While it lives, effects get no memory for large buffers. The thread's scratch memory for rows is there
/// already.
class MemoryShortage {
public:
    MemoryShortage()
    {
        const pixels::Scratch<u8> rows(128 * 1024);
        pixels::limitBuffers(0);
    }
    ~MemoryShortage() { pixels::limitBuffers(std::numeric_limits<std::size_t>::max()); }
};

/// A pixel whose value tells its place.
inline pixels::Bgra place(int x, int y) { return {u8(x), u8(y), u8((x >> 8) << 4 | y >> 8), 255}; }

class FrameEffect : public EngineWithoutGpu {
protected:
    /// A new node and a transparent black frame as its input.
    host::Filter& open(const char* guid, int width, int height)
    {
        frame_.emplace(width, height);
        filter_.emplace(guid, width, height);
        SetInputImage(filter_->handle(), frame_->image(), 0);
        return *filter_;
    }
    /// Opens an effect on a frame whose pixels tell their places.
    host::Filter& openPlaces(const char* guid, int width, int height)
    {
        open(guid, width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                frame().at(x, y) = place(x, y);
        }
        return *filter_;
    }

    pixels::View frame() { return frame_->view(); }
    void fill(pixels::Bgra value) { frame_->fill(value); }
    bool guardsIntact() const { return frame_->guardsIntact(); }

    /// The node's output for the frame as it is now; valid until the next call.
    pixels::ConstView show() { return {host::bytesOf(filter_->run()).data(), frame().extent()}; }
    /// The first pixel of the output for a frame of one value.
    pixels::Bgra show(pixels::Bgra value)
    {
        fill(value);
        return show().at(0, 0);
    }
    bool showsItsInput()
    {
        const auto out = host::bytesOf(filter_->run());
        return std::ranges::equal(out, frame_->bytes());
    }

private:
    std::optional<GuardedFrame> frame_;
    std::optional<host::Filter> filter_;
};

} // namespace test
