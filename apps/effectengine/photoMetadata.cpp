// Metadata in the segments of JPEG files and the chunks of PNG files.
#include "effectengine/photoMetadata.h"

#include "effectengine/exif.h"
#include "pixels/sample.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

namespace tool {

namespace {

using namespace std::string_view_literals;
using Bytes = std::span<const u8>;

constexpr auto kJpegSignature = "\xFF\xD8"sv;
constexpr auto kPngSignature = "\x89PNG\r\n\x1A\n"sv;
constexpr auto kExifName = "Exif\0\0"sv;
constexpr auto kProfileName = "ICC_PROFILE\0"sv;
constexpr u8 kApp0 = 0xE0, kApp1 = 0xE1, kApp2 = 0xE2, kStartOfScan = 0xDA;
constexpr std::size_t kSegmentBytes = 0xFFFF - 2;                             // without the length itself
constexpr std::size_t kProfilePart = kSegmentBytes - kProfileName.size() - 2; // less number and count
constexpr std::size_t kLargestProfile = 255 * kProfilePart;
constexpr std::size_t kProfileHeader = 128;
constexpr std::size_t kChunkFrame = 12; // length, name and checksum

bool startsWith(Bytes bytes, std::string_view text)
{
    return bytes.size() >= text.size()
        && std::ranges::equal(bytes.first(text.size()), text, {}, {}, [](char c) { return u8(c); });
}

u32 bigEndian(Bytes bytes, unsigned width = 4)
{
    u32 value = 0;
    for (const u8 byte : bytes.first(width))
        value = value << 8 | byte;
    return value;
}

void append(std::vector<u8>& out, Bytes bytes) { out.insert(out.end(), bytes.begin(), bytes.end()); }
void append(std::vector<u8>& out, std::string_view text) { out.insert(out.end(), text.begin(), text.end()); }
void appendBigEndian(std::vector<u8>& out, u32 value, unsigned width = 4)
{
    while (width-- > 0)
        out.push_back(u8(value >> (8 * width)));
}

void takeExif(PhotoMetadata& metadata, Bytes block)
{
    if (startsWith(block, kExifName)) // which some programs write into PNG files too
        block = block.subspan(kExifName.size());
    const auto orientation = exifOrientation(block);
    if (!orientation || !metadata.exif.empty())
        return;
    metadata.orientation = *orientation;
    metadata.exif.assign(block.begin(), block.end());
}

// Takes a profile without padding behind it, which PNG readers refuse.
void takeProfile(PhotoMetadata& metadata, std::vector<u8> profile)
{
    if (profile.size() < kProfileHeader || !startsWith(Bytes(profile).subspan(36), "acsp"))
        return;
    const std::size_t size = bigEndian(profile);
    if (size < kProfileHeader || size > profile.size())
        return;
    profile.resize(size);
    const Bytes space = Bytes(profile).subspan(16);
    if (startsWith(space, "RGB "))
        metadata.profile = std::move(profile);
    else if (startsWith(space, "GRAY") || startsWith(space, "CMYK"))
        metadata.ownProfile = std::move(profile);
}

/// Calls fn(marker, contents) for the segments in front of the pixels.
template <class Fn> void eachSegment(Bytes file, Fn fn)
{
    for (std::size_t at = kJpegSignature.size(); at + 4 <= file.size() && file[at] == 0xFF;) {
        const u8 marker = file[at + 1];
        if (marker == 0xFF) { // a fill byte
            ++at;
            continue;
        }
        const std::size_t length = bigEndian(file.subspan(at + 2), 2);
        if (marker == kStartOfScan || length < 2 || length > file.size() - at - 2)
            return;
        fn(marker, file.subspan(at + 4, length - 2));
        at += 2 + length;
    }
}

/// Collects a profile from numbered parts in any order. There is none when a part is missing or comes twice.
class ProfileParts {
public:
    void add(Bytes segment)
    {
        if (!startsWith(segment, kProfileName) || segment.size() < kProfileName.size() + 2)
            return;
        const u8 number = segment[kProfileName.size()];
        const u8 count = segment[kProfileName.size() + 1];
        contradict_ |= (!parts_.empty() && count != count_) || number == 0 || number > count
            || !parts_.emplace(number, segment.subspan(kProfileName.size() + 2)).second;
        count_ = count;
    }
    std::vector<u8> joined() const
    {
        std::vector<u8> profile;
        if (!contradict_ && parts_.size() == count_)
            for (const auto& [number, part] : parts_)
                append(profile, part);
        return profile;
    }

private:
    std::map<u8, Bytes> parts_;
    std::size_t count_ = 0;
    bool contradict_ = false;
};

PhotoMetadata readJpeg(Bytes file)
{
    PhotoMetadata metadata;
    ProfileParts parts;
    eachSegment(file, [&](u8 marker, Bytes contents) {
        if (marker == kApp1 && startsWith(contents, kExifName))
            takeExif(metadata, contents);
        else if (marker == kApp2)
            parts.add(contents);
    });
    takeProfile(metadata, parts.joined());
    return metadata;
}

/// The profile in a chunk that holds a name, the method, and the compressed profile, whose first bytes tell
/// its size.
std::vector<u8> uncompressedProfile(Bytes chunk)
{
    const auto nameEnd = std::ranges::find(chunk, u8(0));
    const std::size_t begin = std::size_t(nameEnd - chunk.begin()) + 2;
    if (begin >= chunk.size())
        return {};
    const auto firstBytes = [&](std::size_t size) {
        std::vector<u8> bytes(size);
        uLongf length = size;
        uncompress(bytes.data(), &length, chunk.data() + begin, uLong(chunk.size() - begin));
        bytes.resize(length);
        return bytes;
    };
    const std::vector<u8> head = firstBytes(4);
    if (head.size() < 4 || bigEndian(head) > kLargestProfile)
        return {};
    return firstBytes(std::max<std::size_t>(bigEndian(head), 4));
}

u32 checksum(Bytes nameAndContents)
{
    return u32(crc32_z(0, nameAndContents.data(), nameAndContents.size()));
}

/// What chunks of a PNG file say about its colours; a later one in this list counts before those above it.
struct PngColours {
    std::optional<Chromaticities> points;
    std::optional<double> gamma;
    bool srgb = false;
    std::optional<ColourCode> code;

    void take(Bytes nameAndContents)
    {
        const Bytes contents = nameAndContents.subspan(4);
        const auto number = [&](std::size_t index) {
            return bigEndian(contents.subspan(index * 4)) / 100000.0;
        };
        if (startsWith(nameAndContents, "gAMA") && contents.size() == 4 && number(0) > 0)
            gamma = 1 / number(0);
        else if (startsWith(nameAndContents, "cHRM") && contents.size() == 32)
            points = Chromaticities{{number(0), number(1)}, {number(2), number(3)}, {number(4), number(5)},
                {number(6), number(7)}, 0};
        else if (startsWith(nameAndContents, "sRGB"))
            srgb = true;
        else if (startsWith(nameAndContents, "cICP") && contents.size() == 4)
            code = ColourCode{contents[0], contents[1]};
    }

    void giveTo(PhotoMetadata& metadata) const
    {
        constexpr double kSrgbGamma = 2.2, kNear = 0.01;
        constexpr Chromaticities kSrgb{
            {0.3127, 0.3290}, {0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, kSrgbGamma};
        metadata.colours = code;
        if (code || srgb || (!gamma && !points))
            return;
        Chromaticities colours = points.value_or(kSrgb);
        colours.gamma = gamma.value_or(kSrgbGamma);
        const auto near = [](Chromaticities::Point a, Chromaticities::Point b) {
            return std::abs(a.x - b.x) < kNear && std::abs(a.y - b.y) < kNear;
        };
        if (!near(colours.white, kSrgb.white) || !near(colours.red, kSrgb.red)
            || !near(colours.green, kSrgb.green) || !near(colours.blue, kSrgb.blue)
            || std::abs(colours.gamma / kSrgbGamma - 1) > kNear)
            metadata.chromaticities = colours;
    }
};

PhotoMetadata readPng(Bytes file)
{
    PhotoMetadata metadata;
    PngColours colours;
    for (std::size_t at = kPngSignature.size(); at + kChunkFrame <= file.size();) {
        const std::size_t length = bigEndian(file.subspan(at));
        if (length > file.size() - at - kChunkFrame)
            break;
        const Bytes nameAndContents = file.subspan(at + 4, 4 + length);
        const bool exif = startsWith(nameAndContents, "eXIf");
        const bool profile = startsWith(nameAndContents, "iCCP");
        at += kChunkFrame + length;
        colours.take(nameAndContents);
        if ((!exif && !profile) || checksum(nameAndContents) != bigEndian(file.subspan(at - 4)))
            continue;
        if (exif)
            takeExif(metadata, nameAndContents.subspan(4));
        else
            takeProfile(metadata, uncompressedProfile(nameAndContents.subspan(4)));
    }
    if (metadata.profile.empty() && metadata.ownProfile.empty())
        colours.giveTo(metadata);
    return metadata;
}

void appendSegment(std::vector<u8>& out, u8 marker, std::initializer_list<Bytes> pieces)
{
    std::size_t length = 2;
    for (const Bytes piece : pieces)
        length += piece.size();
    out.insert(out.end(), {0xFF, marker});
    appendBigEndian(out, u32(length), 2);
    for (const Bytes piece : pieces)
        append(out, piece);
}

Bytes bytesOf(std::string_view text) { return {reinterpret_cast<const u8*>(text.data()), text.size()}; }

/// @return  false when something did not fit
bool appendSegments(std::vector<u8>& out, Bytes exif, Bytes profile)
{
    const bool exifFits = exif.size() <= kSegmentBytes - kExifName.size();
    if (!exif.empty() && exifFits)
        appendSegment(out, kApp1, {bytesOf(kExifName), exif});
    if (profile.size() > kLargestProfile)
        return false;
    const std::size_t count = (profile.size() + kProfilePart - 1) / kProfilePart;
    for (std::size_t i = 0; i < count; ++i) {
        const u8 numbers[]{u8(i + 1), u8(count)};
        const Bytes part = profile.subspan(i * kProfilePart);
        appendSegment(
            out, kApp2, {bytesOf(kProfileName), numbers, part.first(std::min(part.size(), kProfilePart))});
    }
    return exifFits;
}

void appendChunk(std::vector<u8>& out, std::string_view name, Bytes contents)
{
    appendBigEndian(out, u32(contents.size()));
    const std::size_t begin = out.size();
    append(out, name);
    append(out, contents);
    appendBigEndian(out, checksum(Bytes(out).subspan(begin)));
}

std::vector<u8> compressedProfile(Bytes profile)
{
    std::vector<u8> chunk;
    append(chunk, "ICC profile\0\0"sv); // its name, and the method
    const std::size_t begin = chunk.size();
    uLongf length = compressBound(uLong(profile.size()));
    chunk.resize(begin + length);
    compress(chunk.data() + begin, &length, profile.data(), uLong(profile.size()));
    chunk.resize(begin + length);
    return chunk;
}

} // namespace

PhotoMetadata readPhotoMetadata(std::span<const u8> file)
{
    if (startsWith(file, kJpegSignature))
        return readJpeg(file);
    if (startsWith(file, kPngSignature))
        return readPng(file);
    return {};
}

PhotoMetadata photoMetadata(FormatHeader header)
{
    PhotoMetadata metadata;
    takeExif(metadata, header.exif);
    metadata.orientation = header.orientation.value_or(metadata.orientation);
    takeProfile(metadata, std::move(header.profile));
    if (metadata.profile.empty() && metadata.ownProfile.empty())
        metadata.colours = header.colours;
    return metadata;
}

std::vector<u8> uprightExif(const PhotoMetadata& metadata, u32 width, u32 height)
{
    std::vector<u8> exif = metadata.exif;
    describeUpright(exif, width, height);
    return exif;
}

bool addPhotoMetadata(std::vector<u8>& file, const PhotoMetadata& metadata, u32 width, u32 height)
{
    const std::vector<u8> exif = uprightExif(metadata, width, height);
    std::vector<u8> added;
    std::size_t place = 0;
    bool complete = true;
    if (startsWith(file, kJpegSignature)) {
        place = kJpegSignature.size();
        if (file.size() >= place + 4 && file[place + 1] == kApp0)
            place += 2 + bigEndian(Bytes(file).subspan(place + 2), 2);
        complete = appendSegments(added, exif, metadata.profile);
    } else if (startsWith(file, kPngSignature)) {
        place = kPngSignature.size() + kChunkFrame + 13; // behind the header
        if (!metadata.profile.empty())
            appendChunk(added, "iCCP", compressedProfile(metadata.profile));
        if (!exif.empty())
            appendChunk(added, "eXIf", exif);
    }
    file.insert(file.begin() + std::ptrdiff_t(place), added.begin(), added.end());
    return complete;
}

Turn turnOf(int orientation)
{
    return {orientation >= 5,
        orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7,  // from the right
        orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8}; // from the bottom
}

void turnUpright(pixels::ConstView stored, int orientation, pixels::View upright)
{
    const Turn turn = turnOf(orientation);
    pixels::sample(stored, upright, [=](int x, int y) -> pixels::Point {
        int column = turn.mirrorsColumns ? upright.width() - 1 - x : x;
        int line = turn.mirrorsRows ? y : upright.height() - 1 - y; // from the top
        if (turn.swapsSides)
            std::swap(column, line);
        return {column, stored.height() - 1 - line};
    });
}

} // namespace tool
