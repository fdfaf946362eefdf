// Writing picture files: PNG and JPEG through their encoders, BMP and TGA directly.
#include "files/files.h"
#include "pictures/JpegCodec.h"
#include "pictures/PictureCodecs.h"
#include "pictures/PngEncoder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace pictures {

namespace {

std::vector<u8> encodePng(const u8* pixels, u32 width, u32 height)
{
    PngEncoder encoder(PngEffort::fast);
    const auto file = encoder.encode(
        {.top = pixels, .stride = std::ptrdiff_t{width} * 4, .width = width, .height = height});
    return {file.begin(), file.end()};
}

/// Appends numbers with their lowest byte first.
struct LittleEndian {
    std::vector<u8>& out;

    void u16s(std::initializer_list<u32> values)
    {
        for (const u32 v : values)
            out.insert(out.end(), {u8(v), u8(v >> 8)});
    }
    void u32s(std::initializer_list<u32> values)
    {
        for (const u32 v : values)
            out.insert(out.end(), {u8(v), u8(v >> 8), u8(v >> 16), u8(v >> 24)});
    }
};

/// Encodes with the header of version 4, which says that the fourth byte is alpha; older ones do not.
std::vector<u8> encodeBmp(const u8* pixels, u32 width, u32 height)
{
    constexpr u32 kFileHeader = 14, kInfoHeader = 108, kBitFields = 3, kSrgb = 0x73524742;
    constexpr u32 kPixelsPerMetre = 2835; // 72 dpi
    const u64 bytes = u64{width} * height * 4;
    if (bytes > 0xFFFFFFFFu - kFileHeader - kInfoHeader)
        return {};
    std::vector<u8> out;
    out.reserve(kFileHeader + kInfoHeader + bytes);
    LittleEndian put{out};
    out.insert(out.end(), {'B', 'M'});
    put.u32s({u32(kFileHeader + kInfoHeader + bytes), 0, kFileHeader + kInfoHeader});
    put.u32s({kInfoHeader, width, height});
    put.u16s({1, 32});
    put.u32s({kBitFields, u32(bytes), kPixelsPerMetre, kPixelsPerMetre, 0, 0});
    put.u32s({0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000, kSrgb});
    out.resize(kFileHeader + kInfoHeader); // end points and gammas, unused with sRGB
    for (u32 y = height; y-- > 0;)         // the bottom row comes first
        out.insert(out.end(), pixels + std::size_t{y} * width * 4, pixels + (std::size_t{y} + 1) * width * 4);
    return out;
}

std::vector<u8> encodeTga(const u8* pixels, u32 width, u32 height)
{
    constexpr u8 kTrueColour = 2, kBits = 32, kTopRowFirst = 0x20, kAlphaBits = 8;
    if (width > 0xFFFF || height > 0xFFFF)
        return {};
    std::vector<u8> out{0, 0, kTrueColour};
    out.resize(12); // no colour map, origin 0
    LittleEndian{out}.u16s({width, height});
    out.insert(out.end(), {kBits, kTopRowFirst | kAlphaBits});
    out.insert(out.end(), pixels, pixels + std::size_t{width} * height * 4);
    return out;
}

bool writeAll(int file, const std::vector<u8>& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += std::size_t(count);
    }
    return true;
}

/// Writes and closes; false also for a descriptor that could not be opened.
bool writeInto(int file, const std::vector<u8>& bytes)
{
    if (file < 0)
        return false;
    const bool written = writeAll(file, bytes);
    return close(file) == 0 && written;
}

/// A hidden name beside the target, as a template for mkostemp.
std::string hiddenBeside(const std::filesystem::path& target)
{
    const std::string name = target.filename().string().substr(0, 200); // file systems end names at 255 bytes
    return (target.parent_path() / ("." + name + ".XXXXXX")).string();
}

/// The process's umask: the permissions that new files do not get. It is read from /proc because umask()
/// would change it for all threads.
mode_t currentMask()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (unsigned mask = 0; word == "Umask:" && status >> std::oct >> mask)
            return mode_t(mask);
    return 022;
}

} // namespace

std::optional<Kind> kindOf(std::string_view path)
{
    constexpr std::pair<std::string_view, Kind> kExtensions[] = {{"png", Kind::png}, {"jpg", Kind::jpeg},
        {"jpeg", Kind::jpeg}, {"bmp", Kind::bmp}, {"tga", Kind::tga}};
    const std::string_view extension = path.substr(path.rfind('.') + 1); // all of it when there is no dot
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
    if (extension.size() < path.size())
        for (const auto& [name, kind] : kExtensions)
            if (std::ranges::equal(extension, name, {}, lower))
                return kind;
    return std::nullopt;
}

std::vector<u8> encode(Kind kind, const u8* pixels, u32 width, u32 height)
{
    if (width == 0 || height == 0)
        return {};
    switch (kind) {
    case Kind::png:
        return encodePng(pixels, width, height);
    case Kind::jpeg:
        return encodeJpeg(pixels, width, height);
    case Kind::bmp:
        return encodeBmp(pixels, width, height);
    case Kind::tga:
        return encodeTga(pixels, width, height);
    }
    return {};
}

bool save(const std::string& path, const u8* pixels, u32 width, u32 height)
{
    const auto kind = kindOf(path);
    if (!kind)
        return false;
    // Encoded before the file is touched: a picture that cannot be written leaves an older one in place.
    const std::vector<u8> bytes = encode(*kind, pixels, width, height);
    if (bytes.empty())
        return false;
    struct stat before { };
    const bool exists = stat(path.c_str(), &before) == 0;
    if (exists && !S_ISREG(before.st_mode)) {
        // Without O_NONBLOCK a pipe that nobody reads would hold up the thread that everybody waits for.
        return writeInto(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK), bytes);
    }
    if (exists && access(path.c_str(), W_OK) != 0)
        return false; // a file that is protected is not replaced either
    const std::string target = files::behindLinks(path).string();
    std::string hidden = hiddenBeside(target);
    const int file = mkostemp(hidden.data(), O_CLOEXEC);
    if (file < 0)
        return false;
    // The permissions are those of a file that is made, or written to, under the name itself.
    fchmod(file, exists ? before.st_mode & 0777 : 0666 & ~currentMask());
    if (writeInto(file, bytes) && rename(hidden.c_str(), target.c_str()) == 0)
        return true;
    unlink(hidden.c_str());
    return false;
}

} // namespace pictures
