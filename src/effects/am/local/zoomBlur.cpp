// Blurs along the rays from a centre: the mean of the picture at many sizes.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/Scratch.h"
#include "pixels/byteQuotient.h"
#include "pixels/sample.h"

#include <array>

// Vectors are handed over between functions that are always compiled into one.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace KEXSDK::am {

namespace {

using pixels::ConstView;
using pixels::Point;
using pixels::View;
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
using FloatLanes [[gnu::vector_size(4 * kLanes)]] = float;
using HalfLanes [[gnu::vector_size(4 * kLanes)]] = u16;
constexpr SignedLanes kLaneNumbers{0, 1, 2, 3, 4, 5, 6, 7};

// Rows that are summed together, since what a size says of columns holds for all rows.
constexpr std::size_t kTogether = 4;
constexpr int kRowsTogether = int(kTogether);

constexpr int scaled(int distance, int scale) { return distance * scale >> 8; }

// One size of the picture, and the columns of the result whose samples lie inside it.
struct SampledSize : Size {
    int firstInside;
    int endInside;
    int mostSkipped;            ///< source columns that at most are left out between the lanes of a block
    const u8* lines[kTogether]; ///< what each of the rows samples

    SampledSize() = default;
    SampledSize(Size size, int centre, int width) : Size(size), firstInside(0), endInside(width), lines{}
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

inline Lanes lanesAt(const u8* line, int column)
{
    Lanes words;
    std::memcpy(&words, line + std::ptrdiff_t(column) * 4, sizeof words);
    return words;
}

// The sums of a block of columns for one row, by channel.
struct Sums {
    Lanes b{};
    Lanes g{};
    Lanes r{};
};

// The mean of all sizes, for a few rows of a piece of the picture, whose samples stay in a near cache.
class ZoomBlur {
public:
    static constexpr int kPiece = 256; ///< columns

    ZoomBlur(ConstView src, const Sizes& sizes, Point centre)
        : src_(src),
          centre_(centre),
          samples_(sizes.samples()),
          sizes_(sizes.count())
    {
        for (std::size_t i = 0; i < sizes_.size(); ++i)
            sizes_[i] = SampledSize(sizes[i], centre.x, src.width());
    }

    /// Columns [x, end) of rows [top, bottom), kTogether of them at most.
    void draw(View dst, int top, int bottom, int x, int end)
    {
        for (SampledSize& size : sizes_)
            for (std::size_t row = 0; row < kTogether; ++row) {
                const int y = std::min(top + int(row), bottom - 1);
                const int from =
                    std::clamp(centre_.y + scaled(y - centre_.y, size.scale), 0, src_.height() - 1);
                size.lines[row] = reinterpret_cast<const u8*>(src_.row(from).data());
            }
        for (; x < end; x += kLanes) {
            std::array<Sums, kTogether> sums;
            sumUp(x, sums);
            const std::size_t bytes = std::size_t(std::min(kLanes, end - x)) * 4;
            for (int y = top; y < bottom; ++y) {
                const Sums& sum = sums[std::size_t(y - top)];
                Lanes words{};
                std::memcpy(&words, &src_.at(x, y), bytes);
                words = (words & 0xFF000000) | mean(sum.b) | mean(sum.g) << 8 | mean(sum.r) << 16;
                std::memcpy(&dst.at(x, y), &words, bytes);
            }
        }
    }

private:
    void sumUp(int x, std::array<Sums, kTogether>& sums) const
    {
        // Two channels to a number, for the sizes that count equally often: at most 257 times 255.
        for (std::size_t i = 0; i < sizes_.size();) {
            std::array<HalfLanes, kTogether> blueAndRed{};
            std::array<HalfLanes, kTogether> greenAndAlpha{};
            const u32 times = sizes_[i].times;
            for (; i < sizes_.size() && sizes_[i].times == times; ++i) {
                std::array<Lanes, kTogether> words;
                sample(sizes_[i], x, words);
                for (std::size_t row = 0; row < kTogether; ++row) {
                    blueAndRed[row] += HalfLanes(words[row]) & 0xFF;
                    greenAndAlpha[row] += HalfLanes(words[row]) >> 8;
                }
            }
            for (std::size_t row = 0; row < kTogether; ++row) {
                sums[row].b += (Lanes(blueAndRed[row]) & 0xFFFF) * times;
                sums[row].g += (Lanes(greenAndAlpha[row]) & 0xFFFF) * times;
                sums[row].r += (Lanes(blueAndRed[row]) >> 16) * times;
            }
        }
    }

    // The samples of the columns from x on. Those of one size lie side by side but for a few that are left
    // out. A lane takes its pixel from the load that starts as many columns later as were left out before it;
    // loads that would end outside serve no lane.
    void sample(const SampledSize& size, int x, std::array<Lanes, kTogether>& words) const
    {
        if (x < size.firstInside || x + kLanes > size.endInside) {
            for (std::size_t row = 0; row < kTogether; ++row)
                words[row] = sampleApart(size, x, size.lines[row]);
            return;
        }
        const int start = (x - centre_.x) * size.scale;
        const int base = start >> 8;
        const int load = centre_.x + base;
        for (std::size_t row = 0; row < kTogether; ++row)
            words[row] = lanesAt(size.lines[row], load);
        const SignedLanes skipped = ((kLaneNumbers * size.scale + start) >> 8) - kLaneNumbers - base;
        for (int skip = 1; skip <= size.mostSkipped; ++skip) {
            const int later = std::min(load + skip, src_.width() - kLanes);
            for (std::size_t row = 0; row < kTogether; ++row)
                words[row] = skipped == skip ? lanesAt(size.lines[row], later) : words[row];
        }
    }

    // Samples that lie outside the picture, at least some of them: the row goes on with its end pixels.
    Lanes sampleApart(const SampledSize& size, int x, const u8* line) const
    {
        if (x + kLanes <= size.firstInside)
            return Lanes{} + pixels::wordAt(line, 0);
        if (x >= size.endInside)
            return Lanes{} + pixels::wordAt(line, src_.width() - 1);
        Lanes words;
        for (int lane = 0; lane < kLanes; ++lane) {
            const int column = centre_.x + scaled(x + lane - centre_.x, size.scale);
            words[lane] = pixels::wordAt(line, std::clamp(column, 0, src_.width() - 1));
        }
        return words;
    }

    // pixels::byteQuotient() of half the sum and the number of samples.
    Lanes mean(const Lanes& sum) const
    {
        const SignedLanes half = SignedLanes(sum >> 1);
        const float inverse = pixels::kTraceLess / float(samples_);
        const SignedLanes low =
            __builtin_convertvector(__builtin_convertvector(half, FloatLanes) * inverse, SignedLanes);
        return Lanes(half - low * int(samples_) >= int(samples_) ? low + 1 : low);
    }

    ConstView src_;
    Point centre_;
    u32 samples_;
    pixels::Scratch<SampledSize> sizes_;
};

i32 explosion(const Frame& f)
{
    const pixels::Extent picture = f.dst.extent();
    const Point centre{std::clamp(f.block.posX, 0, 100) * picture.width / 100,
        std::clamp(f.block.posY, 0, 100) * picture.height / 100};
    const Sizes sizes(f.block.radius, picture);
    rows::anyOrderRuns({picture.width * kRowsTogether, (picture.height + kRowsTogether - 1) / kRowsTogether},
        [&](int first, int last) {
            ZoomBlur blur(f.src, sizes, centre);
            const int end = std::min(last * kRowsTogether, picture.height);
            pixels::widest([&blur, dst = f.dst, top = first * kRowsTogether, end] {
                for (int x = 0; x < dst.width(); x += ZoomBlur::kPiece)
                    for (int y = top; y < end; y += kRowsTogether)
                        blur.draw(dst, y, std::min(y + kRowsTogether, end), x,
                            std::min(x + ZoomBlur::kPiece, dst.width()));
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
