// WebP pictures, with and without loss, over libwebp.
#include "effectengine/formats/PictureFormat.h"

#include <webp/decode.h>
#include <webp/demux.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include <cstring>

namespace tool {

namespace {

using Outcome = pictures::Decoded::Outcome;
using Demuxer = std::unique_ptr<WebPDemuxer, decltype(&WebPDemuxDelete)>;

constexpr int kQuality = 90;
constexpr int kWithoutLoss = 100;

struct Methods {
    int lossy;    ///< 0 to 6
    int lossless; ///< a preset of 0 to 9
};
// By Effort. The next preset without loss, 9, takes twenty times as long as 6 for files 4 % smaller.
constexpr Methods kMethods[]{{4, 4}, {1, 1}, {6, 8}};

WebPData dataOf(std::span<const u8> bytes) { return {bytes.data(), bytes.size()}; }

/// The parts of a file; null for one that breaks off.
Demuxer partsOf(std::span<const u8> file)
{
    const WebPData data = dataOf(file);
    WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
    Demuxer parts(WebPDemuxPartial(&data, &state), &WebPDemuxDelete);
    if (state != WEBP_DEMUX_DONE)
        parts.reset();
    return parts;
}

std::vector<u8> chunkOf(const WebPDemuxer* parts, const char* name)
{
    WebPChunkIterator chunk{};
    std::vector<u8> bytes;
    if (WebPDemuxGetChunk(parts, name, 1, &chunk))
        bytes.assign(chunk.chunk.bytes, chunk.chunk.bytes + chunk.chunk.size);
    WebPDemuxReleaseChunkIterator(&chunk);
    return bytes;
}

/// The first picture of an animation on its canvas.
bool decodeFirst(std::span<const u8> file, RawPicture& picture)
{
    WebPAnimDecoderOptions options;
    if (!WebPAnimDecoderOptionsInit(&options))
        return false;
    options.color_mode = MODE_BGRA;
    const WebPData data = dataOf(file);
    const std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)> decoder(
        WebPAnimDecoderNew(&data, &options), &WebPAnimDecoderDelete);
    u8* canvas = nullptr;
    int moment = 0;
    if (!decoder || !WebPAnimDecoderGetNext(decoder.get(), &canvas, &moment))
        return false;
    std::memcpy(picture.samples.get(), canvas, std::size_t{picture.width} * picture.height * 4);
    return true;
}

bool decodeStill(std::span<const u8> file, RawPicture& picture)
{
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return false;
    config.output.colorspace = MODE_BGRA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {
        picture.samples.get(), int(picture.width * 4), std::size_t{picture.width} * picture.height * 4};
    return WebPDecode(file.data(), file.size(), &config) == VP8_STATUS_OK;
}

bool settingsFor(const SaveOptions& options, WebPConfig& config)
{
    const int quality = options.quality.value_or(kQuality);
    const Methods methods = kMethods[std::size_t(options.effort)];
    if (!WebPConfigInit(&config))
        return false;
    if (quality == kWithoutLoss) {
        if (!WebPConfigLosslessPreset(&config, methods.lossless))
            return false;
    } else {
        config.quality = float(quality);
        config.method = methods.lossy;
    }
    config.exact = 1; // colours under full transparency stay
    return WebPValidateConfig(&config) != 0;
}

/// Puts the file's picture and its metadata into a file together.
std::vector<u8> withMetadata(std::span<const u8> file, const PictureToSave& picture)
{
    const std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)> mux(WebPMuxNew(), &WebPMuxDelete);
    const WebPData image = dataOf(file);
    if (!mux || WebPMuxSetImage(mux.get(), &image, 0) != WEBP_MUX_OK)
        return {};
    const auto add = [&](const char* name, std::span<const u8> bytes) {
        const WebPData data = dataOf(bytes);
        return bytes.empty() || WebPMuxSetChunk(mux.get(), name, &data, 0) == WEBP_MUX_OK;
    };
    WebPData whole{};
    std::vector<u8> bytes;
    if (add("ICCP", picture.profile) && add("EXIF", picture.exif)
        && WebPMuxAssemble(mux.get(), &whole) == WEBP_MUX_OK)
        bytes.assign(whole.bytes, whole.bytes + whole.size);
    WebPDataClear(&whole);
    return bytes;
}

class WebpFormat final : public PictureFormat {
public:
    FormatHeader inspect(std::span<const u8> file) const override
    {
        FormatHeader header;
        WebPBitstreamFeatures features;
        if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK)
            return header;
        header.outcome = Outcome::picture;
        header.width = u32(features.width);
        header.height = u32(features.height);
        if (const Demuxer parts = partsOf(file)) {
            header.exif = chunkOf(parts.get(), "EXIF");
            header.profile = chunkOf(parts.get(), "ICCP");
            header.pictures = WebPDemuxGetI(parts.get(), WEBP_FF_FRAME_COUNT);
        }
        if (pictures::tooLarge(header.width, header.height))
            header.outcome = Outcome::tooLarge;
        return header;
    }

    RawPicture decode(std::span<const u8> file) const override
    {
        RawPicture picture;
        const FormatHeader header = inspect(file);
        if (header.outcome != Outcome::picture || !partsOf(file))
            return picture;
        picture.width = header.width;
        picture.height = header.height;
        allocate(picture);
        WebPBitstreamFeatures features;
        WebPGetFeatures(file.data(), file.size(), &features);
        if (picture.samples
            && !(features.has_animation ? decodeFirst(file, picture) : decodeStill(file, picture)))
            picture.outcome = Outcome::unreadable;
        return picture;
    }

    std::vector<u8> encode(const PictureToSave& source, const SaveOptions& options) const override
    {
        WebPConfig config;
        WebPPicture picture;
        if (source.width > WEBP_MAX_DIMENSION || source.height > WEBP_MAX_DIMENSION
            || !settingsFor(options, config) || !WebPPictureInit(&picture))
            return {};
        picture.width = int(source.width);
        picture.height = int(source.height);
        picture.use_argb = config.lossless;
        WebPMemoryWriter file;
        WebPMemoryWriterInit(&file);
        picture.writer = WebPMemoryWrite;
        picture.custom_ptr = &file;
        const auto import = source.opaque ? &WebPPictureImportBGRX : &WebPPictureImportBGRA;
        std::vector<u8> bytes;
        if (import(&picture, source.top, int(source.stride)) && WebPEncode(&config, &picture))
            bytes.assign(file.mem, file.mem + file.size);
        WebPMemoryWriterClear(&file);
        WebPPictureFree(&picture);
        if (!bytes.empty() && !(source.exif.empty() && source.profile.empty()))
            bytes = withMetadata(bytes, source);
        return bytes;
    }
};

} // namespace

EFFECTENGINE_MODULE const PictureFormat* effectenginePictureFormat()
{
    static const WebpFormat format;
    return &format;
}

} // namespace tool
