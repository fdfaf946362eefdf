// Walks over the chunks of PNG files and the segments of JPEG files, and sizes of BMP and TGA files.
#include "pictures/wholePicture.h"

#include "pictures/JpegCodec.h"

#include <libdeflate.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace pictures {

namespace {

using Bytes = std::span<const u8>;

constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1a\n";

bool beginsWith(Bytes file, std::string_view signature)
{
    return file.size() >= signature.size()
        && std::memcmp(file.data(), signature.data(), signature.size()) == 0;
}

u32 bigEndian32(const u8* at) { return u32(at[0]) << 24 | u32(at[1]) << 16 | u32(at[2]) << 8 | at[3]; }
u32 littleEndian16(const u8* at) { return u32(at[1]) << 8 | at[0]; }
u32 littleEndian32(const u8* at) { return littleEndian16(at + 2) << 16 | littleEndian16(at); }

bool isWholePng(Bytes file)
{
    constexpr std::size_t kFrame = 12; // length, type and checksum
    bool header = false, pixels = false;
    for (Bytes rest = file.subspan(kPngSignature.size()); rest.size() >= kFrame;) {
        const std::size_t length = bigEndian32(rest.data());
        if (length > rest.size() - kFrame)
            return false;
        const u8* const type = rest.data() + 4;
        if (libdeflate_crc32(0, type, 4 + length) != bigEndian32(type + 4 + length))
            return false;
        header |= std::memcmp(type, "IHDR", 4) == 0;
        pixels |= std::memcmp(type, "IDAT", 4) == 0;
        if (std::memcmp(type, "IEND", 4) == 0)
            return header && pixels;
        rest = rest.subspan(kFrame + length);
    }
    return false;
}

bool isWholeJpeg(Bytes file)
{
    enum : u8 { kStuffed = 0x00, kTemporary = 0x01, kRestart0 = 0xD0, kStart = 0xD8 };
    enum : u8 { kEnd = 0xD9, kScan = 0xDA, kMark = 0xFF };
    bool scanned = false;
    for (std::size_t at = 0;;) {
        // What stands between segments belongs to a scan: codes, in which marks are followed by a zero.
        const auto* const mark = at < file.size()
            ? static_cast<const u8*>(std::memchr(file.data() + at, kMark, file.size() - at))
            : nullptr;
        if (!mark)
            return false;
        at = std::size_t(mark - file.data()) + 1;
        if (at >= file.size())
            return false;
        const u8 kind = file[at];
        if (kind == kMark) // filling
            continue;
        ++at;
        if (kind == kEnd)
            return scanned;
        if (kind == kStuffed || kind == kTemporary || (kind >= kRestart0 && kind <= kStart))
            continue;
        if (file.size() - at < 2)
            return false;
        const std::size_t length = std::size_t(file[at]) << 8 | file[at + 1];
        if (length < 2 || length > file.size() - at)
            return false;
        at += length;
        scanned |= kind == kScan;
    }
}

std::optional<bool> isWholeBmp(Bytes file)
{
    constexpr std::size_t kHeaders = 54;
    constexpr u32 kPlain = 0, kBitFields = 3;
    if (file.size() < kHeaders)
        return false;
    const u8* const info = file.data() + 14;
    const u32 compression = littleEndian32(info + 16);
    if (littleEndian32(info) < 40 || (compression != kPlain && compression != kBitFields))
        return {};
    const u64 width = littleEndian32(info + 4);
    const u64 height = u64(std::abs(i64(i32(littleEndian32(info + 8)))));
    const u64 row = (width * littleEndian16(info + 14) + 31) / 32 * 4;
    return row * height <= file.size() && littleEndian32(file.data() + 10) <= file.size() - row * height;
}

// TGA files have no signature: a file counts as one when its header holds nothing but sound values.
std::optional<bool> isWholeTga(Bytes file)
{
    constexpr std::size_t kHeader = 18;
    constexpr u8 kColours = 2, kGreys = 3;
    if (file.size() < kHeader || file[1] != 0 || (file[2] != kColours && file[2] != kGreys))
        return {};
    const u64 pixels = u64{littleEndian16(&file[12])} * littleEndian16(&file[14]);
    const u8 bits = file[16];
    if (pixels == 0 || (bits != 8 && bits != 16 && bits != 24 && bits != 32))
        return {};
    return kHeader + file[0] + pixels * (bits / 8) <= file.size();
}

} // namespace

std::optional<bool> isWholeByStructure(Bytes file)
{
    if (beginsWith(file, kPngSignature))
        return isWholePng(file);
    if (beginsLikeJpeg(file))
        return isWholeJpeg(file);
    if (beginsWith(file, "BM"))
        return isWholeBmp(file);
    return isWholeTga(file);
}

} // namespace pictures
