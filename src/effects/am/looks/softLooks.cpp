// Soft noise over grey, and a soft focus.
#include "core/Random.h"
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/loops/HalfStepBlur.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/stencil.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ByteTable;
using pixels::RowsAround;
using pixels::Scratch;
namespace rows = pixels::rows;

// The blue channel with noise, averaged over three columns.
class NoisyGrey {
public:
    NoisyGrey(pixels::ConstView src, pixels::RandomGenerator random) : src_(src), random_(random) { }

    void makeRow(int y, u8* to) const
    {
        const int width = src_.width();
        const Scratch<u16> noise{std::size_t(width)};
        const Scratch<u8> noisy{std::size_t(width)};
        pixels::RandomGenerator random = random_;
        random.skip(u32(y) * u32(width));
        random.fill(noise.data(), width);
        pixels::widest([=, from = src_.row(y).data(), n = noise.data(), grey = noisy.data()] {
            pixels::eachIndex(0, width,
                [=](int x) { grey[x] = u8((185 * pixels::load(from + x).b + 71 * (n[x] & 255)) >> 8); });
            pixels::eachIndex(
                1, width - 1, [=](int x) { to[x] = u8((grey[x - 1] + grey[x] + grey[x + 1]) / 3); });
        });
        const int last = width - 1;
        to[0] = width > 1 ? u8((noisy[0] + noisy[1]) / 2) : noisy[0];
        if (last > 0)
            to[last] = u8((noisy[std::size_t(last - 1)] + noisy[std::size_t(last)]) / 2);
    }

private:
    pixels::ConstView src_;
    pixels::RandomGenerator random_;
};

// to[x] = the mean of the kCount rows that lie inside the picture; the others of the three are zero.
template <int kCount> void averageRows(RowsAround greys, const Bgra* from, Bgra* to, int width)
{
    pixels::widest([=] {
        pixels::mapColumns(from, to, 0, width, [=](int x, Bgra p) {
            return pixels::grey(p, u8((greys.below[x] + greys.row[x] + greys.above[x]) / kCount));
        });
    });
}

i32 noisyBlackAndWhite(const Frame& f)
{
    const NoisyGrey noisy(f.src, pixels::threadRandom());
    pixels::threadRandom().skip(u32(f.dst.width()) * u32(f.dst.height()));
    const int width = f.dst.width();
    const int height = f.dst.height();
    const auto make = [&](int y, u8* to) {
        if (y < 0 || y >= height)
            std::fill_n(to, width, u8(0));
        else
            noisy.makeRow(y, to);
    };
    const auto draw = [&](int y, RowsAround greys) {
        const int count = 1 + (y > 0) + (y < height - 1);
        const auto average = count == 3 ? averageRows<3> : count == 2 ? averageRows<2> : averageRows<1>;
        average(greys, f.src.row(y).data(), f.dst.row(y).data(), width);
    };
    rows::anyOrderRuns(
        f.dst.extent(), [&](int top, int end) { pixels::eachMadeRow(top, end, width, make, draw); });
    return kAmOk;
}

constexpr ByteTable kFuzzy = curveThrough({0, 97, 175, 223, 255});

// The blurred picture over the sharp one. Scratch A is free to take the rows that are blurred halfway: in
// place, it holds a second copy of the picture that nobody reads.
i32 softFocus(const Frame& f)
{
    const int width = f.dst.width();
    if (!ensureScratchA(f.block, i64(width) * f.dst.height() * 4))
        return kAmNoTemporary;
    const pixels::View temporary(static_cast<u8*>(f.block.scratchA), f.dst.extent());
    HalfStepBlur(f.src, temporary, 4 + (f.dataSize >> 21)).eachRow([&](int y, pixels::View blurred) {
        const pixels::View to = f.dst.rows(y, y + 1);
        pixels::mapTables(blurred, blurred, {kFuzzy, kFuzzy, kFuzzy});
        rows::map2(f.src.rows(y, y + 1), blurred, to, [](Bgra sharp, Bgra soft) -> Bgra {
            const auto overlaid = [](int o, int t) {
                const int light = 255 - ((255 - o) * (255 - t) >> 7);
                return u8(t >= 128 ? light : o * t >> 7);
            };
            return {overlaid(sharp.b, soft.b), overlaid(sharp.g, soft.g), overlaid(sharp.r, soft.r), sharp.a};
        });
        pixels::mapTables(to, to, {kFuzzy, kFuzzy, kFuzzy});
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 73,
        .entry = {.place = 70, .name = "BW_Noise", .guid = "3E3535CE-7881-4e9e-A1EE-D5220E323EB7"},
        .shown = {.title = "Black and White, Noise", .summary = "Grey with soft noise."},
        .random = true,
        .needsCopy = true,
        .apply = noisyBlackAndWhite},
    {.id = 77,
        .entry = {.place = 74, .name = "FuzzyImg", .guid = "004AF9BF-A233-4f3a-A14F-2E475C732091"},
        .shown = {.title = "Soft Focus", .summary = "A glow from a blurred overlay."},
        .needsCopy = true,
        .apply = softFocus},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
