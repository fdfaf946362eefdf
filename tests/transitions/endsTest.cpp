// Promises of every transition: what the two ends show, that odd sizes and times stay inside the buffers and
// that nothing but the inputs shows in the output.
#include "core/Clock.h"
#include "core/Random.h"
#include "effects/transitions/transitionTable.h"
#include "pixels/widest.h"
#include "transitions/TransitionFixture.h"

#include <tbb/global_control.h>

#include <limits>

namespace {

using pixels::Bgra;

class EveryTransition : public test::TransitionFixture {
protected:
    void SetUp() override { core::pinTime(1'700'000'000); }
    void TearDown() override
    {
        core::pinTime(std::nullopt);
        pixels::limitVectors(pixels::VectorLevel::avx512);
    }

    void openNoise(const std::string& name, int width, int height)
    {
        open(name, width, height);
        fromFrame().fillWithNoise(1);
        toFrame().fillWithNoise(2);
    }
    /// The bytes of a frame drawn over `ground`, with the random numbers of a new thread.
    std::vector<u8> bytesAt(float time, float total, Bgra ground = {})
    {
        outFrame().fill(ground);
        pixels::threadRandom().seed(1);
        show(time, total);
        return outFrame().bytes();
    }
};

// Ends that do not show their picture everywhere, and what they show there instead. Coordinates are those of
// a picture of kWidth x kHeight pixels, in which every tile, cell and layer fits.
constexpr int kWidth = 180;
constexpr int kHeight = 112;

constexpr bool everywhere(int, int) { return true; }
constexpr bool firstRowAndColumn(int x, int v) { return x == 0 || v == 0; }
constexpr bool lastRowAndColumn(int x, int v) { return x == kWidth - 1 || v == kHeight - 1; }

constexpr u8 darker(u8 byte) { return u8(byte * 255 >> 8); }

enum class End { start, finish };

struct Exception {
    const char* name;
    End end;
    const char* reason;
    bool (*where)(int x, int v);
    u8 (*shown)(u8 own, u8 other);
};

constexpr u8 other(u8, u8 byte) { return byte; }
constexpr u8 ownDarker(u8 byte, u8) { return darker(byte); }
constexpr u8 otherDarker(u8, u8 byte) { return darker(byte); }
constexpr u8 black(u8, u8) { return 0; }
constexpr u8 brighter(u8 byte, u8) { return u8(std::min(byte + 10, 255)); }

constexpr Exception kExceptions[] = {
    {"col-merge", End::start, "the kept band ends a column before the border",
        [](int x, int) { return x == 0; }, other},
    {"cross-merge", End::start, "the corners have their first pixel",
        [](int x, int v) { return x == 0 && v == 0; }, other},
    {"rect-zoom-in", End::start, "the rectangle is a pixel smaller", firstRowAndColumn, otherDarker},
    {"rect-zoom-in", End::finish, "weight 255 of a shift blend", everywhere, ownDarker},
    {"rect-zoom-out", End::finish, "the rectangle is a pixel smaller", firstRowAndColumn, other},
    {"skew-left-split", End::finish, "weight 255 of a shift blend", everywhere, ownDarker},
    {"skew-right-split", End::finish, "weight 255 of a shift blend", everywhere, ownDarker},
    {"skew-left-merge", End::finish, "weight 255 of a shift blend", everywhere, ownDarker},
    {"skew-right-merge", End::finish, "weight 255 of a shift blend", everywhere, ownDarker},
    {"twirl", End::start, "only positions strictly inside are drawn", firstRowAndColumn, black},
    {"pinwheel", End::finish, "the centre has no angle",
        [](int x, int v) { return x == kWidth / 2 && v == kHeight / 2; }, other},
    {"flash", End::start, "the flash raises every level", everywhere, brighter},
    {"flash", End::finish, "the flash raises every level", everywhere, brighter},
};

const Exception* exceptionOf(const std::string& name, End end)
{
    const auto found =
        std::ranges::find_if(kExceptions, [&](const Exception& e) { return e.name == name && e.end == end; });
    return found == std::end(kExceptions) ? nullptr : found;
}

TEST_F(EveryTransition, ShowsItsPicturesAtTheEnds)
{
    for (const KEXSDK::EffectInfo& info : transitions::transitionInfos()) {
        openNoise(info.name, kWidth, kHeight);
        for (const End end : {End::start, End::finish}) {
            SCOPED_TRACE(info.name + (end == End::start ? " at the start" : " at the end"));
            const pixels::ConstView out = show(end == End::start ? 0.0f : 2.0f, 2);
            const pixels::ConstView own = end == End::start ? from() : to();
            const pixels::ConstView others = end == End::start ? to() : from();
            const Exception* const exception = exceptionOf(info.name, end);
            int wrong = 0;
            for (int v = 0; v < kHeight; ++v) {
                for (int x = 0; x < kWidth; ++x) {
                    const std::size_t i = std::size_t(x);
                    // The sample of a pixelated block never comes from the picture's last row or column.
                    if (info.name == "pixelate" && lastRowAndColumn(x, v))
                        continue;
                    const Bgra p = out.pictureRow(v)[i];
                    Bgra expected = own.pictureRow(v)[i];
                    if (exception && exception->where(x, v)) {
                        const Bgra q = others.pictureRow(v)[i];
                        expected = {exception->shown(expected.b, q.b), exception->shown(expected.g, q.g),
                            exception->shown(expected.r, q.r), 0};
                    }
                    wrong += p.b != expected.b || p.g != expected.g || p.r != expected.r;
                }
            }
            EXPECT_EQ(wrong, 0) << (exception ? exception->reason : "");
        }
    }
}

TEST_F(EveryTransition, StaysInsideItsBuffersAtAnySizeAndTime)
{
    constexpr float kTotal = 2;
    for (const KEXSDK::EffectInfo& info : transitions::transitionInfos()) {
        for (const auto [width, height] :
            {pixels::Extent{1, 1}, {1, 64}, {64, 1}, {2, 3}, {37, 23}, {101, 100}, {4096, 16}}) {
            SCOPED_TRACE(testing::Message() << info.name << ", " << width << " x " << height);
            openNoise(info.name, width, height);
            for (const float time :
                {0.0f, 0.001f, 0.3f, 0.7f, 0.85f, 0.999f, 1.0f, 1.001f, 1.15f, 1.6f, 1.95f, 1.999f, 2.0f}) {
                const auto bytes = bytesAt(time, kTotal);
                // The output's earlier bytes show only where the table says so.
                if (info.history.frames == 0) {
                    EXPECT_EQ(bytes, bytesAt(time, kTotal, {77, 88, 99, 111})) << time;
                }
            }
            EXPECT_EQ(bytesAt(std::numeric_limits<float>::quiet_NaN(), kTotal), bytesAt(0, kTotal));
            EXPECT_EQ(bytesAt(1e30f, kTotal), bytesAt(kTotal, kTotal));
            EXPECT_EQ(bytesAt(1, 0), fromFrame().bytes());
            // Amounts overflow single precision at these times.
            bytesAt(1e38f, 3e38f);
        }
    }
}

TEST_F(EveryTransition, MayDrawIntoEitherOfItsInputs)
{
    for (const KEXSDK::EffectInfo& info : transitions::transitionInfos()) {
        for (const float time : {0.0f, 0.3f, 0.8f, 1.1f, 1.6f, 2.0f}) {
            for (const bool intoFrom : {true, false}) {
                openNoise(info.name, 333, 101);
                test::GuardedFrame& shared = intoFrom ? fromFrame() : toFrame();
                std::ranges::copy(shared.bytes(), outFrame().pixels());
                pixels::threadRandom().seed(1);
                show(time, 2);
                pixels::threadRandom().seed(1);
                EXPECT_EQ(DoFilterEx(filter().handle(), shared.image()), 0u);
                EXPECT_TRUE(outFrame().bytes() == shared.bytes()) << info.name << " at " << time;
            }
        }
    }
}

TEST_F(EveryTransition, LooksTheSameOnAnyThreadsAndVectors)
{
    for (const KEXSDK::EffectInfo& info : transitions::transitionInfos()) {
        openNoise(info.name, 333, 301);
        for (const float time : {0.2f, 0.5f, 0.83f, 1.05f, 1.3f, 1.8f}) {
            pixels::limitVectors(pixels::VectorLevel::base);
            std::vector<u8> plain;
            {
                const tbb::global_control one(tbb::global_control::max_allowed_parallelism, 1);
                plain = bytesAt(time, 2);
            }
            for (const auto level : {pixels::VectorLevel::avx2, pixels::VectorLevel::avx512}) {
                const tbb::global_control four(tbb::global_control::max_allowed_parallelism, 4);
                pixels::limitVectors(level);
                EXPECT_TRUE(plain == bytesAt(time, 2)) << info.name << " at " << time;
            }
        }
    }
}

} // namespace
