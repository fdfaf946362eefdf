// Checks, loading and saving of picture files through the engine's codecs, which need no graphics system.
#include "effectengine/pictureFiles.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "hosting/imageView.h"
#include "pictures/JpegCodec.h"
#include "pictures/PictureCodecs.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kLargestSide = EFFECTENGINE_LARGEST_SIDE;
constexpr std::array kWritable{".png", ".jpg", ".jpeg", ".bmp", ".tga"};

constexpr std::array<std::pair<std::string_view, std::string_view>, 15> kKinds{{
    {"\x89PNG", "a PNG file"},
    {"\xFF\xD8\xFF", "a JPEG file"},
    {"GIF8", "a GIF file"},
    {"BM", "a BMP file"},
    {"8BPS", "a Photoshop file"},
    {"#?", "a Radiance file"},
    {"P5", "a PGM file"},
    {"P6", "a PPM file"},
    {std::string_view("II*\0", 4), "a TIFF file"},
    {std::string_view("MM\0*", 4), "a TIFF file"},
    {"RIFF", "a WebP file, or sound or video"},
    {"\xFF\x0A", "a JPEG XL file"},
    {"%PDF", "a PDF file"},
    {"<svg", "an SVG file"},
    {"<?xml", "an XML file"},
}};

/// The name, for people, of the kind of file that the first bytes tell; empty for an unknown kind.
std::string kindByBytes(std::istream& file)
{
    char head[16] = {};
    file.clear();
    file.seekg(0);
    file.read(head, sizeof head);
    const std::string_view bytes(head, std::size_t(file.gcount()));
    if (bytes.empty())
        return "is empty";
    for (const auto& [signature, name] : kKinds)
        if (bytes.starts_with(signature))
            return "begins like " + std::string(name);
    if (bytes.size() > 11 && bytes.substr(4, 4) == "ftyp")
        return "begins like a HEIC, AVIF or MP4 file";
    return {};
}

std::ifstream openPicture(const fs::path& file)
{
    if (!fs::exists(file))
        throw ToolError(ExitCode::missingInput, "no such file: " + file.string());
    if (fs::is_directory(file))
        throw ToolError(ExitCode::unreadable, "is a directory, not a picture: " + file.string());
    if (!fs::is_regular_file(file)) // a pipe might never end
        throw ToolError(ExitCode::unreadable, "not a regular file: " + file.string());
    if (access(file.c_str(), R_OK) != 0)
        throw ToolError(ExitCode::unreadable, "no permission to read " + file.string());
    return std::ifstream(file, std::ios::binary);
}

void checkDecoded(
    const fs::path& file, std::istream& stream, const pictures::Decoded& picture, const char* what)
{
    using Outcome = pictures::Decoded::Outcome;
    if (picture.outcome == Outcome::tooLarge)
        throw ToolError(ExitCode::unreadable,
            file.string() + " is too large a picture: " + std::to_string(picture.width) + " x "
                + std::to_string(picture.height) + " pixels; sides end at "
                + std::to_string(pictures::kMaxSide));
    if (picture.outcome == Outcome::unreadable) {
        const std::string kind = kindByBytes(stream);
        throw ToolError(ExitCode::unreadable,
            std::string(what) + ": " + file.string() + (kind.empty() ? "" : " " + kind));
    }
}

PictureSize upright(PictureSize stored, int orientation)
{
    return turnOf(orientation).swapsSides ? PictureSize{stored.height, stored.width} : stored;
}

// All bytes of a file. None when it cannot be read, or is larger than any picture that can be decoded.
std::vector<u8> contentsOf(const fs::path& file)
{
    constexpr std::uintmax_t kLargest = 1 << 30;
    std::error_code error;
    const auto size = fs::file_size(file, error);
    if (error || size > kLargest)
        return {};
    std::vector<u8> bytes(size);
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(size));
    bytes.resize(std::size_t(stream.gcount()));
    return bytes;
}

} // namespace

std::string lowerExtension(const fs::path& file)
{
    std::string extension = file.extension().string();
    std::ranges::transform(
        extension, extension.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return extension;
}

bool canBeWritten(const fs::path& file)
{
    return std::ranges::find(kWritable, lowerExtension(file)) != kWritable.end();
}

fs::path directoryOf(const fs::path& file) { return file.parent_path().empty() ? "." : file.parent_path(); }

void makeDirectory(const fs::path& directory)
{
    std::error_code error;
    fs::create_directories(directory, error);
    if (!fs::is_directory(directory))
        throwCannotWrite(directory, error ? error.value() : EEXIST);
}

PictureFile::PictureFile(fs::path file) : path_(std::move(file))
{
    std::ifstream stream = openPicture(path_);
    bytes_ = contentsOf(path_);
    metadata_ = readPhotoMetadata(bytes_);
    const pictures::Decoded header = isJpeg() ? pictures::inspectJpeg(bytes_) : pictures::inspect(stream);
    checkDecoded(path_, stream, header, "not a picture that can be decoded");
    stored_ = {header.width, header.height};
}

bool PictureFile::isJpeg() const { return pictures::beginsLikeJpeg(bytes_); }

PictureSize PictureFile::size() const { return upright(stored_, metadata_.orientation); }

void PictureFile::loadInto(const host::Image& image) const
{
    const pixels::View target = viewOf(image);
    const PictureSize wanted = {unsigned(target.width()), unsigned(target.height())};
    const PictureSize stored = upright(wanted, metadata_.orientation); // swapping the sides undoes itself
    if (isJpeg() && metadata_.orientation == 1 && stored == stored_) {
        const auto top = reinterpret_cast<u8*>(target.pictureRow(0).data());
        if (pictures::decodeJpegInto(bytes_, stored.width, stored.height, {top, -target.strideBytes()}))
            return;
    }
    std::ifstream stream = openPicture(path_);
    pictures::Decoded picture = isJpeg() ? pictures::decodeJpeg(bytes_) : pictures::decode(stream);
    checkDecoded(path_, stream, picture, "damaged or cut short");
    if (!pictures::scale(picture, stored.width, stored.height))
        throw ToolError(ExitCode::internal, "not enough memory to scale " + path_.string());
    const std::ptrdiff_t stride = std::ptrdiff_t{stored.width} * 4;
    const pixels::View topRowFirst(picture.pixels.get() + (stored.height - 1) * stride,
        {int(stored.width), int(stored.height)}, -stride);
    turnUpright(topRowFirst, metadata_.orientation, target);
}

PictureSize sizeOf(const fs::path& file) { return PictureFile(file).size(); }

PhotoMetadata metadataOf(const fs::path& file) { return readPhotoMetadata(contentsOf(file)); }

PictureSize parseSize(const std::string& text)
{
    PictureSize size{};
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec == std::errc() && width.ptr != end && *width.ptr == 'x') {
        const auto height = std::from_chars(width.ptr + 1, end, size.height);
        const auto inRange = [](unsigned side) { return side >= 1 && side <= kLargestSide; };
        if (height.ec == std::errc() && height.ptr == end && inRange(size.width) && inRange(size.height))
            return size;
    }
    throw ToolError(ExitCode::usage,
        "--size takes WIDTHxHEIGHT, 1 to " + std::to_string(kLargestSide) + " each, not \"" + text + "\"");
}

PictureSize fitted(PictureSize size)
{
    const unsigned longest = std::max(size.width, size.height);
    if (longest <= kLargestSide)
        return size;
    const auto scaled = [&](unsigned side) {
        return std::max(1u, unsigned(std::lround(double(side) * kLargestSide / longest)));
    };
    return {scaled(size.width), scaled(size.height)};
}

host::Image loadPicture(const fs::path& file, PictureSize size)
{
    host::Image image(size.width, size.height);
    PictureFile(file).loadInto(image);
    return image;
}

void checkPlace(const fs::path& file)
{
    const fs::path directory = directoryOf(file);
    if (!fs::is_directory(directory))
        throw ToolError(ExitCode::cannotWrite, "no such directory: " + directory.string());
    if (fs::is_directory(file))
        throw ToolError(ExitCode::cannotWrite, "is a directory: " + file.string());
    if (access(directory.c_str(), W_OK) != 0)
        throw ToolError(ExitCode::cannotWrite, "no permission to write in " + directory.string());
}

void checkOutput(const fs::path& file)
{
    if (!canBeWritten(file))
        throw ToolError(ExitCode::cannotWrite,
            "cannot write " + file.string() + ": the name must end in .png, .jpg, .jpeg, .bmp or .tga");
    checkPlace(file);
}

void savePicture(CEffectImage* image, const fs::path& file, const PhotoMetadata& metadata)
{
    const pixels::ConstView picture = host::viewOf(image);
    const PictureSize size{unsigned(picture.width()), unsigned(picture.height())};
    const auto kind = pictures::kindOf(file.string());
    std::vector<u8> bytes;
    if (kind == pictures::Kind::jpeg) {
        const auto top = reinterpret_cast<const u8*>(picture.pictureRow(0).data());
        bytes = pictures::encodeJpeg({top, -picture.strideBytes()}, size.width, size.height);
    } else if (kind) {
        const std::size_t stride = std::size_t{size.width} * 4;
        const auto topFirst = std::make_unique_for_overwrite<u8[]>(size.height * stride);
        for (std::size_t row = 0; row < size.height; ++row)
            std::memcpy(topFirst.get() + row * stride, picture.pictureRow(int(row)).data(), stride);
        bytes = pictures::encode(*kind, topFirst.get(), size.width, size.height);
    }
    if (bytes.empty())
        throw ToolError(
            ExitCode::cannotWrite, "cannot write " + file.string() + ": its kind holds no such picture");
    if (!addPhotoMetadata(bytes, metadata, size.width, size.height))
        warn(file.string() + ": the EXIF data or the colour profile is too large for this kind of file");
    writeFile(file, bytes);
}

} // namespace tool
