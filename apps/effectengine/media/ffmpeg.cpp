// Small things around FFmpeg's libraries.
#include "effectengine/media/ffmpeg.h"

#include <new>
#include <stdexcept>

namespace media {

Frame makeFrame()
{
    Frame frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

Packet makePacket()
{
    Packet packet(av_packet_alloc());
    if (!packet)
        throw std::bad_alloc();
    return packet;
}

std::string errorText(int result)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(result, text, sizeof text);
    return text;
}

int require(int result, const char* what)
{
    if (result < 0)
        throw std::runtime_error(std::string(what) + ": " + errorText(result));
    return result;
}

void silence() { av_log_set_level(AV_LOG_QUIET); }

} // namespace media
