// Blurs along the rays from a centre: the mean of the picture at many sizes.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/Scratch.h"
#include "pixels/byteQuotient.h"
#include "pixels/columns.h"
#include "pixels/sample.h"

#include <array>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ConstView;
using pixels::Point;
namespace rows = pixels::rows;

// One size of the picture. Scales have 8 binary digits, and the samples differ by less than the last of them,
// so many have the same scale. Each size counts as often as it occurs: 25 sizes take the place of 185 samples
// at radius 50 and 1920 columns.
struct Size {
    int scale; ///< distance from the centre of the sample, 256 for the pixel's own
    u32 times;
};

// 257 bytes are the most that a 16-bit sum holds, and there are never as many sizes. Where the longer side is
// well above 256 pixels, samples lie less than a scale apart and together span at most kMostRadius / 2
// scales; smaller pictures have fewer samples than that.
constexpr int kMostRadius = 500;
constexpr std::size_t kMostSizes = 257;

class Sizes {
public:
    Sizes(int radius, pixels::Extent picture)
    {
        const int longer = std::max(picture.width, picture.height);
        samples_ = std::max(std::clamp(radius, 0, kMostRadius) * picture.width >> 10, 5);
        const int step = (samples_ << 16) / (longer * (samples_ - 1));
        int position = 0x10000 + (samples_ - 1) * step;
        for (int i = 0; i < 2 * samples_ - 1; ++i, position += step) {
            const int scale = position >> 8;
            if (count_ == 0 || sizes_[count_ - 1].scale != scale)
                sizes_[count_++] = {scale, 0};
            ++sizes_[count_ - 1].times;
        }
        // Sizes that count equally often are neighbours: their samples are added up before one
        // multiplication.
        std::ranges::sort(sizes_.begin(), sizes_.begin() + std::ptrdiff_t(count_), {}, &Size::times);
    }
    u32 samples() const { return u32(samples_); }
    std::size_t count() const { return count_; }
    const Size& operator[](std::size_t i) const { return sizes_[i]; }

private:
    int samples_;
    std::size_t count_ = 0;
    std::array<Size, kMostSizes> sizes_;
};

// Eight columns at once, in whatever vector registers GCC finds for them.
constexpr int kLanes = 8;
using Lanes [[gnu::vector_size(4 * kLanes)]] = u32;
using SignedLanes [[gnu::vector_size(4 * kLanes)]] = i32;
constexpr SignedLanes kLaneNumbers{0, 1, 2, 3, 4, 5, 6, 7};

constexpr int scaled(int distance, int scale) { return distance * scale >> 8; }

// One size of the picture, and the columns of the result whose samples lie inside it.
struct SampledSize : Size {
    int firstInside;
    int endInside;
    int mostSkipped; ///< source columns that at most are left out between the lanes of a block

    SampledSize() = default;
    SampledSize(Size size, int centre, int width) : Size(size), firstInside(0), endInside(width)
    {
        const auto outside = [=, this](int x) {
            const int column = centre + scaled(x - centre, scale);
            return column < 0 || column >= width;
        };
        while (firstInside < endInside && outside(firstInside))
            ++firstInside;
        while (endInside > firstInside && outside(endInside - 1))
            --endInside;
        mostSkipped = ((kLanes - 1) * (scale - 256) + 255) / 256;
    }
};

// Sums over all sizes, for pieces of a row that stay in the nearest cache.
class ZoomSums {
public:
    static constexpr int kPiece = 512;

    ZoomSums(ConstView src, const Sizes& sizes, Point centre)
        : src_(src),
          centre_(centre),
          sizes_(sizes.count())
    {
        for (std::size_t i = 0; i < sizes_.size(); ++i)
            sizes_[i] = SampledSize(sizes[i], centre.x, src.width());
    }

    /// Columns [x, end) of row y, kPiece of them at most.
    void sumUp(int y, int x, int end)
    {
        b_ = g_ = r_ = {};
        for (std::size_t i = 0; i < sizes_.size();) {
            blueAndRed_ = green_ = {};
            const u32 times = sizes_[i].times;
            for (; i < sizes_.size() && sizes_[i].times == times; ++i)
                add(sizes_[i], y, x, end);
            for (std::size_t k = 0; k < kPiece; ++k) {
                b_[k] += (blueAndRed_[k] & 0xFFFF) * times;
                g_[k] += green_[k] * times;
                r_[k] += (blueAndRed_[k] >> 16) * times;
            }
        }
    }
    const u32* b() const { return b_.data(); }
    const u32* g() const { return g_.data(); }
    const u32* r() const { return r_.data(); }

private:
    static constexpr u32 kBlueAndRed = 0x00FF00FF;
    static constexpr u32 kGreen = 0x000000FF;

    void add(const SampledSize& size, int y, int x, int end)
    {
        const int row = std::clamp(centre_.y + scaled(y - centre_.y, size.scale), 0, src_.height() - 1);
        const u8* const line = reinterpret_cast<const u8*>(src_.row(row).data());
        const int first = std::clamp(size.firstInside, x, end);
        const int last = std::clamp(size.endInside, first, end);
        addOne(pixels::wordAt(line, 0), 0, first - x);
        addOne(pixels::wordAt(line, src_.width() - 1), last - x, end - x);
        int column = first;
        if (src_.width() >= kLanes)
            column = addBlocks(size, line, x, first, last);
        for (; column < last; ++column)
            addOne(pixels::wordAt(line, centre_.x + scaled(column - centre_.x, size.scale)), column - x,
                column - x + 1);
    }

    // Samples lie side by side but for a few that are left out. A lane takes its pixel from the load that
    // starts as many columns later as were left out before it; loads that would end outside serve no lane.
    int addBlocks(const SampledSize& size, const u8* line, int x, int first, int end)
    {
        const int scale = size.scale;
        const int mostSkipped = size.mostSkipped;
        const int lastLoad = src_.width() - kLanes;
        const SignedLanes laneStarts = kLaneNumbers * scale;
        u32* blueAndRed = blueAndRed_.data() + (first - x);
        u32* green = green_.data() + (first - x);
        int start = (first - centre_.x) * scale;
        for (; first + kLanes <= end; first += kLanes, start += kLanes * scale) {
            const int base = start >> 8;
            const SignedLanes skipped = ((laneStarts + start) >> 8) - kLaneNumbers - base;
            const int load = centre_.x + base;
            Lanes words;
            std::memcpy(&words, line + std::ptrdiff_t(load) * 4, sizeof words);
            for (int skip = 1; skip <= mostSkipped; ++skip) {
                Lanes later;
                std::memcpy(&later, line + std::ptrdiff_t(std::min(load + skip, lastLoad)) * 4, sizeof later);
                words = skipped == skip ? later : words;
            }
            Lanes sum;
            std::memcpy(&sum, blueAndRed, sizeof sum);
            sum += words & kBlueAndRed;
            std::memcpy(blueAndRed, &sum, sizeof sum);
            std::memcpy(&sum, green, sizeof sum);
            sum += words >> 8 & kGreen;
            std::memcpy(green, &sum, sizeof sum);
            blueAndRed += kLanes;
            green += kLanes;
        }
        return first;
    }

    void addOne(u32 word, int first, int end)
    {
        for (int k = first; k < end; ++k) {
            blueAndRed_[std::size_t(k)] += word & kBlueAndRed;
            green_[std::size_t(k)] += word >> 8 & kGreen;
        }
    }

    using Piece = std::array<u32, kPiece>;

    ConstView src_;
    Point centre_;
    pixels::Scratch<SampledSize> sizes_;
    // Two channels to a number, for the sizes that count equally often: at most 257 times 255.
    alignas(64) Piece blueAndRed_;
    alignas(64) Piece green_;
    alignas(64) Piece b_;
    alignas(64) Piece g_;
    alignas(64) Piece r_;
};

i32 explosion(const Frame& f)
{
    const pixels::Extent picture = f.dst.extent();
    const Point centre{std::clamp(f.block.posX, 0, 100) * picture.width / 100,
        std::clamp(f.block.posY, 0, 100) * picture.height / 100};
    const Sizes sizes(f.block.radius, picture);
    const u32 samples = sizes.samples();
    rows::anyOrderRuns(picture, [&](int top, int end) {
        ZoomSums sums(f.src, sizes, centre);
        pixels::widest([&sums, src = f.src, dst = f.dst, top, end, samples] {
            const float inverse = pixels::kTraceLess / float(samples);
            const auto mean = [=](u32 sum) { return pixels::byteQuotient(sum >> 1, samples, inverse); };
            for (int y = top; y < end; ++y)
                for (int x = 0; x < src.width(); x += ZoomSums::kPiece) {
                    const int count = std::min(ZoomSums::kPiece, src.width() - x);
                    sums.sumUp(y, x, x + count);
                    pixels::mapColumns(src.row(y).data() + x, dst.row(y).data() + x, 0, count,
                        [=, b = sums.b(), g = sums.g(), r = sums.r()](int i, Bgra p) -> Bgra {
                            return {mean(b[i]), mean(g[i]), mean(r[i]), p.a};
                        });
                }
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1042,
        .entry = {.place = 108, .name = "Explosion", .guid = "4B2A0059-EA66-4b03-BAD2-E8F8452FE446"},
        .shown = {.title = "Explosion", .summary = "Blurs outwards from a centre."},
        .reads = {.radius = {"Blur Length", "length of the blur"}, .position = true},
        .apply = explosion},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
