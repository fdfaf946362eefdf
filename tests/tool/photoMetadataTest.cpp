// Metadata of photographs: read from files of other programs, and written for libjpeg and libpng to read.
#include "effectengine/photoMetadata.h"

#include "effectengine/exif.h"
#include "pictures/PictureCodecs.h"

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <png.h>
#include <zlib.h>

#include <random>
#include <sstream>
#include <string>

namespace {

using namespace std::string_literals;
using Bytes = std::vector<u8>;

constexpr u32 kWidth = 24;
constexpr u32 kHeight = 16;
constexpr int kExif = JPEG_APP0 + 1;
constexpr int kProfile = JPEG_APP0 + 2;

std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
Bytes bytes(const std::string& text) { return {text.begin(), text.end()}; }

std::string bigEndian(u32 value)
{
    return {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
}

/// A block as cameras write it: main directory, a second one with the size and a maker's note, a preview.
struct Camera {
    bool bigEndian = false;
    u32 orientation = 6;
    u32 width = 4000;
    u32 height = 3000;
    bool preview = true;

    std::string block() const
    {
        constexpr u32 kSecond = 50, kNote = 92, kThird = 100, kPreview = 130;
        constexpr u32 kShort = 3, kLong = 4, kUndefined = 7;
        std::string out = bigEndian ? "MM\0*"s : "II*\0"s;
        const auto number = [&](u32 value, unsigned size) {
            for (unsigned i = 0; i < size; ++i)
                out += char(value >> 8 * (bigEndian ? size - 1 - i : i));
        };
        const auto field = [&](u32 tag, u32 type, u32 count, u32 value) {
            number(tag, 2);
            number(type, 2);
            number(count, 4);
            number(value, type == kShort ? 2 : 4);
            out.append(type == kShort ? 2 : 0, '\0');
        };
        number(8, 4);
        number(3, 2);
        field(0x100, kShort, 1, width);
        field(0x112, kShort, 1, orientation);
        field(0x8769, kLong, 1, kSecond);
        number(preview ? kThird : 0, 4);
        number(3, 2);
        field(0x927C, kUndefined, 8, kNote);
        field(0xA002, kLong, 1, width);
        field(0xA003, kShort, 1, height);
        number(0, 4);
        out += "a\0note\x06\x12"s;
        number(2, 2);
        field(0x201, kLong, 1, kPreview);
        field(0x202, kLong, 1, 4);
        number(0, 4);
        EXPECT_EQ(out.size(), kPreview);
        return preview ? out + "\xFF\xD8\xFF\xD9" : out;
    }
};

/// A profile as readers accept it: header, one tag, and bytes that cannot be compressed.
std::string profile(u32 size, const std::string& space = "RGB ")
{
    std::string out = bigEndian(size) + "test\x04\x30\0\0mntr"s + space + "XYZ "s;
    out.resize(36);
    out += "acsp";
    out.resize(68);
    out += "\0\0\xF6\xD6\0\1\0\0\0\0\xD3\x2D"s;
    out.resize(128);
    out += bigEndian(1) + "test" + bigEndian(144) + bigEndian(size - 144);
    std::minstd_rand random;
    while (out.size() < size)
        out += char(random() >> 8);
    return out;
}

using Segments = std::vector<std::pair<int, std::string>>;

/// A JPEG file of a blank picture with the segments, written by libjpeg.
Bytes jpegWith(const Segments& segments)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = kWidth;
    jpeg.image_height = kHeight;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    for (const auto& [marker, contents] : segments)
        jpeg_write_marker(&jpeg, marker, bytes(contents).data(), unsigned(contents.size()));
    Bytes row(std::size_t{kWidth} * 3);
    JSAMPROW rows = row.data();
    while (jpeg.next_scanline < kHeight)
        jpeg_write_scanlines(&jpeg, &rows, 1);
    jpeg_finish_compress(&jpeg);
    Bytes file(memory, memory + size);
    jpeg_destroy_compress(&jpeg);
    std::free(memory);
    return file;
}

Bytes encoded(pictures::Kind kind)
{
    return pictures::encode(kind, Bytes(std::size_t{kWidth} * kHeight * 4, 77).data(), kWidth, kHeight);
}

std::string chunk(const std::string& nameAndContents)
{
    const Bytes checked = bytes(nameAndContents);
    return bigEndian(u32(checked.size() - 4)) + nameAndContents
        + bigEndian(u32(crc32(0, checked.data(), uInt(checked.size()))));
}

/// @param last  behind the pixels
Bytes pngWith(const std::string& chunks, const std::string& last = "")
{
    std::string file = text(encoded(pictures::Kind::png));
    file.insert(file.size() - 12, last);
    file.insert(33, chunks);
    return bytes(file);
}

std::string compressed(const std::string& contents)
{
    uLongf size = compressBound(uLong(contents.size()));
    Bytes out(size);
    compress(out.data(), &size, bytes(contents).data(), uLong(contents.size()));
    out.resize(size);
    return text(out);
}

struct Found {
    std::string exif;
    std::string profile;
};

Found readByJpegLibrary(const Bytes& file)
{
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_save_markers(&jpeg, kExif, 0xFFFF);
    jpeg_save_markers(&jpeg, kProfile, 0xFFFF);
    jpeg_mem_src(&jpeg, file.data(), file.size());
    jpeg_read_header(&jpeg, TRUE);
    Found found;
    for (auto marker = jpeg.marker_list; marker; marker = marker->next)
        if (marker->marker == kExif)
            found.exif.assign(marker->data + 6, marker->data + marker->data_length);
    JOCTET* data = nullptr;
    unsigned size = 0;
    if (jpeg_read_icc_profile(&jpeg, &data, &size))
        found.profile.assign(data, data + size);
    std::free(data);
    jpeg_destroy_decompress(&jpeg);
    return found;
}

Found readByPngLibrary(const Bytes& file)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    std::istringstream stream(text(file));
    png_set_read_fn(png, &stream, [](png_structp self, png_bytep data, std::size_t size) {
        static_cast<std::istream*>(png_get_io_ptr(self))->read(reinterpret_cast<char*>(data), long(size));
    });
    png_read_info(png, info);
    Found found;
    png_charp name = nullptr;
    int method = 0;
    png_bytep data = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(png, info, &name, &method, &data, &size))
        found.profile.assign(data, data + size);
    if (png_get_eXIf_1(png, info, &size, &data))
        found.exif.assign(data, data + size);
    png_destroy_read_struct(&png, &info, nullptr);
    return found;
}

bool isPicture(const Bytes& file)
{
    std::istringstream stream(text(file));
    const pictures::Decoded decoded = pictures::decode(stream);
    return decoded.outcome == pictures::Decoded::Outcome::picture && decoded.width == kWidth;
}

TEST(PhotoMetadata, GivesTheOrientationOfEitherByteOrderAndKindOfFile)
{
    for (const bool bigEndian : {false, true}) {
        for (u32 orientation = 0; orientation <= 9; ++orientation) {
            const std::string block = Camera{.bigEndian = bigEndian, .orientation = orientation}.block();
            for (const Bytes& file :
                {jpegWith({{kExif, "Exif\0\0"s + block}}), pngWith(chunk("eXIf" + block)),
                    pngWith("", chunk("eXIf" + block)), pngWith(chunk("eXIfExif\0\0"s + block))}) {
                const tool::PhotoMetadata metadata = tool::readPhotoMetadata(file);
                EXPECT_EQ(metadata.orientation, orientation == 0 || orientation == 9 ? 1 : int(orientation));
                EXPECT_EQ(text(metadata.exif), block);
                EXPECT_TRUE(isPicture(file)) << "the engine decodes pixels as they are stored";
            }
        }
    }
}

TEST(PhotoMetadata, TurnsTheEightOrientationsUpright)
{
    const std::vector<std::string> kUpright{"ABC", "DEF"};
    const std::vector<std::vector<std::string>> kStored{{"ABC", "DEF"}, {"CBA", "FED"}, {"FED", "CBA"},
        {"DEF", "ABC"}, {"AD", "BE", "CF"}, {"CF", "BE", "AD"}, {"FC", "EB", "DA"}, {"DA", "EB", "FC"}};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto& letters = kStored[std::size_t(orientation) - 1];
        const pixels::Extent size{int(letters[0].size()), int(letters.size())};
        EXPECT_EQ(tool::turnOf(orientation).swapsSides, size.width == 2);
        std::vector<pixels::Bgra> from(6);
        std::vector<pixels::Bgra> to(6);
        const pixels::View stored(reinterpret_cast<u8*>(from.data()), size);
        for (int v = 0; v < size.height; ++v)
            for (int x = 0; x < size.width; ++x)
                stored.pictureRow(v)[std::size_t(x)] = {
                    u8(letters[std::size_t(v)][std::size_t(x)]), 0, 0, 255};
        const pixels::View upright(reinterpret_cast<u8*>(to.data()), {3, 2});
        tool::turnUpright(stored, orientation, upright);
        for (int v = 0; v < 2; ++v)
            for (int x = 0; x < 3; ++x)
                EXPECT_EQ(upright.pictureRow(v)[std::size_t(x)].b, kUpright[std::size_t(v)][std::size_t(x)])
                    << "orientation " << orientation;
    }
}

TEST(PhotoMetadata, DescribesTheUprightPictureAndKeepsTheRest)
{
    for (const bool bigEndian : {false, true}) {
        Bytes block = bytes(Camera{.bigEndian = bigEndian}.block());
        tool::describeUpright(block, 300, 400);
        const Camera upright{
            .bigEndian = bigEndian, .orientation = 1, .width = 300, .height = 400, .preview = false};
        EXPECT_EQ(text(block), upright.block());
    }
    // Bytes behind the preview stay where they are.
    Bytes longer = bytes(Camera{}.block() + "more");
    tool::describeUpright(longer, 300, 400);
    const Camera upright{.orientation = 1, .width = 300, .height = 400, .preview = false};
    EXPECT_EQ(text(longer), upright.block() + "\0\0\0\0more"s);
}

TEST(PhotoMetadata, JoinsTheProfileFromPartsInAnyOrder)
{
    const std::string whole = profile(1000);
    const auto part = [&](int number, int count, std::size_t begin, std::size_t size) {
        return std::pair(kProfile, "ICC_PROFILE\0"s + char(number) + char(count) + whole.substr(begin, size));
    };
    const auto first = part(1, 3, 0, 300);
    const auto second = part(2, 3, 300, 10);
    const auto third = part(3, 3, 310, 690);
    const auto read = [](const Segments& segments) {
        return text(tool::readPhotoMetadata(jpegWith(segments)).profile);
    };
    EXPECT_EQ(read({third, {kProfile, "MPF\0"s}, first, second}), whole);
    EXPECT_EQ(read({third, first}), "");
    EXPECT_EQ(read({second, second, third, first}), "");
    EXPECT_EQ(read({first, second, part(3, 4, 310, 690)}), "");
    EXPECT_EQ(read({part(0, 1, 0, 1000)}), "");
    EXPECT_EQ(read({{kProfile, "ICC_PROFILE\0\1"s}}), "");
}

TEST(PhotoMetadata, TakesOnlyProfilesThatDescribeTheDecodedPixels)
{
    const auto read = [](const std::string& contents) {
        const std::string segment = "ICC_PROFILE\0\1\1"s + contents;
        const std::string inPng = chunk("iCCPname\0\0"s + compressed(contents));
        const std::string found = text(tool::readPhotoMetadata(jpegWith({{kProfile, segment}})).profile);
        EXPECT_EQ(found, text(tool::readPhotoMetadata(pngWith(inPng)).profile));
        return found;
    };
    EXPECT_EQ(read(profile(500)), profile(500));
    EXPECT_EQ(read(profile(500) + "\0\0\0"s), profile(500)) << "padding";
    EXPECT_EQ(read(profile(500).substr(0, 499)), "");
    EXPECT_EQ(read(profile(500, "GRAY")), "");
    EXPECT_EQ(read(profile(500, "CMYK")), "");
    EXPECT_EQ(read(bigEndian(500) + std::string(496, 'x')), "");
    EXPECT_EQ(read("abc"), "");
}

TEST(PhotoMetadata, GoesFromEitherKindIntoEitherKind)
{
    const std::string block = Camera{}.block();
    const Camera upright{.orientation = 1, .width = kWidth, .height = kHeight, .preview = false};
    for (const u32 size : {u32{560}, u32{200'000}}) { // in one segment, in four
        const std::string whole = profile(size);
        Segments segments{{kExif, "Exif\0\0"s + block}};
        const std::size_t kPart = 60'000;
        const std::size_t count = (size + kPart - 1) / kPart;
        for (std::size_t i = 0; i < count; ++i)
            segments.emplace_back(
                kProfile, "ICC_PROFILE\0"s + char(i + 1) + char(count) + whole.substr(i * kPart, kPart));
        const std::string chunks = chunk("iCCPa\0\0"s + compressed(whole)) + chunk("eXIf" + block);
        for (const Bytes& source : {jpegWith(segments), pngWith(chunks)}) {
            const tool::PhotoMetadata metadata = tool::readPhotoMetadata(source);
            for (const pictures::Kind kind : {pictures::Kind::jpeg, pictures::Kind::png}) {
                Bytes file = encoded(kind);
                EXPECT_TRUE(tool::addPhotoMetadata(file, metadata, kWidth, kHeight));
                EXPECT_TRUE(isPicture(file));
                const Found found =
                    kind == pictures::Kind::jpeg ? readByJpegLibrary(file) : readByPngLibrary(file);
                EXPECT_TRUE(found.profile == whole) << size << ", found " << found.profile.size();
                EXPECT_EQ(found.exif, upright.block());
            }
        }
    }
}

TEST(PhotoMetadata, LeavesOutWhatAFileHasNoRoomFor)
{
    const tool::PhotoMetadata metadata{
        1, bytes(Camera{}.block() + std::string(65'500, 'x')), bytes(profile(400))};
    Bytes file = encoded(pictures::Kind::jpeg);
    EXPECT_FALSE(tool::addPhotoMetadata(file, metadata, kWidth, kHeight));
    EXPECT_EQ(readByJpegLibrary(file).exif, "");
    EXPECT_EQ(readByJpegLibrary(file).profile, profile(400));
    for (const pictures::Kind kind : {pictures::Kind::bmp, pictures::Kind::tga}) {
        file = encoded(kind);
        EXPECT_TRUE(tool::addPhotoMetadata(file, metadata, kWidth, kHeight));
        EXPECT_EQ(file, encoded(kind));
    }
}

// Nothing here may read outside the file, which the address sanitizer sees, or spoil the picture.
TEST(PhotoMetadata, OfDamagedFilesIsIgnored)
{
    const std::string block = Camera{}.block();
    for (std::size_t size = 0; size < 50; ++size) { // up to the end of the main directory
        const Bytes cut = bytes(block.substr(0, size));
        EXPECT_EQ(tool::exifOrientation(cut), size < 46 ? std::nullopt : std::optional(6)) << size;
    }
    const std::string whole = profile(200);
    const Bytes intact[]{jpegWith({{kExif, "Exif\0\0"s + block}, {kProfile, "ICC_PROFILE\0\1\1"s + whole}}),
        pngWith(chunk("iCCPa\0\0"s + compressed(whole)) + chunk("eXIf" + block))};
    for (const Bytes& file : intact) {
        for (std::size_t i = 0; i < 700; ++i) {
            const auto check = [&](const Bytes& damaged) {
                const tool::PhotoMetadata metadata = tool::readPhotoMetadata(damaged);
                EXPECT_TRUE(metadata.orientation >= 1 && metadata.orientation <= 8);
                Bytes result = encoded(pictures::Kind::png);
                tool::addPhotoMetadata(result, metadata, kWidth, kHeight);
                ASSERT_TRUE(isPicture(result)) << i;
            };
            check(Bytes(file.begin(), file.begin() + std::ptrdiff_t(std::min(i, file.size()))));
            for (const int value : {0, 1, 0x7F, 0xFF}) {
                Bytes damaged = file;
                damaged[std::min(i, file.size() - 1)] = u8(value);
                check(damaged);
            }
        }
    }
    std::string wrong = chunk("eXIf" + block);
    wrong.back() = char(~wrong.back());
    EXPECT_TRUE(tool::readPhotoMetadata(pngWith(wrong)).exif.empty()) << "checksum";
    // Damage that a checksum does not show.
    const std::string packed = compressed(whole);
    for (std::size_t i = 0; i < packed.size(); ++i) {
        std::string damaged = packed;
        damaged[i] = char(~damaged[i]);
        const Bytes found = tool::readPhotoMetadata(pngWith(chunk("iCCPa\0\0"s + damaged))).profile;
        EXPECT_LE(found.size(), whole.size()) << i;
        tool::readPhotoMetadata(pngWith(chunk("iCCPa\0\0"s + packed.substr(0, i))));
        tool::readPhotoMetadata(pngWith(chunk(("iCCPa\0\0"s + packed).substr(0, 4 + i))));
    }
    for (std::size_t i = 0; i < block.size(); ++i) {
        for (const int value : {0, 1, 0x7F, 0xFF}) {
            std::string damaged = block;
            damaged[i] = char(value);
            Bytes described = bytes(damaged);
            tool::describeUpright(described, kWidth, kHeight);
            EXPECT_TRUE(described.empty() || tool::exifOrientation(described) == 1) << i << ' ' << value;
        }
    }
}

} // namespace
