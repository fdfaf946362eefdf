// Transitions that draw random numbers, always on the evaluating thread and before any row is drawn.
#include "core/Clock.h"
#include "core/Random.h"
#include "effects/transitions/families.h"

#include <memory>
#include <mutex>
#include <numeric>

namespace transitions {

namespace {

// A random order of a picture's pixels, as the place of each pixel in it (row-major in memory order).
struct PixelOrder {
    int height;
    int stride;
    std::vector<u32> place;
};

std::vector<u32> shuffled(std::size_t count)
{
    std::vector<u32> order(count);
    std::iota(order.begin(), order.end(), 0u);
    pixels::RandomGenerator& random = pixels::threadRandom();
    random.seed(u32(core::now()));
    for (std::size_t k = count; k > 0; --k) {
        const int left = random.next();
        const int right = random.next();
        std::swap(order[std::size_t(left * right) % k], order[k - 1]);
    }
    std::vector<u32> place(count);
    for (std::size_t i = 0; i < count; ++i)
        place[order[i]] = u32(i);
    return place;
}

// The order that all nodes of the process share, drawn anew for a picture of another shape. Whoever draws
// with one keeps it alive. It is never freed: tasks may still run when the process ends.
std::shared_ptr<const PixelOrder> sharedOrder(int width, int height, int stride)
{
    static std::mutex& guard = *new std::mutex;
    static std::shared_ptr<const PixelOrder>& order = *new std::shared_ptr<const PixelOrder>;
    const std::lock_guard lock(guard);
    if (!order || order->height != height || order->stride != stride)
        order = std::make_shared<const PixelOrder>(
            PixelOrder{height, stride, shuffled(std::size_t(width) * std::size_t(height))});
    return order;
}

int drawThousandth() { return pixels::roundHalfUp(pixels::threadRandom().next() / 32767.0 * 1000); }

} // namespace

void dissolve2(const Canvas& c, const Progress& p)
{
    const auto order = sharedOrder(c.width, c.height, int(c.dst.strideBytes()));
    const int count = c.width * c.height;
    const int n = std::min(pixels::truncated(p.smoothedPart(count)), count);
    drawRows(c, [=, height = c.height, places = order->place.data()](const Line& line) {
        const u32* const place = places + std::size_t(height - 1 - line.v) * std::size_t(line.width);
        line.mix(0, line.width, [=](Bgra f, Bgra t, int x) { return place[x] < u32(n) ? t : f; });
    });
}

void hRandomLine(const Canvas& c, const Progress& p)
{
    if (p.atStart())
        return pixels::rows::copy(c.from, c.dst);
    const int turned = p.smoothedAmount(1000);
    const Scratch<bool> showsFrom(c.height);
    for (int r = 0; r < c.height; ++r)
        showsFrom[std::size_t(r)] = drawThousandth() > turned;
    drawRows(c, [=, rows = showsFrom.data(), height = c.height](const Line& line) {
        line.copy(rows[height - 1 - line.v] ? line.from : line.to, 0, line.width);
    });
}

void vRandomLine(const Canvas& c, const Progress& p)
{
    const int turned = p.smoothedAmount(1000);
    const Scratch<u32> mask(c.width);
    for (int x = 0; x < c.width; ++x)
        mask[std::size_t(x)] = drawThousandth() > turned ? 0 : kWholePixel;
    // The first frame draws its numbers like every other one.
    if (p.atStart())
        return pixels::rows::copy(c.from, c.dst);
    drawRows(c, [columns = mask.data()](const Line& line) { line.pick(columns, 0, line.width); });
}

void wind(const Canvas& c, const Progress& p)
{
    const int n = p.smoothedAmount(c.width);
    // The wind reaches equally far in two rows each.
    const Scratch<int> reaches((c.height + 1) / 2);
    for (int& reach : reaches) {
        const int extra = pixels::truncated(pixels::threadRandom().next() / 65535.0 * n + 0.5);
        reach = std::min((extra + n) / 2 * 2, c.width);
    }
    drawRows(c, [=, reach = reaches.data(), height = c.height](const Line& line) {
        const int w = reach[(height - 1 - line.v) / 2];
        line.copy(line.to, 0, w);
        line.copy(line.from, w, line.width);
    });
}

} // namespace transitions
