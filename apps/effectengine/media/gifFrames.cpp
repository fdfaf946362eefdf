// The control block before a frame's pixels tells what becomes of it.
#include "effectengine/media/gifFrames.h"

#include <cstring>
#include <new>

namespace tool::media {

namespace {

constexpr int kExtension = 0x21;
constexpr int kControl = 0xf9;

int sizeOfTable(int flags) { return flags & 0x80 ? 3 << ((flags & 7) + 1) : 0; }

} // namespace

void clearBeforeNext(AVPacket& packet)
{
    constexpr int kDisposal = 0x1c;
    constexpr int kToBackground = 2 << 2;
    constexpr int kHeader = 13;
    if (av_packet_make_writable(&packet) < 0)
        throw std::bad_alloc();
    std::uint8_t* const data = packet.data;
    int at = 0;
    if (packet.size > kHeader && std::memcmp(data, "GIF8", 4) == 0)
        at = kHeader + sizeOfTable(data[10]);
    while (at + 4 < packet.size && data[at] == kExtension) {
        if (data[at + 1] == kControl) {
            data[at + 3] = std::uint8_t((data[at + 3] & ~kDisposal) | kToBackground);
            return;
        }
        at += 2;
        while (at < packet.size && data[at])
            at += data[at] + 1;
        ++at;
    }
}

} // namespace tool::media
