// AVIF pictures over libavif, with AOM's encoder. The conversions between RGB and YUV are libavif's own,
// which are more precise than the faster ones that it can take, and the same on every processor.
#include "effectengine/formats/PictureFormat.h"
#include "effectengine/formats/QuietStderr.h"

#include <avif/avif.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace tool {

namespace {

using Outcome = pictures::Decoded::Outcome;
using Image = std::unique_ptr<avifImage, decltype(&avifImageDestroy)>;
using Decoder = std::unique_ptr<avifDecoder, decltype(&avifDecoderDestroy)>;
using Encoder = std::unique_ptr<avifEncoder, decltype(&avifEncoderDestroy)>;

constexpr int kQuality = 90;
constexpr int kWithoutLoss = 100;
constexpr int kSpeeds[]{6, 9, 4}; // by Effort, of 0 to 10

/// A decoder that has read what stands around the pixels; null when that cannot be read.
Decoder opened(std::span<const u8> file)
{
    Decoder decoder(avifDecoderCreate(), &avifDecoderDestroy);
    if (!decoder)
        return decoder;
    decoder->imageDimensionLimit = 0; // sizes are looked at here
    decoder->strictFlags = AVIF_STRICT_DISABLED;
    decoder->ignoreXMP = AVIF_TRUE;
    if (avifDecoderSetIOMemory(decoder.get(), file.data(), file.size()) != AVIF_RESULT_OK
        || avifDecoderParse(decoder.get()) != AVIF_RESULT_OK)
        decoder.reset();
    return decoder;
}

/// The part of the stored picture that is meant to be seen.
avifCropRect seenPart(const avifImage& image)
{
    avifCropRect rect{};
    avifDiagnostics ignored;
    if ((image.transformFlags & AVIF_TRANSFORM_CLAP)
        && avifCropRectConvertCleanApertureBox(
            &rect, &image.clap, image.width, image.height, image.yuvFormat, &ignored))
        return rect;
    return {0, 0, image.width, image.height};
}

/// The stored picture is turned first, against the clock, and mirrored then.
int orientationOf(const avifImage& image)
{
    constexpr int kTurned[]{1, 8, 3, 6};
    constexpr int kMirrored[2][4]{{4, 5, 2, 7}, {2, 7, 4, 5}}; // top with bottom, left with right
    const unsigned turns = (image.transformFlags & AVIF_TRANSFORM_IROT) ? image.irot.angle & 3u : 0;
    return (image.transformFlags & AVIF_TRANSFORM_IMIR) ? kMirrored[image.imir.mode & 1u][turns]
                                                        : kTurned[turns];
}

FormatHeader headerOf(const avifDecoder& decoder)
{
    const avifImage& image = *decoder.image;
    const avifCropRect seen = seenPart(image);
    FormatHeader header{.outcome = Outcome::picture,
        .width = seen.width,
        .height = seen.height,
        .orientation = orientationOf(image),
        .exif = {image.exif.data, image.exif.data + image.exif.size},
        .profile = {image.icc.data, image.icc.data + image.icc.size},
        .colours = ColourCode{image.colorPrimaries, image.transferCharacteristics},
        .pictures = u32(std::max(1, decoder.imageCount))};
    if (pictures::tooLarge(image.width, image.height))
        header.outcome = Outcome::tooLarge;
    return header;
}

/// Converts to samples, of the whole picture as it is stored.
bool convert(const avifImage& image, bool deep, std::vector<u8>& samples)
{
    avifRGBImage rgb;
    avifRGBImageSetDefaults(&rgb, &image);
    rgb.depth = deep ? 16 : 8;
    rgb.format = AVIF_RGB_FORMAT_BGRA;
    rgb.chromaUpsampling = AVIF_CHROMA_UPSAMPLING_BEST_QUALITY;
    rgb.avoidLibYUV = AVIF_TRUE;
    rgb.rowBytes = image.width * (deep ? 8 : 4);
    samples.resize(std::size_t{rgb.rowBytes} * image.height);
    rgb.pixels = samples.data();
    return avifImageYUVToRGB(&image, &rgb) == AVIF_RESULT_OK;
}

void setQuality(const SaveOptions& options, avifEncoder& encoder)
{
    const int quality = options.quality.value_or(kQuality);
    encoder.codecChoice = AVIF_CODEC_CHOICE_AOM;
    encoder.maxThreads = 1;
    encoder.speed = kSpeeds[std::size_t(options.effort)];
    encoder.minQuantizer = encoder.maxQuantizer = AVIF_QUANTIZER_LOSSLESS;
    encoder.minQuantizerAlpha = encoder.maxQuantizerAlpha = AVIF_QUANTIZER_LOSSLESS;
    if (quality == kWithoutLoss)
        return;
    const int quantizer = ((kWithoutLoss - quality) * AVIF_QUANTIZER_WORST_QUALITY + 50) / 100;
    encoder.maxQuantizer = AVIF_QUANTIZER_WORST_QUALITY;
    avifEncoderSetCodecSpecificOption(&encoder, "color:end-usage", "q");
    avifEncoderSetCodecSpecificOption(
        &encoder, "color:cq-level", std::to_string(std::max(1, quantizer)).c_str());
}

/// Colours at full resolution, as in JPEG files of the tool.
Image imageOf(const PictureToSave& source, bool lossless)
{
    Image image(avifImageCreate(source.width, source.height, 8, AVIF_PIXEL_FORMAT_YUV444), &avifImageDestroy);
    if (!image)
        return image;
    image->yuvRange = AVIF_RANGE_FULL;
    image->matrixCoefficients = lossless ? AVIF_MATRIX_COEFFICIENTS_IDENTITY : AVIF_MATRIX_COEFFICIENTS_BT601;
    if (source.profile.empty()) {
        image->colorPrimaries = AVIF_COLOR_PRIMARIES_BT709;
        image->transferCharacteristics = AVIF_TRANSFER_CHARACTERISTICS_SRGB;
    } else {
        avifImageSetProfileICC(image.get(), source.profile.data(), source.profile.size());
    }
    if (!source.exif.empty())
        avifImageSetMetadataExif(image.get(), source.exif.data(), source.exif.size());
    image->transformFlags = AVIF_TRANSFORM_NONE; // the picture is upright
    avifRGBImage rgb;
    avifRGBImageSetDefaults(&rgb, image.get());
    rgb.format = AVIF_RGB_FORMAT_BGRA;
    rgb.ignoreAlpha = source.opaque;
    rgb.avoidLibYUV = AVIF_TRUE;
    std::vector<u8> rows(std::size_t{source.width} * source.height * 4);
    for (u32 y = 0; y < source.height; ++y)
        std::memcpy(
            rows.data() + std::size_t{y} * source.width * 4, source.row(y), std::size_t{source.width} * 4);
    rgb.pixels = rows.data();
    rgb.rowBytes = source.width * 4;
    if (avifImageRGBToYUV(image.get(), &rgb) != AVIF_RESULT_OK)
        image.reset();
    else if (source.opaque)
        avifImageFreePlanes(image.get(), AVIF_PLANES_A);
    return image;
}

class AvifFormat final : public PictureFormat {
public:
    FormatHeader inspect(std::span<const u8> file) const override
    {
        const QuietStderr quiet;
        const Decoder decoder = opened(file);
        return decoder ? headerOf(*decoder) : FormatHeader{};
    }

    RawPicture decode(std::span<const u8> file) const override
    {
        const QuietStderr quiet;
        RawPicture picture;
        const Decoder decoder = opened(file);
        if (!decoder || headerOf(*decoder).outcome != Outcome::picture
            || avifDecoderNextImage(decoder.get()) != AVIF_RESULT_OK)
            return picture;
        const avifImage& image = *decoder->image;
        if (pictures::tooLarge(image.width, image.height))
            return picture;
        const avifCropRect seen = seenPart(image);
        picture.width = seen.width;
        picture.height = seen.height;
        picture.deep = image.depth > 8;
        std::vector<u8> samples;
        if (!convert(image, picture.deep, samples))
            return picture;
        allocate(picture);
        const std::size_t pixel = picture.deep ? 8 : 4;
        for (u32 y = 0; picture.samples && y < seen.height; ++y)
            std::memcpy(picture.samples.get() + std::size_t{y} * seen.width * pixel,
                samples.data() + (std::size_t{seen.y + y} * image.width + seen.x) * pixel,
                seen.width * pixel);
        return picture;
    }

    std::vector<u8> encode(const PictureToSave& source, const SaveOptions& options) const override
    {
        const Image image = imageOf(source, options.quality == kWithoutLoss);
        const Encoder encoder(avifEncoderCreate(), &avifEncoderDestroy);
        if (!image || !encoder)
            return {};
        setQuality(options, *encoder);
        avifRWData file = AVIF_DATA_EMPTY;
        std::vector<u8> bytes;
        if (avifEncoderWrite(encoder.get(), image.get(), &file) == AVIF_RESULT_OK)
            bytes.assign(file.data, file.data + file.size);
        avifRWDataFree(&file);
        return bytes;
    }
};

} // namespace

EFFECTENGINE_MODULE const PictureFormat* effectenginePictureFormat()
{
    static const AvifFormat format;
    return &format;
}

} // namespace tool
