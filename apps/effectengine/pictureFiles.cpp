// Checks, loading and saving of picture files through the engine's codecs, which need no graphics system.
#include "effectengine/pictureFiles.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "hosting/imageView.h"
#include "pictures/JpegCodec.h"
#include "pictures/PictureCodecs.h"
#include "pictures/PngEncoder.h"

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

/// What the tool does with files of a name.
struct Extension {
    std::string_view name;
    bool written = false;
    bool quality = false;
    bool effort = false;
};
constexpr std::array kExtensions{
    Extension{.name = ".png", .written = true, .effort = true},
    Extension{.name = ".jpg", .written = true, .quality = true},
    Extension{.name = ".jpeg", .written = true, .quality = true},
    Extension{.name = ".webp", .written = true, .quality = true, .effort = true},
    Extension{.name = ".avif", .written = true, .quality = true, .effort = true},
    Extension{.name = ".jxl", .written = true, .quality = true, .effort = true},
    Extension{.name = ".tif", .written = true, .effort = true},
    Extension{.name = ".tiff", .written = true, .effort = true},
    Extension{.name = ".bmp", .written = true},
    Extension{.name = ".tga", .written = true},
    Extension{.name = ".gif"},
    Extension{.name = ".psd"},
    Extension{.name = ".pic"},
    Extension{.name = ".ppm"},
    Extension{.name = ".pgm"},
    Extension{.name = ".hdr"},
};

/// What is known of a file by its name; nothing of other names.
Extension extensionOf(const fs::path& file)
{
    const std::string name = lowerExtension(file);
    const auto found = std::ranges::find(kExtensions, name, &Extension::name);
    return found == kExtensions.end() ? Extension{} : *found;
}

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

template <class Picture>
void checkDecoded(const fs::path& file, std::istream& stream, const Picture& picture, const char* what)
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

/// Whether colours by these numbers are sRGB, as far as anybody tells them apart.
bool isSrgb(ColourCode code)
{
    constexpr std::array kPrimaries{1u, 2u};
    constexpr std::array kTransfers{1u, 2u, 6u, 13u, 14u, 15u};
    return std::ranges::find(kPrimaries, code.primaries) != kPrimaries.end()
        && std::ranges::find(kTransfers, code.transfer) != kTransfers.end();
}

/// The picture in 8 bits, which is taken from memory that it leaves.
RawPicture rounded(RawPicture deep)
{
    if (!deep.deep)
        return deep;
    RawPicture result{.width = deep.width, .height = deep.height, .inks = deep.inks};
    allocate(result);
    if (!result.samples)
        throw std::bad_alloc();
    const u16* const from = reinterpret_cast<const u16*>(deep.samples.get());
    std::transform(from, from + std::size_t{deep.width} * deep.height * 4, result.samples.get(),
        [](u16 value) { return pictures::rounded8(value); });
    return result;
}

/// Blue, green and red that are left of white light when inks take theirs from it.
void printInks(RawPicture& picture)
{
    u8* const end = picture.samples.get() + std::size_t{picture.width} * picture.height * 4;
    for (u8* pixel = picture.samples.get(); pixel != end; pixel += 4) {
        const auto left = [black = 255 - pixel[3]](u8 ink) { return u8((255 - ink) * black / 255); };
        const u8 red = left(pixel[0]);
        pixel[1] = left(pixel[1]);
        pixel[0] = left(pixel[2]);
        pixel[2] = red;
        pixel[3] = 255;
    }
    picture.inks = false;
}

bool isForInks(const std::vector<u8>& profile)
{
    constexpr std::size_t kSpace = 16;
    return profile.size() > kSpace + 4 && std::memcmp(profile.data() + kSpace, "CMYK", 4) == 0;
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

bool canBeWritten(const fs::path& file) { return extensionOf(file).written; }

bool canBeRead(const fs::path& file) { return !extensionOf(file).name.empty(); }

bool hasQuality(const fs::path& file) { return extensionOf(file).quality; }

bool hasEffort(const fs::path& file) { return extensionOf(file).effort; }

std::vector<std::string> writtenKinds()
{
    std::vector<std::string> kinds;
    for (const Extension& extension : kExtensions)
        if (extension.written)
            kinds.emplace_back(extension.name.substr(1));
    return kinds;
}

std::vector<std::string> readExtensions()
{
    std::vector<std::string> names;
    for (const Extension& extension : kExtensions)
        names.emplace_back(extension.name);
    return names;
}

fs::path directoryOf(const fs::path& file) { return file.parent_path().empty() ? "." : file.parent_path(); }

void makeDirectory(const fs::path& directory)
{
    std::error_code error;
    fs::create_directories(directory, error);
    if (!fs::is_directory(directory))
        throwCannotWrite(directory, error ? error.value() : EEXIST);
}

PictureFile::PictureFile(fs::path file, Colours colours) : path_(std::move(file))
{
    constexpr const char* kNoPicture = "not a picture that can be decoded";
    std::ifstream stream = openPicture(path_);
    bytes_ = contentsOf(path_);
    further_ = furtherKindOf(bytes_);
    if (further_) {
        FormatHeader header = formatOf(*further_).inspect(bytes_);
        checkDecoded(path_, stream, header, kNoPicture);
        stored_ = {header.width, header.height};
        hasMore_ = header.pictures > 1;
        metadata_ = photoMetadata(std::move(header));
    } else {
        metadata_ = readPhotoMetadata(bytes_);
        const pictures::Decoded header = isJpeg() ? pictures::inspectJpeg(bytes_) : pictures::inspect(stream);
        checkDecoded(path_, stream, header, kNoPicture);
        stored_ = {header.width, header.height};
    }
    settleColours(colours);
}

// Colours that a file tells in numbers stay what they are by a profile that says the same.
void PictureFile::settleColours(Colours colours)
{
    if (metadata_.colours && !isSrgb(*metadata_.colours)) {
        metadata_.profile = colourConversion().profileOf(*metadata_.colours);
        if (metadata_.profile.empty())
            warn(path_.string() + ": its colours are taken for sRGB, which they are not");
    }
    if (isForInks(metadata_.ownProfile)) {
        convertedFrom_ = metadata_.ownProfile;
    } else if (colours == Colours::srgb) {
        if (metadata_.chromaticities)
            metadata_.profile = colourConversion().profileOf(*metadata_.chromaticities);
        convertedFrom_ = metadata_.profile.empty() ? metadata_.ownProfile : metadata_.profile;
        metadata_.profile.clear();
    }
}

bool PictureFile::isJpeg() const { return pictures::beginsLikeJpeg(bytes_); }

PictureSize PictureFile::size() const { return upright(stored_, metadata_.orientation); }

// The samples of the file as they are, where they are not simply decoded to 8 bits.
RawPicture PictureFile::stored() const
{
    if (further_)
        return formatOf(*further_).decode(bytes_);
    const auto asRaw = [](auto picture, bool inks) {
        RawPicture raw{picture.outcome, picture.width, picture.height, sizeof(*picture.pixels.get()) == 2,
            inks, nullptr};
        raw.samples.reset(reinterpret_cast<u8*>(picture.pixels.release()));
        return raw;
    };
    if (isJpeg() && isForInks(convertedFrom_))
        if (pictures::Decoded inks = pictures::decodeJpegInks(bytes_); inks.pixels)
            return asRaw(std::move(inks), true);
    if (isJpeg())
        return asRaw(pictures::decodeJpeg(bytes_), false);
    std::ifstream stream = openPicture(path_);
    return pictures::isDeep(stream) ? asRaw(pictures::decodeDeep(stream), false)
                                    : asRaw(pictures::decode(stream), false);
}

// The stored picture in 8 bits, in the colours that are wanted.
pictures::Decoded PictureFile::decoded() const
{
    if (!further_ && convertedFrom_.empty()) {
        if (isJpeg())
            return pictures::decodeJpeg(bytes_);
        std::ifstream stream = openPicture(path_);
        return pictures::decode(stream);
    }
    RawPicture picture = stored();
    if (picture.outcome != pictures::Decoded::Outcome::picture)
        return {picture.outcome, picture.width, picture.height, nullptr};
    if (!convertedFrom_.empty()) {
        if (auto converted = colourConversion().toSrgb(picture, convertedFrom_))
            picture = std::move(*converted);
        else
            warn(path_.string() + ": its colour profile cannot be used");
    }
    picture = rounded(std::move(picture));
    if (picture.inks)
        printInks(picture);
    return {picture.outcome, picture.width, picture.height, std::move(picture.samples)};
}

void PictureFile::loadInto(const host::Image& image) const
{
    const pixels::View target = viewOf(image);
    const PictureSize wanted = {unsigned(target.width()), unsigned(target.height())};
    const PictureSize stored = upright(wanted, metadata_.orientation); // swapping the sides undoes itself
    if (isJpeg() && metadata_.orientation == 1 && stored == stored_ && convertedFrom_.empty()) {
        const auto top = reinterpret_cast<u8*>(target.pictureRow(0).data());
        if (pictures::decodeJpegInto(bytes_, stored.width, stored.height, {top, -target.strideBytes()}))
            return;
    }
    pictures::Decoded picture = decoded();
    std::ifstream stream = openPicture(path_);
    checkDecoded(path_, stream, picture, "damaged or cut short");
    if (!pictures::scale(picture, stored.width, stored.height))
        throw ToolError(ExitCode::internal, "not enough memory to scale " + path_.string());
    const std::ptrdiff_t stride = std::ptrdiff_t{stored.width} * 4;
    const pixels::View topRowFirst(picture.pixels.get() + (stored.height - 1) * stride,
        {int(stored.width), int(stored.height)}, -stride);
    turnUpright(topRowFirst, metadata_.orientation, target);
}

PictureSize sizeOf(const fs::path& file) { return PictureFile(file).size(); }

PhotoMetadata metadataOf(const fs::path& file) { return PictureFile(file).metadata(); }

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

host::Image loadPicture(const fs::path& file, PictureSize size, Colours colours)
{
    host::Image image(size.width, size.height);
    PictureFile(file, colours).loadInto(image);
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
    if (!canBeWritten(file)) {
        std::string names;
        for (const std::string& kind : writtenKinds())
            names += (names.empty() ? "." : ", .") + kind;
        throw ToolError(ExitCode::cannotWrite,
            "cannot write " + file.string() + ": the name must end in one of " + names);
    }
    checkPlace(file);
}

namespace {

std::vector<u8> encodePng(pixels::ConstView picture, Effort effort)
{
    pictures::PngEncoder encoder(
        effort == Effort::small ? pictures::PngEffort::small : pictures::PngEffort::fast);
    const auto bytes = encoder.encode({.top = reinterpret_cast<const u8*>(picture.pictureRow(0).data()),
        .stride = -picture.strideBytes(),
        .width = u32(picture.width()),
        .height = u32(picture.height())});
    return {bytes.begin(), bytes.end()};
}

std::vector<u8> encodePlain(pictures::Kind kind, pixels::ConstView picture)
{
    const std::size_t stride = std::size_t(picture.width()) * 4;
    const auto topFirst = std::make_unique_for_overwrite<u8[]>(std::size_t(picture.height()) * stride);
    for (int row = 0; row < picture.height(); ++row)
        std::memcpy(topFirst.get() + std::size_t(row) * stride, picture.pictureRow(row).data(), stride);
    return pictures::encode(kind, topFirst.get(), u32(picture.width()), u32(picture.height()));
}

bool isOpaque(pixels::ConstView picture)
{
    constexpr std::size_t kAlpha = 3;
    for (int row = 0; row < picture.height(); ++row) {
        const auto* const bytes = reinterpret_cast<const u8*>(picture.pictureRow(row).data());
        for (std::size_t i = kAlpha; i < std::size_t(picture.width()) * 4; i += 4)
            if (bytes[i] != 255)
                return false;
    }
    return true;
}

} // namespace

std::vector<u8> pictureBytes(
    CEffectImage* image, const fs::path& file, const PhotoMetadata& metadata, const SaveOptions& options)
{
    const pixels::ConstView picture = host::viewOf(image);
    const PictureSize size{unsigned(picture.width()), unsigned(picture.height())};
    const auto top = reinterpret_cast<const u8*>(picture.pictureRow(0).data());
    const auto kind = pictures::kindOf(file.string());
    std::vector<u8> bytes;
    if (const auto further = furtherKindNamed(lowerExtension(file))) {
        const std::vector<u8> exif = uprightExif(metadata, size.width, size.height);
        bytes = formatOf(*further).encode(
            {top, -picture.strideBytes(), size.width, size.height, isOpaque(picture), exif, metadata.profile},
            options);
    } else if (kind == pictures::Kind::jpeg) {
        pictures::JpegQuality quality;
        quality.percent = options.quality.value_or(quality.percent);
        bytes = pictures::encodeJpeg({top, -picture.strideBytes()}, size.width, size.height, quality);
    } else if (kind == pictures::Kind::png) {
        bytes = encodePng(picture, options.effort);
    } else if (kind) {
        bytes = encodePlain(*kind, picture);
    }
    if (bytes.empty())
        throw ToolError(
            ExitCode::cannotWrite, "cannot write " + file.string() + ": its kind holds no such picture");
    if (!addPhotoMetadata(bytes, metadata, size.width, size.height))
        warn(file.string() + ": the EXIF data or the colour profile is too large for this kind of file");
    return bytes;
}

void savePicture(
    CEffectImage* image, const fs::path& file, const PhotoMetadata& metadata, const SaveOptions& options)
{
    writeFile(file, pictureBytes(image, file, metadata, options));
}

} // namespace tool
