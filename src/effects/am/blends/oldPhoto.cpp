// The old photo: a Gaussian blur in two passes, and the blend with the picture of an old print.
#include "effects/am/blends/oldPhoto.h"

#include "effects/am/library/amScratch.h"
#include "pixels/Scratch.h"

#include <array>
#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;

constexpr int kReach = 12; // columns or rows to either side

// Entry i weighs the pixels i away, in 1024ths: a Gaussian cut off at the reach, each weight truncated.
using Weights = std::array<u16, kReach + 1>;

const Weights& weights()
{
    static const Weights kWeights = [] {
        constexpr double kSigma = 10;
        const auto bell = [](int i) {
            return std::exp(-i * i / (2 * kSigma * kSigma)) / (std::sqrt(2 * 3.14159265358979) * kSigma);
        };
        double sum = 0;
        for (int i = -kReach; i <= kReach; ++i)
            sum += bell(i);
        Weights values;
        for (int i = 0; i <= kReach; ++i)
            values[std::size_t(i)] = u16(1024 * (bell(i) / sum));
        return values;
    }();
    return kWeights;
}

// Values that lie kStep apart, first[j] to first[j + 2 * kReach * kStep], weighed and summed for each of
// `count` bytes. All of it fits 16 bits, which vectors hold most of: taps are summed in groups whose weights
// come to 257 at most, and a quarter of the whole is what the groups' quarters come to with those of their
// rests.
template <int kStep> inline void blurBytes(const u16* first, u8* to, int count, Weights weight)
{
#pragma GCC ivdep
    for (int j = 0; j < count; ++j) {
        const auto pair = [&](int i) {
            return u16(weight[std::size_t(i)]
                * u16(first[j + (kReach - i) * kStep] + first[j + (kReach + i) * kStep]));
        };
        const u16 a = u16(u16(weight[0] * first[j + kReach * kStep]) + pair(1) + pair(2));
        const u16 b = u16(pair(3) + pair(4) + pair(10));
        const u16 c = u16(pair(5) + pair(6) + pair(7));
        const u16 d = u16(pair(8) + pair(9) + u16(pair(11) + pair(12)));
        const u16 rests = u16((a & 3) + (b & 3) + (c & 3) + (d & 3));
        const u16 quarter = u16((a >> 2) + (b >> 2) + (c >> 2) + (d >> 2) + (rests >> 2));
        to[j] = u8(quarter >> 8);
    }
}

inline void widen(const u8* from, u16* to, int count)
{
#pragma GCC ivdep
    for (int j = 0; j < count; ++j)
        to[j] = from[j];
}

// Blurs src along its rows, whose first and last pixels go on beyond its sides.
void blurRows(pixels::ConstView src, pixels::View dst)
{
    constexpr int kSide = kReach * 4;
    pixels::rows::anyOrderRuns(src.extent(), [&](int top, int end) {
        pixels::widest([=, weight = weights()] {
            const int bytes = src.width() * 4;
            const pixels::Scratch<u16> row(std::size_t(bytes) + 2 * kSide);
            u16* const inside = row.data() + kSide;
            for (int y = top; y < end; ++y) {
                widen(reinterpret_cast<const u8*>(src.row(y).data()), inside, bytes);
                for (int side = 4; side <= kSide; side += 4) {
                    std::memcpy(inside - side, inside, 4 * sizeof(u16));
                    std::memcpy(inside + bytes + side - 4, inside + bytes - 4, 4 * sizeof(u16));
                }
                blurBytes<4>(row.data(), reinterpret_cast<u8*>(dst.row(y).data()), bytes, weight);
            }
        });
    });
}

// Asks for the pixels that a row further down will need: rows of a piece are too short and too far apart for
// the processor to foresee.
constexpr int kAhead = 8;

inline void fetch(const Bgra* first, int count)
{
    constexpr int kLine = 64 / sizeof(Bgra); // pixels of a cache line
    for (int x = 0; x < count; x += kLine)
        __builtin_prefetch(first + x);
}

// Blurs columns of a picture in pieces, whose rows stay in the nearest cache and are widened once for all
// rows that they count for.
class ColumnBlur {
public:
    static constexpr int kPixels = 64; ///< of a row of a piece

    explicit ColumnBlur(int rows) : wide_(std::size_t(rows + 2 * kReach) * kBytes) { }

    /// Takes `width` columns from `left` on for rows [top, end). The first and the last row go on beyond the
    /// picture.
    void take(pixels::ConstView src, int left, int width, int top, int end)
    {
        top_ = top;
        for (int y = top - kReach; y < end + kReach; ++y) {
            fetch(&src.at(left, std::clamp(y + kAhead, 0, src.height() - 1)), width);
            widen(reinterpret_cast<const u8*>(&src.at(left, std::clamp(y, 0, src.height() - 1))), line(y),
                width * 4);
        }
    }
    /// The blurred row y of the piece.
    void draw(int y, Bgra* to, int width, const Weights& weight) const
    {
        blurBytes<kBytes>(line(y - kReach), reinterpret_cast<u8*>(to), width * 4, weight);
    }

private:
    static constexpr int kBytes = kPixels * 4;

    u16* line(int y) const { return wide_.data() + std::ptrdiff_t(y + kReach - top_) * kBytes; }

    pixels::Scratch<u16> wide_;
    int top_ = 0;
};

// Half the blurred picture and half the luma of the sharp one, stretched from 50..200; the texture over it.
constexpr Bgra printed(Bgra blurred, Bgra sharp, Bgra texture)
{
    const int luma = std::clamp(y8(sharp) - 50, 0, 150) * 255 / 150;
    const auto mixed = [&](int c, int t) {
        return u8((((c + luma) >> 1) * (255 - texture.a) + t * texture.a) >> 8);
    };
    return {mixed(blurred.b, texture.b), mixed(blurred.g, texture.g), mixed(blurred.r, texture.r), 255};
}

} // namespace

i32 oldPhoto(const Frame& f)
{
    const pixels::Extent size = f.dst.extent();
    // Rows a power of two apart would keep throwing each other out of the cache while columns are summed.
    constexpr int kPadding = 64;
    const int stride = size.width * 4 + kPadding;
    if (!ensureScratchC(f.block, i64(stride) * size.height, 0))
        return kAmNoMemory;
    const pixels::View half(static_cast<u8*>(f.block.scratchC), size, stride);
    blurRows(f.src, half);
    // Runs of twice the usual length widen fewer rows beyond their ends.
    pixels::rows::anyOrderRuns({(size.width + 1) / 2, size.height}, [&](int top, int end) {
        pixels::widest([=, sharp = f.src, second = f.second, dst = f.dst, weight = weights()] {
            ColumnBlur blur(end - top);
            std::array<Bgra, ColumnBlur::kPixels> blurred;
            for (int left = 0; left < dst.width(); left += ColumnBlur::kPixels) {
                const int width = std::min(ColumnBlur::kPixels, dst.width() - left);
                blur.take(half, left, width, top, end);
                for (int y = top; y < end; ++y) {
                    const int ahead = std::min(y + kAhead, end - 1);
                    fetch(&sharp.at(left, ahead), width);
                    fetch(&second.at(left, ahead), width);
                    fetch(&dst.at(left, ahead), width);
                    blur.draw(y, blurred.data(), width, weight);
                    const Bgra* const from = &sharp.at(left, y);
                    const Bgra* const texture = &second.at(left, y);
                    Bgra* const to = &dst.at(left, y);
#pragma GCC ivdep
                    for (int x = 0; x < width; ++x)
                        store(to + x, printed(load(blurred.data() + x), load(from + x), load(texture + x)));
                }
            }
        });
    });
    return kAmOk;
}

} // namespace KEXSDK::am
