// Conversion by fixed-point colour matrices, row by row.
#include "effectengine/media/yuvPixels.h"

#include "effectengine/media/orderedDither.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <array>
#include <cmath>

using pixels::Bgra;

namespace tool::media {

namespace {

constexpr int kBits = 16;
constexpr int kHalf = 1 << (kBits - 1);
constexpr int kHdLines = 720; // unmarked pictures with fewer lines count as standard definition

struct Weights {
    double red;
    double blue;
};

std::optional<Weights> weightsOf(AVColorSpace space)
{
    switch (space) {
    case AVCOL_SPC_BT709:
        return Weights{0.2126, 0.0722};
    case AVCOL_SPC_FCC:
        return Weights{0.30, 0.11};
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return Weights{0.299, 0.114};
    case AVCOL_SPC_SMPTE240M:
        return Weights{0.212, 0.087};
    case AVCOL_SPC_BT2020_NCL:
        return Weights{0.2627, 0.0593};
    default:
        return {};
    }
}

struct Scale {
    Weights weights;
    double luma;   ///< steps of Y from black to white
    double chroma; ///< steps of U or V from end to end
    int black;
};

Scale scaleOf(const Colour& colour)
{
    const Weights weights = weightsOf(colour.space).value_or(Weights{0.299, 0.114});
    if (colour.range == AVCOL_RANGE_JPEG)
        return {weights, 255, 255, 0};
    return {weights, 219, 224, 16};
}

int fixed(double factor) { return int(std::lround(factor * (1 << kBits))); }

struct ToBgra {
    int luma, redOfV, greenOfU, greenOfV, blueOfU, black;

    explicit ToBgra(const Scale& s)
    {
        const double green = 1 - s.weights.red - s.weights.blue;
        const double redStep = 2 * (1 - s.weights.red) * 255 / s.chroma;
        const double blueStep = 2 * (1 - s.weights.blue) * 255 / s.chroma;
        luma = fixed(255 / s.luma);
        redOfV = fixed(redStep);
        greenOfU = fixed(-blueStep * s.weights.blue / green);
        greenOfV = fixed(-redStep * s.weights.red / green);
        blueOfU = fixed(blueStep);
        black = s.black;
    }

    Bgra operator()(int y, int u, int v) const
    {
        const int light = (y - black) * luma + kHalf;
        u -= 128;
        v -= 128;
        const auto byte = [](int sum) { return pixels::clampByte(sum >> kBits); };
        return {byte(light + u * blueOfU), byte(light + u * greenOfU + v * greenOfV),
            byte(light + v * redOfV), 255};
    }
};

/// Weights of blue, green and red in one channel; they sum to exactly the channel's scale for grey.
struct Channel {
    int b, g, r;
    int of(Bgra p) const { return b * p.b + g * p.g + r * p.r; }
};

struct FromBgra {
    Channel y, u, v;
    int black;

    explicit FromBgra(const Scale& s)
    {
        const auto [red, blue] = s.weights;
        const double luma = s.luma / 255;
        const double chroma = s.chroma / 255 / 2;
        y = {fixed(luma * blue), 0, fixed(luma * red)};
        y.g = fixed(luma) - y.b - y.r;
        u = {fixed(chroma), 0, fixed(-chroma * red / (1 - blue))};
        u.g = -u.b - u.r;
        v = {fixed(-chroma * blue / (1 - red)), 0, fixed(chroma)};
        v.g = -v.b - v.r;
        black = s.black;
    }
};

struct Sampling {
    int columns; ///< pixels that share a chroma sample, as a power of two
    int rows;
};

Sampling samplingOf(AVPixelFormat format)
{
    const AVPixFmtDescriptor& descriptor = *av_pix_fmt_desc_get(format);
    return {descriptor.log2_chroma_w, descriptor.log2_chroma_h};
}

void rowToBgra(const ToBgra& matrix, const u8* y, const u8* u, const u8* v, Bgra* to, int width)
{
#pragma GCC ivdep
    for (int x = 0; x < width; ++x)
        pixels::store(to + x, matrix(y[x], u[x], v[x]));
}

void alphaToRow(const u8* alpha, Bgra* to, int width)
{
    for (int x = 0; x < width; ++x)
        to[x].a = alpha[x];
}

void rowToAlpha(const Bgra* from, u8* alpha, int width)
{
    for (int x = 0; x < width; ++x)
        alpha[x] = from[x].a;
}

void doubled(const u8* samples, u8* to, int width)
{
    for (int x = 0; x < width / 2; ++x) {
        to[2 * x] = samples[x];
        to[2 * x + 1] = samples[x];
    }
    if (width % 2)
        to[width - 1] = samples[width / 2];
}

void narrowed(const u8* samples, u8* to, int count, int bits, const std::array<int, kDitherSize>& offsets)
{
    for (int x = 0; x < count; ++x) {
        u16 sample;
        std::memcpy(&sample, samples + 2 * x, sizeof sample);
        to[x] = u8(std::min((sample + offsets[std::size_t(x % kDitherSize)]) >> (bits - 8), 255));
    }
}

void lumaRow(const FromBgra& matrix, const Bgra* from, u8* y, int width)
{
#pragma GCC ivdep
    for (int x = 0; x < width; ++x)
        y[x] = u8((matrix.y.of(pixels::load(from + x)) + (matrix.black << kBits) + kHalf) >> kBits);
}

// Sums of one chroma channel over two rows, before rounding. For formats with chroma in every row, both are
// the same.
void chromaSums(const Channel& channel, const Bgra* first, const Bgra* second, int* sums, int width)
{
#pragma GCC ivdep
    for (int x = 0; x < width; ++x)
        sums[x] = channel.of(pixels::load(first + x)) + channel.of(pixels::load(second + x));
}

// Rounds the sums of two rows to chroma samples, each of 1 << columns pixels of a row.
void chromaRow(const int* sums, u8* to, int width, int columns)
{
    const auto byte = [](int sum, int bits) {
        return pixels::clampByte((sum + (128 << bits) + (1 << (bits - 1))) >> bits);
    };
    if (columns == 0) {
        for (int x = 0; x < width; ++x)
            to[x] = byte(sums[x], kBits + 1);
        return;
    }
    for (int x = 0; x < width / 2; ++x)
        to[x] = byte(sums[2 * x] + sums[2 * x + 1], kBits + 2);
    if (width % 2)
        to[width / 2] = byte(2 * sums[width - 1], kBits + 2);
}

constexpr std::size_t kPlanes = 4;

// The start of a row, counted from the top, of a frame's plane.
template <class Byte> Byte* planeRow(Byte* plane, int stride, int row)
{
    return plane + std::ptrdiff_t(stride) * row;
}

} // namespace

bool isPlainYuv(AVPixelFormat format)
{
    constexpr std::array kFormats{AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV444P,
        AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUVJ444P, AV_PIX_FMT_YUVA420P,
        AV_PIX_FMT_YUVA422P, AV_PIX_FMT_YUVA444P};
    return std::ranges::find(kFormats, format) != kFormats.end();
}

bool isDeepYuv(AVPixelFormat format)
{
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    constexpr auto kOthers = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_BE | AV_PIX_FMT_FLAG_FLOAT
        | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_HWACCEL;
    if (!descriptor || descriptor->nb_components < 3 || descriptor->flags & kOthers
        || !(descriptor->flags & AV_PIX_FMT_FLAG_PLANAR))
        return false;
    for (int plane = 0; plane < descriptor->nb_components; ++plane) {
        const AVComponentDescriptor& component = descriptor->comp[plane];
        if (component.plane != plane || component.step != 2 || component.shift != 0 || component.depth <= 8)
            return false;
    }
    return descriptor->log2_chroma_w <= 1 && descriptor->log2_chroma_h <= descriptor->log2_chroma_w;
}

bool hasYuvMatrix(AVColorSpace space) { return weightsOf(space).has_value(); }

Colour completed(Colour colour, AVPixelFormat format, int width, int height)
{
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    const bool full = descriptor && std::string_view(descriptor->name).starts_with("yuvj");
    if (full || colour.range == AVCOL_RANGE_UNSPECIFIED)
        colour.range = full ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    if (colour.space == AVCOL_SPC_UNSPECIFIED || colour.space == AVCOL_SPC_RESERVED)
        colour.space = std::min(width, height) >= kHdLines ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    return colour;
}

void yuvToBgra(const AVFrame& frame, const Colour& colour, pixels::View picture, bool dither)
{
    const ToBgra matrix(scaleOf(colour));
    const auto [columns, rows] = samplingOf(AVPixelFormat(frame.format));
    const int bits = av_pix_fmt_desc_get(AVPixelFormat(frame.format))->comp[0].depth;
    const bool alpha = hasAlpha(AVPixelFormat(frame.format));
    const int width = picture.width();
    const int chromaWidth = (width + columns) >> columns;
    pixels::rows::anyOrderRuns(picture.extent(), [&](int first, int last) {
        std::vector<u8> narrow(bits > 8 ? std::size_t(width) * kPlanes : 0);
        std::vector<u8> wide(columns ? std::size_t(width) * 2 : 0);
        const auto sampleRow = [&](int plane, int row, int count) -> const u8* {
            const u8* const samples = planeRow(frame.data[plane], frame.linesize[plane], row);
            if (bits == 8)
                return samples;
            narrowed(
                samples, narrow.data() + plane * width, count, bits, narrowingOffsets(row, bits - 8, dither));
            return narrow.data() + plane * width;
        };
        for (int top = first; top < last; ++top) {
            const u8* const y = sampleRow(0, top, width);
            const u8* u = sampleRow(1, top >> rows, chromaWidth);
            const u8* v = sampleRow(2, top >> rows, chromaWidth);
            Bgra* const to = picture.pictureRow(top).data();
            if (columns) {
                doubled(u, wide.data(), width);
                doubled(v, wide.data() + width, width);
                u = wide.data();
                v = wide.data() + width;
            }
            pixels::widest([=] { rowToBgra(matrix, y, u, v, to, width); });
            if (alpha)
                alphaToRow(sampleRow(3, top, width), to, width);
        }
    });
}

void bgraToYuv(pixels::ConstView picture, const Colour& colour, AVFrame& frame)
{
    const FromBgra matrix(scaleOf(colour));
    const bool alpha = hasAlpha(AVPixelFormat(frame.format));
    const auto [columns, rows] = samplingOf(AVPixelFormat(frame.format));
    const int width = picture.width();
    const int height = picture.height();
    // In runs of chroma rows, each of which covers one or two rows of pixels.
    pixels::rows::anyOrderRuns({width << rows, (height + rows) >> rows}, [&](int first, int last) {
        std::vector<int> sums(std::size_t(width) * 2);
        for (int row = first; row < last; ++row) {
            const int top = row << rows;
            const int below = std::min(top + rows, height - 1);
            const Bgra* const upper = picture.pictureRow(top).data();
            const Bgra* const lower = picture.pictureRow(below).data();
            u8* const upperY = planeRow(frame.data[0], frame.linesize[0], top);
            u8* const lowerY = planeRow(frame.data[0], frame.linesize[0], below);
            u8* const u = planeRow(frame.data[1], frame.linesize[1], row);
            u8* const v = planeRow(frame.data[2], frame.linesize[2], row);
            int* const uSums = sums.data();
            int* const vSums = sums.data() + width;
            const int shared = columns;
            pixels::widest([=] {
                lumaRow(matrix, upper, upperY, width);
                if (lower != upper)
                    lumaRow(matrix, lower, lowerY, width);
                chromaSums(matrix.u, upper, lower, uSums, width);
                chromaSums(matrix.v, upper, lower, vSums, width);
                chromaRow(uSums, u, width, shared);
                chromaRow(vSums, v, width, shared);
            });
            if (alpha) {
                rowToAlpha(upper, planeRow(frame.data[3], frame.linesize[3], top), width);
                rowToAlpha(lower, planeRow(frame.data[3], frame.linesize[3], below), width);
            }
        }
    });
}

} // namespace tool::media
