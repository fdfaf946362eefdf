// The tables of containers' muxers, and what these do not tell.
#include "effectengine/media/trackPlaces.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tool::media {

bool holds(const AVOutputFormat& container, AVCodecID codec)
{
    // Streams of MPEG tell the library nothing but the usual codec.
    constexpr std::array kTransport{AV_CODEC_ID_MP2, AV_CODEC_ID_MP3, AV_CODEC_ID_AAC, AV_CODEC_ID_AC3,
        AV_CODEC_ID_EAC3, AV_CODEC_ID_DTS, AV_CODEC_ID_OPUS, AV_CODEC_ID_DVB_SUBTITLE};
    constexpr std::array kProgram{
        AV_CODEC_ID_MP2, AV_CODEC_ID_MP3, AV_CODEC_ID_AC3, AV_CODEC_ID_DTS, AV_CODEC_ID_DVD_SUBTITLE};
    const std::string_view name = container.name;
    if (name == "mpegts")
        return std::ranges::find(kTransport, codec) != kTransport.end();
    if (name == "mpeg" || name == "vob" || name == "dvd" || name == "svcd")
        return std::ranges::find(kProgram, codec) != kProgram.end();
    return avformat_query_codec(&container, codec, FF_COMPLIANCE_NORMAL) == 1;
}

int soundsIn(const AVOutputFormat& container)
{
    if (container.audio_codec == AV_CODEC_ID_NONE)
        return 0;
    return std::string_view(container.name) == "flv" ? 1 : std::numeric_limits<int>::max();
}

std::string nameOf(const AVStream& stream)
{
    const AVCodecParameters& stored = *stream.codecpar;
    std::string name = "track " + std::to_string(stream.index + 1);
    if (const AVDictionaryEntry* const language = av_dict_get(stream.metadata, "language", nullptr, 0))
        if (std::string_view(language->value) != "und")
            name += ", " + std::string(language->value);
    if (stored.codec_id != AV_CODEC_ID_NONE)
        return name + ", " + avcodec_get_name(stored.codec_id);
    if (!stored.codec_tag)
        return name + ", unknown codec";
    char tag[AV_FOURCC_MAX_STRING_SIZE] = "";
    return name + ", unknown codec " + av_fourcc_make_string(tag, stored.codec_tag);
}

} // namespace tool::media
