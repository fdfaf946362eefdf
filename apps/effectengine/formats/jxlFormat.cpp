// JPEG XL pictures over libjxl.
#include "effectengine/formats/PictureFormat.h"
#include "effectengine/formats/QuietStderr.h"

#include <jxl/decode.h>
#include <jxl/encode.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace tool {

namespace {

using Outcome = pictures::Decoded::Outcome;
using Decoder = std::unique_ptr<JxlDecoder, decltype(&JxlDecoderDestroy)>;
using Encoder = std::unique_ptr<JxlEncoder, decltype(&JxlEncoderDestroy)>;

constexpr int kQuality = 90;
constexpr int kWithoutLoss = 100;
// By Effort, of 1 to 9. Without loss 7 takes eighteen times as long as 3 for files 2 % smaller.
constexpr int kEfforts[]{7, 3, 8};
constexpr int kEffortsWithoutLoss[]{3, 1, 7};
constexpr std::size_t kExifOffset = 4;        // a number in front of the block
constexpr std::size_t kLargestBox = 64 << 20; // of metadata
constexpr std::size_t kPart = 1 << 16;

/// Reads what a file holds, event by event. The library turns pictures upright.
class Reader {
public:
    explicit Reader(std::span<const u8> file)
        : file_(file),
          decoder_(JxlDecoderCreate(nullptr), &JxlDecoderDestroy)
    {
    }

    /// @param picture  receives the first picture; null for none
    void read(RawPicture* picture)
    {
        const int events =
            JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_BOX | (picture ? JXL_DEC_FULL_IMAGE : 0);
        if (!decoder_ || JxlDecoderSubscribeEvents(decoder_.get(), events) != JXL_DEC_SUCCESS)
            return;
        JxlDecoderSetUnpremultiplyAlpha(decoder_.get(), JXL_TRUE);
        JxlDecoderSetDecompressBoxes(decoder_.get(), JXL_TRUE);
        JxlDecoderSetInput(decoder_.get(), file_.data(), file_.size());
        JxlDecoderCloseInput(decoder_.get());
        while (step(JxlDecoderProcessInput(decoder_.get()), picture)) { }
        keepBox();
    }

    FormatHeader& header() { return header_; }

private:
    /// @return false when there is nothing more to read
    bool step(JxlDecoderStatus status, RawPicture* picture)
    {
        switch (status) {
        case JXL_DEC_BASIC_INFO:
            return takeSize();
        case JXL_DEC_COLOR_ENCODING:
            takeProfile();
            return true;
        case JXL_DEC_BOX:
            return beginBox();
        case JXL_DEC_BOX_NEED_MORE_OUTPUT:
            return growBox();
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
            return beginPicture(*picture);
        case JXL_DEC_FULL_IMAGE:
            finishPicture(*picture);
            return false;
        default:
            return false;
        }
    }

    bool takeSize()
    {
        if (JxlDecoderGetBasicInfo(decoder_.get(), &info_) != JXL_DEC_SUCCESS)
            return false;
        header_.width = info_.xsize;
        header_.height = info_.ysize;
        header_.orientation = 1;
        header_.pictures = info_.have_animation ? 2 : 1; // how many is not said
        if (pictures::tooLarge(info_.xsize, info_.ysize)) {
            header_.outcome = Outcome::tooLarge;
            return false;
        }
        for (u32 i = 0; i < info_.num_extra_channels; ++i) {
            JxlExtraChannelInfo channel;
            if (JxlDecoderGetExtraChannelInfo(decoder_.get(), i, &channel) != JXL_DEC_SUCCESS
                || channel.type == JXL_CHANNEL_BLACK) // inks, which the library hands out as colours
                return false;
        }
        header_.outcome = Outcome::picture;
        return true;
    }

    // Pictures that are stored in the encoder's own colours come in those that the decoder can make of them.
    // Where the original ones have no number, these would be linear light, of which 8 bits are too few.
    void takeProfile()
    {
        JxlColorEncoding original;
        if (!info_.uses_original_profile
            && JxlDecoderGetColorAsEncodedProfile(
                   decoder_.get(), nullptr, JXL_COLOR_PROFILE_TARGET_ORIGINAL, &original)
                != JXL_DEC_SUCCESS) {
            JxlColorEncoding srgb;
            JxlColorEncodingSetToSRGB(&srgb, info_.num_color_channels == 1);
            JxlDecoderSetPreferredColorProfile(decoder_.get(), &srgb);
        }
        std::size_t size = 0;
        constexpr auto kOfPixels = JXL_COLOR_PROFILE_TARGET_DATA;
        if (JxlDecoderGetICCProfileSize(decoder_.get(), nullptr, kOfPixels, &size) != JXL_DEC_SUCCESS)
            return;
        JxlColorEncoding encoding;
        if (JxlDecoderGetColorAsEncodedProfile(decoder_.get(), nullptr, kOfPixels, &encoding)
                == JXL_DEC_SUCCESS
            && isSrgb(encoding))
            return;
        header_.profile.resize(size);
        if (JxlDecoderGetColorAsICCProfile(
                decoder_.get(), nullptr, kOfPixels, header_.profile.data(), header_.profile.size())
            != JXL_DEC_SUCCESS)
            header_.profile.clear();
    }

    static bool isSrgb(const JxlColorEncoding& encoding)
    {
        return encoding.transfer_function == JXL_TRANSFER_FUNCTION_SRGB
            && encoding.white_point == JXL_WHITE_POINT_D65
            && (encoding.color_space == JXL_COLOR_SPACE_GRAY || encoding.primaries == JXL_PRIMARIES_SRGB);
    }

    bool beginBox()
    {
        keepBox();
        JxlBoxType type{};
        if (JxlDecoderGetBoxType(decoder_.get(), type, JXL_TRUE) != JXL_DEC_SUCCESS)
            return false;
        if (std::memcmp(type, "Exif", sizeof type) != 0 || !header_.exif.empty())
            return true;
        box_.resize(kPart);
        return JxlDecoderSetBoxBuffer(decoder_.get(), box_.data(), box_.size()) == JXL_DEC_SUCCESS;
    }

    bool growBox()
    {
        const std::size_t done = box_.size() - JxlDecoderReleaseBoxBuffer(decoder_.get());
        box_.resize(done + std::max(kPart, done));
        return box_.size() < kLargestBox
            && JxlDecoderSetBoxBuffer(decoder_.get(), box_.data() + done, box_.size() - done)
            == JXL_DEC_SUCCESS;
    }

    // What stands in the box, of which the last event has filled a part.
    void keepBox()
    {
        if (box_.empty())
            return;
        box_.resize(box_.size() - JxlDecoderReleaseBoxBuffer(decoder_.get()));
        if (box_.size() > kExifOffset) {
            u32 offset = 0;
            for (std::size_t i = 0; i < kExifOffset; ++i)
                offset = offset << 8 | box_[i];
            if (offset < box_.size() - kExifOffset)
                header_.exif.assign(box_.begin() + std::ptrdiff_t(kExifOffset + offset), box_.end());
        }
        box_.clear();
    }

    bool beginPicture(RawPicture& picture)
    {
        picture.width = info_.xsize;
        picture.height = info_.ysize;
        picture.deep = info_.bits_per_sample > 8;
        allocate(picture);
        const JxlPixelFormat format{4, picture.deep ? JXL_TYPE_UINT16 : JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
        const std::size_t size = std::size_t{picture.width} * picture.height * (picture.deep ? 8 : 4);
        const bool begun = picture.samples
            && JxlDecoderSetImageOutBuffer(decoder_.get(), &format, picture.samples.get(), size)
                == JXL_DEC_SUCCESS;
        picture.outcome = Outcome::unreadable; // so far
        return begun;
    }

    template <class Sample> static void swapRedAndBlue(RawPicture& picture)
    {
        auto* sample = reinterpret_cast<Sample*>(picture.samples.get());
        for (std::size_t i = std::size_t{picture.width} * picture.height; i-- > 0; sample += 4)
            std::swap(sample[0], sample[2]);
    }

    static void finishPicture(RawPicture& picture)
    {
        picture.deep ? swapRedAndBlue<u16>(picture) : swapRedAndBlue<u8>(picture);
        picture.outcome = Outcome::picture;
    }

    std::span<const u8> file_;
    Decoder decoder_;
    JxlBasicInfo info_{};
    FormatHeader header_;
    std::vector<u8> box_; ///< of a box that is being read
};

/// The library's measure of what may be lost, for a quality as its own programs count it.
float distanceFor(int quality)
{
    if (quality >= 30)
        return 0.1f + float(kWithoutLoss - quality) * 0.09f;
    return std::min(15.0f, 6.4f + std::pow(2.5f, float(30 - quality) / 5.0f) / 6.25f);
}

bool describe(JxlEncoder* encoder, const PictureToSave& source, bool lossless)
{
    JxlBasicInfo info;
    JxlEncoderInitBasicInfo(&info);
    info.xsize = source.width;
    info.ysize = source.height;
    info.bits_per_sample = 8;
    info.num_color_channels = 3;
    info.num_extra_channels = source.opaque ? 0 : 1;
    info.alpha_bits = source.opaque ? 0 : 8;
    info.uses_original_profile = lossless;
    if (JxlEncoderSetBasicInfo(encoder, &info) != JXL_ENC_SUCCESS)
        return false;
    if (!source.profile.empty())
        return JxlEncoderSetICCProfile(encoder, source.profile.data(), source.profile.size())
            == JXL_ENC_SUCCESS;
    JxlColorEncoding srgb;
    JxlColorEncodingSetToSRGB(&srgb, JXL_FALSE);
    return JxlEncoderSetColorEncoding(encoder, &srgb) == JXL_ENC_SUCCESS;
}

bool addExif(JxlEncoder* encoder, std::span<const u8> exif)
{
    if (exif.empty())
        return true;
    std::vector<u8> box(kExifOffset);
    box.insert(box.end(), exif.begin(), exif.end());
    return JxlEncoderUseBoxes(encoder) == JXL_ENC_SUCCESS
        && JxlEncoderAddBox(encoder, "Exif", box.data(), box.size(), JXL_FALSE) == JXL_ENC_SUCCESS;
}

bool addPixels(JxlEncoder* encoder, const PictureToSave& source, const SaveOptions& options)
{
    const int quality = options.quality.value_or(kQuality);
    JxlEncoderFrameSettings* const settings = JxlEncoderFrameSettingsCreate(encoder, nullptr);
    const bool lossless = quality == kWithoutLoss;
    const int effort = (lossless ? kEffortsWithoutLoss : kEfforts)[std::size_t(options.effort)];
    const auto set = [&](JxlEncoderFrameSettingId setting, int value) {
        return settings && JxlEncoderFrameSettingsSetOption(settings, setting, value) == JXL_ENC_SUCCESS;
    };
    if (!set(JXL_ENC_FRAME_SETTING_EFFORT, effort) || !set(JXL_ENC_FRAME_SETTING_KEEP_INVISIBLE, 1))
        return false;
    if ((lossless ? JxlEncoderSetFrameLossless(settings, JXL_TRUE)
                  : JxlEncoderSetFrameDistance(settings, distanceFor(quality)))
        != JXL_ENC_SUCCESS)
        return false;
    const unsigned channels = source.opaque ? 3 : 4;
    std::vector<u8> pixels(std::size_t{source.width} * source.height * channels);
    u8* to = pixels.data();
    for (u32 y = 0; y < source.height; ++y) {
        const u8* from = source.row(y);
        for (u32 x = 0; x < source.width; ++x, from += 4, to += channels) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
            if (channels == 4)
                to[3] = from[3];
        }
    }
    const JxlPixelFormat format{channels, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
    return JxlEncoderAddImageFrame(settings, &format, pixels.data(), pixels.size()) == JXL_ENC_SUCCESS;
}

std::vector<u8> outputOf(JxlEncoder* encoder)
{
    std::vector<u8> file(kPart);
    std::size_t done = 0;
    for (;;) {
        u8* next = file.data() + done;
        std::size_t room = file.size() - done;
        const JxlEncoderStatus status = JxlEncoderProcessOutput(encoder, &next, &room);
        done = file.size() - room;
        if (status != JXL_ENC_NEED_MORE_OUTPUT) {
            file.resize(status == JXL_ENC_SUCCESS ? done : 0);
            return file;
        }
        file.resize(file.size() * 2);
    }
}

class JxlFormat final : public PictureFormat {
public:
    FormatHeader inspect(std::span<const u8> file) const override
    {
        const QuietStderr quiet;
        Reader reader(file);
        reader.read(nullptr);
        return std::move(reader.header());
    }

    RawPicture decode(std::span<const u8> file) const override
    {
        const QuietStderr quiet;
        RawPicture picture;
        Reader(file).read(&picture);
        return picture;
    }

    std::vector<u8> encode(const PictureToSave& source, const SaveOptions& options) const override
    {
        const Encoder encoder(JxlEncoderCreate(nullptr), &JxlEncoderDestroy);
        if (!encoder || !describe(encoder.get(), source, options.quality == kWithoutLoss)
            || !addExif(encoder.get(), source.exif) || !addPixels(encoder.get(), source, options))
            return {};
        JxlEncoderCloseInput(encoder.get());
        return outputOf(encoder.get());
    }
};

} // namespace

EFFECTENGINE_MODULE const PictureFormat* effectenginePictureFormat()
{
    static const JxlFormat format;
    return &format;
}

} // namespace tool
