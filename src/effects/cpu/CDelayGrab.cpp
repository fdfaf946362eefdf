// Blocks of the picture show the past, each from its own number of frames ago.
#include "core/Clock.h"
#include "core/Random.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Buffer.h"
#include "pixels/sample.h"

#include <array>
#include <cmath>
#include <optional>

namespace KEXSDK {
namespace {

constexpr auto kMode = Param<int>{"Mode", 1, {1, 4}, "how delays are spread"}.readingAs(1).choosing(
    "1 random, 2 by column, 3 by row, 4 by distance from the middle");
constexpr auto kBlockSize =
    Param<int>{"BlockSize", 1, {1, 64}, "side of the blocks"}.readingAs(1).in("pixels");

constexpr int kFrames = 8;
constexpr int kMostDelay = kFrames - 1;

// Delay of a block in frames; it lies `fromTop` rows of blocks from the top and `fromRight` columns from the
// right.
int delayOf(int mode, int fromTop, int fromRight, int rows, int columns)
{
    const int dy = fromTop - rows / 2;
    const int dx = fromRight - columns / 2;
    switch (mode) {
    case 1: {
        const double r = pixels::threadRandom().next() / 32767.0;
        return int(r * r * 16);
    }
    case 2:
        return std::abs(dx) / 2;
    case 3:
        return std::abs(dy) / 2;
    case 4:
        return int(std::sqrt(double(dy * dy + dx * dx))) >> 1;
    default:
        return 0;
    }
}

using Offsets = std::array<int, kFrames>;

// Draws a row of single pixels from the ring, each from its own frame.
void showPixels(const u8* ring, Offsets offset, const u8* delays, pixels::Bgra* to, int count)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x) {
        const u32 word = pixels::wordAt(ring, offset[delays[x]] + x);
        std::memcpy(to + x, &word, sizeof word);
    }
}

// Draws a row of blocks of `size` pixels from the ring, each from its own frame.
void showBlocks(
    const u8* ring, const Offsets& offset, const u8* delays, pixels::Bgra* to, int count, int size)
{
    for (int block = 0; block < count; ++block) {
        const int x = block * size;
        std::memcpy(to + x, ring + (std::ptrdiff_t(offset[delays[block]]) + x) * 4, std::size_t(size) * 4);
    }
}

class CDelayGrab final : public CPureCEffect {
public:
    CDelayGrab(u32 w, u32 h) : CPureCEffect(w, h) { declare(kMode, kBlockSize); }

    void processFrame(const u8* src, u8* dst) override
    {
        const int mode = get(kMode);
        const int blockSize = std::max(1, get(kBlockSize));
        const bool restart = getParamFloat(kTotalTime.name, 0.0f) == 0 || paramsChanged;
        if (restart) {
            received_ = 0;
            newest_ = 0;
        }
        if (restart || mode != mode_ || blockSize != blockSize_ || !delays_)
            spreadDelays(mode, blockSize);
        if (!ready()) {
            pixels::rows::copy(input(src), output(dst));
            return;
        }
        newest_ = (newest_ + kFrames - 1) % kFrames;
        received_ = std::min(received_ + 1, kFrames);
        showDelayed(src, dst);
    }

private:
    bool ready()
    {
        const std::size_t pixelCount = std::size_t(width()) * height();
        return delays_ && (ring_ || ring_.allocate(kFrames * pixelCount));
    }

    void spreadDelays(int mode, int blockSize)
    {
        mode_ = mode;
        blockSize_ = blockSize;
        const int columns = int(width()) / blockSize;
        const int rows = int(height()) / blockSize;
        pixels::threadRandom().seed(u32(core::now()));
        if (!delays_.ensure(std::size_t(width()) * height()))
            return;
        u8* delay = delays_.data();
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column)
                *delay++ =
                    u8(std::min(kMostDelay, delayOf(mode, rows - row, columns - column, rows, columns)));
        }
    }

    // Where each frame lies from the start of the ring, in pixels, by delay. Until the ring has been filled
    // once, delays reach back to the first frame only.
    Offsets offsets() const
    {
        Offsets offset;
        for (int delay = 0; delay < kFrames; ++delay) {
            const int frame = (newest_ + std::min(delay, received_ - 1)) % kFrames;
            offset[std::size_t(delay)] = frame * int(width() * height());
        }
        return offset;
    }

    void showDelayed(const u8* src, u8* dst)
    {
        const auto offset = offsets();
        pixels::Bgra* const newest = ring_.data() + offset[0];
        const int w = int(width());
        const int columns = w / blockSize_;
        const int covered = int(height()) / blockSize_ * blockSize_;
        pixels::rows::anyOrderRuns(extent(), [&](int top, int end) {
            for (int y = top; y < end; ++y) {
                const pixels::Bgra* const from = input(src).row(y).data();
                pixels::Bgra* const to = output(dst).row(y).data();
                std::memcpy(newest + std::ptrdiff_t(y) * w, from, std::size_t(w) * 4);
                const int shown = y < covered ? columns : 0;
                const u8* const delays = delays_.data() + std::ptrdiff_t(y / blockSize_) * columns;
                const u8* const ring = reinterpret_cast<const u8*>(ring_.data() + std::ptrdiff_t(y) * w);
                if (blockSize_ == 1)
                    pixels::widest([=] { showPixels(ring, offset, delays, to, shown); });
                else
                    showBlocks(ring, offset, delays, to, shown, blockSize_);
                if (to != from)
                    std::copy(from + shown * blockSize_, from + w, to + shown * blockSize_);
            }
        });
    }

    pixels::Buffer<pixels::Bgra> ring_; ///< frame (newest_ + n) % kFrames is n frames old
    pixels::Buffer<u8> delays_;         ///< one per block, row by row
    int newest_ = 0;
    int received_ = 0; ///< frames since the ring was started
    int mode_ = 0;
    int blockSize_ = 0;
};

const Registration<CDelayGrab> registered{{
    .guid = "9F704262-6F1E-4039-B05D-490A59D6B8CF",
    .name = "delay-grab",
    .title = "Delay Grab",
    .family = "temporal",
    .summary = "Parts of the picture lag behind by up to seven frames.",
    .random = true,
    .history = {kMostDelay},
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
