// Conversion by yuvPixels where format and size allow it, else by the scaling library.
#include "effectengine/media/PictureConversion.h"

#include "effectengine/media/orderedDither.h"
#include "effectengine/media/yuvPixels.h"
#include "pixels/rows.h"
#include "pixels/sample.h"

namespace tool::media {

namespace {

// Settings of the scaling library: the same bytes on every processor, chroma interpolated.
constexpr int kScaling =
    SWS_BICUBIC | SWS_ACCURATE_RND | SWS_BITEXACT | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT;
constexpr int kUnity = 1 << 16;

// The rows of a frame of four bytes a pixel, whose top row comes first, in the engine's order.
pixels::View viewOf(const AVFrame& frame)
{
    return {frame.data[0] + std::ptrdiff_t(frame.linesize[0]) * (frame.height - 1),
        {frame.width, frame.height}, -std::ptrdiff_t(frame.linesize[0])};
}

void allocate(Frame& frame, AVPixelFormat format, pixels::Extent size)
{
    if (!frame)
        frame = makeFrame();
    if (frame->width == size.width && frame->height == size.height && frame->format == format)
        return;
    av_frame_unref(frame.get());
    frame->format = format;
    frame->width = size.width;
    frame->height = size.height;
    require(av_frame_get_buffer(frame.get(), 0), "frame");
}

bool isDeep(AVPixelFormat format)
{
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor && descriptor->comp[0].depth > 8 && !(descriptor->flags & AV_PIX_FMT_FLAG_PAL);
}

// The code of full light in the scaling library's 16 bits. It brings red, green and blue there by zeros
// behind shorter codes, but scales pixels that are not in planes as luma and chroma, whose codes become those
// of 8 bits times 256.
int wholeOf(const AVFrame& frame, pixels::Extent size)
{
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(AVPixelFormat(frame.format));
    const bool scaled = frame.width != size.width || frame.height != size.height;
    if (!(format.flags & AV_PIX_FMT_FLAG_RGB) || (scaled && !(format.flags & AV_PIX_FMT_FLAG_PLANAR)))
        return 255 * 256;
    return 65536 - (1 << std::max(2, 16 - format.comp[0].depth)); // it may lose the lowest two bits
}

// Converts planes of 16 bits of green, blue, red and alpha, whose top row comes first.
// @param whole  the code that becomes 255
void dither(const AVFrame& frame, int whole, pixels::View picture)
{
    pixels::rows::anyOrder(picture.extent(), [&](int y) {
        const int row = picture.height() - 1 - y; // from the top
        const auto plane = [&](int i) {
            return reinterpret_cast<const u16*>(frame.data[i] + std::ptrdiff_t(frame.linesize[i]) * row);
        };
        const u16* const blue = plane(1);
        const u16* const green = plane(0);
        const u16* const red = plane(2);
        const u16* const alpha = plane(3);
        const auto to = picture.row(y);
        for (int x = 0; x < picture.width(); ++x) {
            const int offset = (2 * ditherRank(x % kDitherSize, row % kDitherSize) + 1) * whole / 128;
            const auto byte = [=](int sample) { return u8(std::min((sample * 255 + offset) / whole, 255)); };
            to[std::size_t(x)] = {byte(blue[x]), byte(green[x]), byte(red[x]), byte(alpha[x])};
        }
    });
}

void turn(pixels::ConstView from, const Orientation& orientation, pixels::View to)
{
    const int right = to.width() - 1;
    const int top = to.height() - 1;
    pixels::sample(from, to, [=](int x, int y) -> pixels::Point {
        int column = orientation.mirrorsColumns ? right - x : x;
        int line = orientation.mirrorsRows ? y : top - y; // from the top
        if (orientation.swapsSides)
            std::swap(column, line);
        return {column, from.height() - 1 - line};
    });
}

} // namespace

void FrameScaler::scale(const AVFrame& from, const Colour& fromColour, AVFrame& to, const Colour& toColour)
{
    const Shape shape{from.width, from.height, from.format};
    if (!context_ || !(shape == shape_)) {
        context_.reset(sws_getContext(from.width, from.height, AVPixelFormat(from.format), to.width,
            to.height, AVPixelFormat(to.format), kScaling, nullptr, nullptr, nullptr));
        if (!context_)
            throw std::runtime_error(
                std::string("no conversion from ") + av_get_pix_fmt_name(AVPixelFormat(from.format)));
        sws_setColorspaceDetails(context_.get(), sws_getCoefficients(fromColour.space),
            fromColour.range == AVCOL_RANGE_JPEG, sws_getCoefficients(toColour.space),
            toColour.range == AVCOL_RANGE_JPEG, 0, kUnity, kUnity);
        shape_ = shape;
    }
    require(sws_scale(context_.get(), from.data, from.linesize, 0, from.height, to.data, to.linesize),
        "conversion");
}

ToPicture::ToPicture(const ClipInfo& clip, int width, int height)
    : clip_(clip),
      size_{width, height},
      stored_(size_)
{
    if (clip_.orientation.swapsSides)
        std::swap(stored_.width, stored_.height);
    if (!clip_.orientation.upright())
        turned_.resize(std::size_t(width) * std::size_t(height) * 4);
}

void ToPicture::convert(const AVFrame& frame, pixels::View picture)
{
    if (clip_.orientation.upright())
        return convertStored(frame, picture);
    const pixels::View stored(turned_.data(), stored_);
    convertStored(frame, stored);
    turn(stored, clip_.orientation, picture);
}

void ToPicture::convertStored(const AVFrame& frame, pixels::View picture)
{
    if (clip_.isToneMapped()) {
        if (!toneMapper_)
            toneMapper_.emplace(clip_, clip_.depth.dither);
        return scale(toneMapper_->map(frame), {.range = AVCOL_RANGE_JPEG}, picture);
    }
    const auto format = AVPixelFormat(frame.format);
    const Colour colour = completed(clip_.colour, format, frame.width, frame.height);
    if ((isPlainYuv(format) || isDeepYuv(format)) && hasYuvMatrix(colour.space)
        && frame.width == picture.width() && frame.height == picture.height())
        yuvToBgra(frame, colour, picture, clip_.depth.dither);
    else
        scale(frame, colour, picture);
}

void ToPicture::scale(const AVFrame& frame, const Colour& colour, pixels::View picture)
{
    const bool dithers = clip_.depth.dither && isDeep(AVPixelFormat(frame.format));
    allocate(scaled_, dithers ? AV_PIX_FMT_GBRAP16LE : AV_PIX_FMT_BGRA, picture.extent());
    scaler_.scale(frame, colour, *scaled_, {.range = AVCOL_RANGE_JPEG});
    if (dithers)
        dither(*scaled_, wholeOf(frame, picture.extent()), picture);
    else
        pixels::rows::copy(viewOf(*scaled_), picture);
}

void FromPicture::convert(pixels::ConstView picture, AVFrame& frame)
{
    av_frame_unref(&frame);
    frame.format = format_;
    frame.width = picture.width();
    frame.height = picture.height();
    require(av_frame_get_buffer(&frame, 0), "frame");
    const Colour colour = completed(colour_, format_, picture.width(), picture.height());
    frame.color_range = colour.range;
    frame.colorspace = colour.space;
    if (isPlainYuv(format_) && hasYuvMatrix(colour.space))
        return bgraToYuv(picture, colour, frame);
    const auto copy = [&](pixels::View to) {
        if (keepsAlpha_)
            return pixels::rows::copy(picture, to);
        pixels::rows::map(picture, to, [](pixels::Bgra p) -> pixels::Bgra { return {p.b, p.g, p.r, 255}; });
    };
    if (format_ == AV_PIX_FMT_BGRA)
        return copy(viewOf(frame));
    if (format_ == AV_PIX_FMT_RGBA) {
        const unsigned char opaque = keepsAlpha_ ? 0 : 255;
        return pixels::rows::map(picture, viewOf(frame), [=](pixels::Bgra p) -> pixels::Bgra {
            return {p.r, p.g, p.b, u8(p.a | opaque)};
        });
    }
    // The library may read a little beyond the last row, which an image of the engine does not allow.
    allocate(copied_, AV_PIX_FMT_BGRA, picture.extent());
    copy(viewOf(*copied_));
    scaler_.scale(*copied_, {.range = AVCOL_RANGE_JPEG}, frame, colour);
}

void blacken(pixels::View picture)
{
    pixels::rows::map(picture, picture, [](pixels::Bgra) -> pixels::Bgra { return {0, 0, 0, 255}; });
}

} // namespace tool::media
