// Copies of rows by stores that bypass the caches.
#include "pixels/streamedCopy.h"

#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace pixels {

namespace {

#if defined(__x86_64__)

constexpr std::size_t kLine = 64;

void copyBytes(const u8* from, u8* to, std::size_t count)
{
    // Only whole lines of the cache go to memory in one piece.
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(to) % kLine;
    if (count < before + kLine) {
        std::memcpy(to, from, count);
        return;
    }
    std::memcpy(to, from, before);
    std::size_t i = before;
    for (; i + kLine <= count; i += kLine) {
        for (std::size_t part = i; part < i + kLine; part += sizeof(__m128i))
            _mm_stream_si128(reinterpret_cast<__m128i*>(to + part),
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + part)));
    }
    std::memcpy(to + i, from + i, count - i);
}

// Streamed stores are seen by other threads in no order unless this one waits for them.
void waitForStores() { _mm_sfence(); }

#else

void copyBytes(const u8* from, u8* to, std::size_t count) { std::memcpy(to, from, count); }
void waitForStores() { }

#endif

} // namespace

void copyStreamed(ConstView src, View dst)
{
    for (int y = 0; y < dst.height(); ++y) {
        const auto from = src.row(y);
        copyBytes(reinterpret_cast<const u8*>(from.data()), reinterpret_cast<u8*>(dst.row(y).data()),
            from.size_bytes());
    }
    waitForStores();
}

} // namespace pixels
