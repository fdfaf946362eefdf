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

// Byte j of entry i + kReach is what lies i pixels away from byte j.
using Neighbours = std::array<const u8*, 2 * kReach + 1>;

// The neighbours of each byte, weighed and summed. A weight is at most 51, so a weighed sum of two bytes fits
// 16 bits, and so do two of those together; lanes of that width hold twice as many bytes as wider ones.
inline void blurBytes(Neighbours from, u8* to, int count, Weights weight)
{
#pragma GCC ivdep
    for (int j = 0; j < count; ++j) {
        const auto pair = [&](std::size_t i) {
            return u16(weight[i] * u16(from[kReach - i][j] + from[kReach + i][j]));
        };
        u32 sum = u16(weight[0] * from[kReach][j]);
        for (std::size_t i = 1; i <= kReach; i += 2)
            sum += u16(pair(i) + pair(i + 1));
        to[j] = u8(sum >> 10);
    }
}

// Blurs src along its rows, whose first and last pixels go on beyond its sides.
void blurRows(pixels::ConstView src, pixels::View dst)
{
    constexpr std::size_t kSide = std::size_t(kReach) * 4;
    pixels::rows::anyOrderRuns(src.extent(), [&](int top, int end) {
        pixels::widest([=, weight = weights()] {
            const std::size_t bytes = src.row(0).size_bytes();
            const pixels::Scratch<u8> row(bytes + 2 * kSide);
            Neighbours neighbours;
            for (std::size_t i = 0; i < neighbours.size(); ++i)
                neighbours[i] = row.data() + 4 * i;
            for (int y = top; y < end; ++y) {
                const Bgra* const from = src.row(y).data();
                std::memcpy(row.data() + kSide, from, bytes);
                for (std::size_t side = 0; side < kSide; side += 4) {
                    std::memcpy(row.data() + side, from, 4);
                    std::memcpy(row.data() + kSide + bytes + side, from + src.width() - 1, 4);
                }
                blurBytes(neighbours, reinterpret_cast<u8*>(dst.row(y).data()), int(bytes), weight);
            }
        });
    });
}

// Row y of src blurred along the columns, which go on beyond the first and the last row.
inline void blurColumns(pixels::ConstView src, int y, const Weights& weight, u8* to)
{
    Neighbours neighbours;
    for (int i = -kReach; i <= kReach; ++i)
        neighbours[std::size_t(i + kReach)] =
            reinterpret_cast<const u8*>(src.row(std::clamp(y + i, 0, src.height() - 1)).data());
    blurBytes(neighbours, to, src.width() * 4, weight);
}

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
    pixels::rows::anyOrderRuns(size, [&](int top, int end) {
        pixels::widest([=, sharp = f.src, second = f.second, dst = f.dst, weight = weights()] {
            const int w = dst.width();
            const pixels::Scratch<Bgra> blurred(w);
            for (int y = top; y < end; ++y) {
                blurColumns(half, y, weight, reinterpret_cast<u8*>(blurred.data()));
                const Bgra* const from = sharp.row(y).data();
                const Bgra* const texture = second.row(y).data();
                Bgra* const to = dst.row(y).data();
#pragma GCC ivdep
                for (int x = 0; x < w; ++x)
                    store(to + x, printed(load(blurred.data() + x), load(from + x), load(texture + x)));
            }
        });
    });
    return kAmOk;
}

} // namespace KEXSDK::am
