// codecs: prints what this machine's FFmpeg libraries can read and write.
#include "effectengine/clipVerbs.h"
#include "effectengine/media/DecoderWatch.h"

#include <cstdio>

namespace tool {

void runCodecs()
{
    media::DecoderWatch::listen();
    std::printf("libavformat %s\nlibavcodec %s\n", AV_STRINGIFY(LIBAVFORMAT_VERSION),
        AV_STRINGIFY(LIBAVCODEC_VERSION));
    for (const AVCodecID id :
        {AV_CODEC_ID_H264, AV_CODEC_ID_HEVC, AV_CODEC_ID_VP9, AV_CODEC_ID_AV1, AV_CODEC_ID_MPEG4,
            AV_CODEC_ID_FFV1, AV_CODEC_ID_GIF, AV_CODEC_ID_PNG, AV_CODEC_ID_AAC, AV_CODEC_ID_OPUS}) {
        const AVCodec* const encoder = avcodec_find_encoder(id);
        const AVCodec* const decoder = avcodec_find_decoder(id);
        std::printf("%-8s read: %-14s write: %s\n", avcodec_get_name(id), decoder ? decoder->name : "no",
            encoder ? encoder->name : "no");
    }
}

} // namespace tool
