// Echo: the mean of the frame and of what was shown 8, 16 and 24 frames ago.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Buffer.h"
#include "pixels/rows.h"

#include <array>

namespace KEXSDK {
namespace {

constexpr int kPlanes = 32;
constexpr int kEchoDistance = 8;

// Each colour byte divided by four, so that four of them never carry into the next byte.
constexpr u32 quartered(u32 word) { return word >> 2 & 0x3F3F3F; }

// Draws a run of pixels and keeps it in `newest`, which must not be one of the echoes.
void addEchoes(const u8* src, u8* dst, u32* newest, std::array<const u32*, 3> echoes, std::size_t count)
{
    const auto [a, b, c] = echoes;
#pragma GCC ivdep
    for (std::size_t i = 0; i < count; ++i) {
        u32 word;
        std::memcpy(&word, src + 4 * i, sizeof word);
        const u32 sum = quartered(word) + a[i] + b[i] + c[i];
        const u32 shown = sum | (word & 0xFF000000);
        std::memcpy(dst + 4 * i, &shown, sizeof shown);
        newest[i] = quartered(shown);
    }
}

class CBaltan final : public CPureCEffect {
public:
    using CPureCEffect::CPureCEffect;

    void processFrame(const u8* src, u8* dst) override
    {
        if (!planes_ && !planes_.allocate(std::size_t(kPlanes) * width() * height())) {
            pixels::rows::copy(input(src), output(dst));
            return;
        }
        pixels::rows::anyOrderRuns(extent(), [&](int top, int end) {
            const std::size_t first = std::size_t(top) * width();
            const std::size_t count = std::size_t(end - top) * width();
            const auto echo = [&](int framesAgo) { return plane(newest_ + kPlanes - framesAgo) + first; };
            pixels::widest([=, newest = plane(newest_) + first,
                               echoes = std::array<const u32*, 3>{
                                   echo(kEchoDistance), echo(2 * kEchoDistance), echo(3 * kEchoDistance)}] {
                addEchoes(src + 4 * first, dst + 4 * first, newest, echoes, count);
            });
        });
        newest_ = (newest_ + 1) % kPlanes;
    }

private:
    u32* plane(int index) const { return planes_.data() + std::size_t(index % kPlanes) * width() * height(); }

    pixels::Buffer<u32> planes_; ///< what was shown, quartered, without alpha
    int newest_ = 0;
};

const Registration<CBaltan> registered{{
    .guid = "E27040D3-6FEE-4708-B95B-384055CE7FDA",
    .name = "echo",
    .title = "Echo",
    .family = "temporal",
    .summary = "Moving things leave fading echoes of what was shown 8, 16 and 24 frames ago.",
    .history = {History::kFromStart},
}};

} // namespace
} // namespace KEXSDK
