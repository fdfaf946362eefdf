// A broken television picture and a kaleidoscope.
#include "core/Random.h"
#include "effects/am/data/jitter.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/looks/brokenTelevision.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <cmath>
#include <mutex>
#include <numbers>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::Point;
namespace rows = pixels::rows;

// The broken television that all nodes of the process share: a frame that any of them draws is its next.
struct Television {
    std::mutex guard;
    u32 frame = 0;
    int pattern = 0;
};

Television& television()
{
    static Television set;
    return set;
}

// Rolls the picture by whole rows and shifts each row to the right, around its end. The first and the last
// rows of the source become transparent black.
i32 badSignal(const Frame& f)
{
    constexpr int kLostRows = 10;
    const int period = std::max(pixels::truncated(f.block.frameRate / 24.0f), 1);
    const auto [frame, pattern] = [period] {
        Television& set = television();
        const std::lock_guard lock(set.guard);
        if (set.frame % u32(period) == 0)
            set.pattern = pixels::threadRandom().next() % kJitterPatterns;
        return std::pair{set.frame++, set.pattern};
    }();
    const u8* const jitter = kJitter[pattern];

    const int width = f.dst.width();
    const int height = f.dst.height();
    const i64 rolled = i64(frame) * pixels::truncated(125.0f / f.block.frameRate) % height;
    rows::anyOrder(f.dst.extent(), [&](int y) {
        const int from = int((rolled + height + y) % height);
        Bgra* const to = f.dst.row(y).data();
        if (from < kLostRows || from >= height - kLostRows) {
            std::memset(static_cast<void*>(to), 0, std::size_t(width) * 4);
            return;
        }
        const Bgra* const row = f.src.row(from).data();
        const int shift = jitter[y % kJitterRows] % width;
        std::memcpy(to + shift, row, std::size_t(width - shift) * 4);
        std::memcpy(to, row + width - shift, std::size_t(shift) * 4);
    });
    return kAmOk;
}

// The angle of (dx, dy), -pi <= angle < pi: it rises evenly along the sides of a square that stands on its
// corner, and so stays within 0.08 of the arctangent. NaN at the centre itself.
double fastAngle(int dy, int dx)
{
    constexpr double kQuarter = std::numbers::pi / 4;
    const double x = dx;
    const double y = dy;
    if (dy > 0)
        return dx >= 0 ? kQuarter - kQuarter * (x - y) / (y + x)
                       : 3 * kQuarter - kQuarter * (y + x) / (y - x);
    return dx >= 0 ? kQuarter * (y + x) / (x - y) - kQuarter : -3 * kQuarter - kQuarter * (x - y) / (y + x);
}

// A triangle that stands on its base, and the fields around it that show parts of it. The fields overlap
// where fastAngle() is not the arctangent; that gives the picture its seams.
class Kaleidoscope {
public:
    explicit Kaleidoscope(pixels::Extent size) : size_(size)
    {
        apex_ = {pixels::truncated(size.width * 0.5), pixels::truncated(size.height * 0.88333)};
        const int base = pixels::truncated(size.height * 0.08333);
        const double half = (apex_.y - base) * std::tan(std::numbers::pi / 6);
        left_ = {pixels::truncated(apex_.x - half), base};
        right_ = {pixels::truncated(apex_.x + half), base};
    }

    /// Where the pixel comes from; always inside the picture.
    Point source(int x, int y) const
    {
        constexpr double kSixth = std::numbers::pi / 3;
        constexpr double kThird = 2 * kSixth;
        constexpr double kHalf = std::numbers::pi;
        // A little more than pi: no angle of fastAngle() is left out.
        constexpr double kBeyond = 3.1590459927777776;

        const double atApex = fastAngle(y - apex_.y, x - apex_.x);
        const double atLeft = fastAngle(y - left_.y, x - left_.x);
        const double atRight = fastAngle(y - right_.y, x - right_.x);
        const auto distance = [=](Point p) {
            return std::sqrt(double(x - p.x) * (x - p.x) + double(y - p.y) * (y - p.y));
        };
        if (y <= apex_.y && kSixth < atLeft && atLeft <= kThird)
            return around(apex_, atApex + kSixth, distance(apex_));
        if (y <= apex_.y && kSixth < atRight && atRight <= kThird)
            return around(apex_, atApex - kSixth, distance(apex_));
        if (0 <= atApex && atApex < kSixth)
            return around(apex_, atApex - kThird, distance(apex_));
        if (kSixth <= atApex && atApex < kThird)
            return around(apex_, atApex + kHalf, distance(apex_));
        if (kThird <= atApex && atApex < kHalf)
            return around(apex_, atApex + kThird, distance(apex_));
        if (0 <= atRight && atRight < kSixth)
            return around(right_, atRight + kThird, distance(right_));
        if (-kSixth <= atRight && atRight < 0)
            return around(right_, kThird - atRight, distance(right_));
        if (-kThird <= atRight && atRight < -kSixth)
            return around(left_, atRight + kThird, distance(right_));
        if (-kHalf <= atRight && atRight < -kThird && -kSixth <= atLeft && atLeft < 0)
            return inside(x, 2 * left_.y - y);
        if (-kThird <= atLeft && atLeft < -kSixth)
            return around(right_, atLeft - kThird, distance(left_));
        if (-kHalf < atLeft && atLeft < -kThird)
            return around(left_, -atLeft - kThird, distance(left_));
        if (kThird < atLeft && atLeft <= kBeyond)
            return around(left_, atLeft - kThird, distance(left_));
        return {x, y};
    }

private:
    Point inside(double x, double y) const
    {
        return {pixels::truncated(pixels::clamped(x, 0.0, size_.width - 1.0)),
            pixels::truncated(pixels::clamped(y, 0.0, size_.height - 1.0))};
    }

    Point around(Point centre, double angle, double radius) const
    {
        return inside(radius * std::cos(angle) + centre.x, radius * std::sin(angle) + centre.y);
    }

    pixels::Extent size_;
    Point apex_;
    Point left_;
    Point right_;
};

// Where the pixels come from depends on the size of the picture alone.
i32 kaleidoscope(const Frame& f)
{
    const int width = f.dst.width();
    if (!ensureScratchC(f.block, i64(4) * width * f.dst.height(), kAmDirtySize))
        return kAmNoMemory;
    u32* const map = static_cast<u32*>(f.block.scratchC);
    if (takeDirty(f.block, kAmDirtySize)) {
        const Kaleidoscope glass(f.dst.extent());
        rows::anyOrder(f.dst.extent(), [&](int y) {
            for (int x = 0; x < width; ++x)
                map[std::ptrdiff_t(y) * width + x] = pixels::packedPlace(glass.source(x, y));
        });
    }
    pixels::sample(f.src, f.dst, [map, size = f.dst.extent()](int x, int y) {
        return pixels::unpackedPlace(map[std::ptrdiff_t(y) * size.width + x], size);
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 96,
        .entry = {.place = 90, .name = "Bad_TVSignal", .guid = "9B5EFE7A-C286-406e-A286-681142AC8B66"},
        .shown = {.title = "Broken Television", .summary = "A rolling, jittering television picture."},
        .random = true,
        .shared = true,
        .history = {History::kFromStart},
        .alpha = Alpha::loose,
        .needsCopy = true,
        .apply = badSignal},
    {.id = 97,
        .entry = {.place = 91, .name = "Kaleidoscope", .guid = "A5394086-2AE7-4df3-B85B-0D69E4594338"},
        .shown = {.title = "Kaleidoscope", .summary = "A triangle of the picture mirrored all around."},
        .alpha = Alpha::computed,
        .needsCopy = true,
        .apply = kaleidoscope},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

void restartTelevision()
{
    Television& set = television();
    const std::lock_guard lock(set.guard);
    set.frame = 0;
    set.pattern = 0;
}

} // namespace KEXSDK::am
