// The numbers of threads.
#include "effectengine/media/threadShares.h"

#include <algorithm>
#include <thread>

namespace tool::media {

namespace {

constexpr int kMostDecoderThreads = 8;
constexpr unsigned long long kPictureMemory = 1ull << 30;
constexpr unsigned long long kBytesOfPixel = 16; // the frame, filtered, compressed, and waiting

} // namespace

unsigned coreCount() { return std::max(1u, std::thread::hardware_concurrency()); }

int decoderThreads(unsigned cores)
{
    return cores == 1 ? 1 : std::clamp(int(cores / 2), 2, kMostDecoderThreads);
}

unsigned pictureEncoders(unsigned cores, pixels::Extent size)
{
    const unsigned long long bytes =
        kBytesOfPixel * (unsigned long long)(size.width) * (unsigned long long)(size.height);
    return unsigned(std::clamp(kPictureMemory / std::max(1ull, bytes), 1ull, (unsigned long long)(cores)));
}

} // namespace tool::media
