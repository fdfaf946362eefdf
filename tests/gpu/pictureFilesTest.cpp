// Picture files through the render thread and OGRE: what is saved comes back, and nothing else comes in.
#include "gpu/OgreTest.h"
#include "pictures/PictureCodecs.h"
#include "support/paths.h"

#include <jpeglib.h>
#include <malloc.h>
#include <png.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <random>

namespace {

using Bytes = std::vector<u8>;

/// One thread for all tests here; each sees the log from its own start on.
class PictureFilesTest : public OgreTest {
protected:
    PictureFilesTest() : thread_(test::kResourceDirectory, test::kResourceDirectory, directory_.c_str())
    {
        EXPECT_TRUE(KEXSDK::gpuAvailable()) << read("Ogre.log");
    }

    /// The bytes of a file's pixels; none when it cannot be loaded.
    Bytes load(const std::string& file)
    {
        const KEXSDK::LoadedImage image = thread_.loadImage(file.c_str());
        EXPECT_TRUE(image);
        EXPECT_EQ(image->hasData(), !image->bytes().empty());
        if (!image->hasData())
            return {};
        EXPECT_EQ(image->format(), KEXSDK::RecordFormat::A8R8G8B8);
        EXPECT_EQ(image->bitsPerPixel(), 32u);
        EXPECT_EQ(image->bytes().size(), std::size_t{image->width()} * image->height() * 4);
        return {image->bytes().begin(), image->bytes().end()};
    }
    bool save(const std::string& file, const Bytes& pixels, u32 width, u32 height)
    {
        return thread_.saveImage(file.c_str(), pixels.data(), width, height);
    }

    /// Writes a PNG of any kind; 16-bit samples high byte first.
    void writePng(const std::string& name, u32 width, u32 height, int depth, int colourType, Bytes rows,
        const std::vector<png_color>& palette = {}, Bytes paletteAlpha = {}) const
    {
        std::FILE* const file = std::fopen(path(name).c_str(), "wb");
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file);
        png_set_IHDR(png, info, width, height, depth, colourType, PNG_INTERLACE_NONE,
            PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (!palette.empty())
            png_set_PLTE(png, info, palette.data(), int(palette.size()));
        if (!paletteAlpha.empty())
            png_set_tRNS(png, info, paletteAlpha.data(), int(paletteAlpha.size()), nullptr);
        png_write_info(png, info);
        for (u32 y = 0; y < height; ++y)
            png_write_row(png, rows.data() + y * (rows.size() / height));
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
    }

    KEXSDK::TovOgreRenderThread thread_;
};

Bytes noise(u32 width, u32 height)
{
    std::mt19937 random(width * 31 + height);
    Bytes pixels(std::size_t{width} * height * 4);
    for (u8& byte : pixels)
        byte = u8(random());
    return pixels;
}

TEST_F(PictureFilesTest, LosslessKindsGiveBackEveryByteAlphaIncluded)
{
    for (const char* const name : {"a.png", "a.bmp", "a.tga", "A.PNG", "a.b.Tga"})
        for (const auto& [width, height] : {std::pair{1u, 1u}, {7u, 5u}, {32u, 3u}, {333u, 77u}}) {
            const Bytes pixels = noise(width, height);
            ASSERT_TRUE(save(path(name), pixels, width, height)) << name;
            EXPECT_EQ(load(path(name)), pixels) << name << " " << width << " x " << height;
        }
    // Transparent everywhere: a reader that takes alpha for unused would make it opaque.
    const Bytes transparent(3 * 2 * 4, 0);
    for (const char* const name : {"t.png", "t.bmp", "t.tga"}) {
        EXPECT_TRUE(save(path(name), transparent, 3, 2));
        EXPECT_EQ(load(path(name)), transparent) << name;
    }
}

TEST_F(PictureFilesTest, JpegComesCloseAndKeepsColourEdgesAndOrientation)
{
    // Left half red, right half blue, brighter toward the bottom; alpha is not kept.
    const u32 width = 64, height = 48;
    Bytes pixels;
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x) {
            const u8 level = u8(60 + 4 * y);
            const u8 pixel[] = {x < 31 ? u8(0) : level, 0, x < 31 ? level : u8(0), 7};
            pixels.insert(pixels.end(), pixel, pixel + 4);
        }
    for (const char* const name : {"a.jpg", "a.JPEG"}) {
        ASSERT_TRUE(save(path(name), pixels, width, height));
        const Bytes loaded = load(path(name));
        ASSERT_EQ(loaded.size(), pixels.size());
        for (std::size_t i = 0; i < loaded.size(); ++i)
            ASSERT_LE(std::abs(loaded[i] - (i % 4 == 3 ? 255 : pixels[i])), 24) << name << " byte " << i;
    }
}

/// A JPEG of 8 x 8 equal pixels.
void writeJpeg(const std::string& file, J_COLOR_SPACE space, const Bytes& pixel)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    jpeg_stdio_dest(&jpeg, out);
    jpeg.image_width = jpeg.image_height = 8;
    jpeg.input_components = int(pixel.size());
    jpeg.in_color_space = space;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    Bytes row;
    for (int x = 0; x < 8; ++x)
        row.insert(row.end(), pixel.begin(), pixel.end());
    for (int y = 0; y < 8; ++y) {
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::fclose(out);
}

TEST_F(PictureFilesTest, JpegOfOneOrFourColoursIsConverted)
{
    writeJpeg(path("grey.jpg"), JCS_GRAYSCALE, {77});
    EXPECT_EQ(load(path("grey.jpg")).size(), 8u * 8 * 4);
    EXPECT_EQ(Bytes(load(path("grey.jpg"))).back(), 255);
    EXPECT_NEAR(load(path("grey.jpg"))[0], 77, 2);
    // Inks as programs store them, 255 for none: red at full light, green at half, no blue; a quarter black.
    writeJpeg(path("inks.jpg"), JCS_CMYK, {255, 128, 0, 192});
    const Bytes inks = load(path("inks.jpg"));
    ASSERT_EQ(inks.size(), 8u * 8 * 4);
    EXPECT_NEAR(inks[0], 0, 2);
    EXPECT_NEAR(inks[1], 96, 2);
    EXPECT_NEAR(inks[2], 192, 2);
    EXPECT_EQ(inks[3], 255);
}

TEST_F(PictureFilesTest, EveryKindOfPngBecomesBlueGreenRedAlpha)
{
    writePng("grey.png", 2, 1, 8, PNG_COLOR_TYPE_GRAY, {10, 200});
    EXPECT_EQ(load(path("grey.png")), (Bytes{10, 10, 10, 255, 200, 200, 200, 255}));
    writePng("grey-alpha.png", 1, 2, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {10, 0, 200, 77});
    EXPECT_EQ(load(path("grey-alpha.png")), (Bytes{10, 10, 10, 0, 200, 200, 200, 77}));
    writePng("rgb.png", 2, 1, 8, PNG_COLOR_TYPE_RGB, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(load(path("rgb.png")), (Bytes{3, 2, 1, 255, 6, 5, 4, 255}));
    writePng("rgba16.png", 1, 1, 16, PNG_COLOR_TYPE_RGB_ALPHA, {10, 99, 20, 1, 30, 250, 40, 0});
    EXPECT_EQ(load(path("rgba16.png")), (Bytes{30, 20, 10, 40}));
    writePng("grey16.png", 1, 1, 16, PNG_COLOR_TYPE_GRAY, {123, 45});
    EXPECT_EQ(load(path("grey16.png")), (Bytes{123, 123, 123, 255}));
    writePng("bits.png", 8, 1, 1, PNG_COLOR_TYPE_GRAY, {0x80});
    EXPECT_EQ(load(path("bits.png"))[0], 255);
    EXPECT_EQ(load(path("bits.png"))[4], 0);
    writePng("palette.png", 3, 1, 8, PNG_COLOR_TYPE_PALETTE, {1, 0, 2}, {{1, 2, 3}, {40, 50, 60}, {7, 8, 9}},
        {255, 128});
    EXPECT_EQ(load(path("palette.png")), (Bytes{60, 50, 40, 128, 3, 2, 1, 255, 9, 8, 7, 255}));
}

TEST_F(PictureFilesTest, TheKindIsTakenFromTheFilesBytesAndThePathAsItIs)
{
    const Bytes pixels = noise(40, 30);
    ASSERT_TRUE(save(path("a.png"), pixels, 40, 30));
    for (const char* const name : {"wrong.jpg", "unknown.xyz", "without"}) {
        std::filesystem::copy_file(path("a.png"), path(name));
        EXPECT_EQ(load(path(name)), pixels) << name;
    }
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(directory_);
    EXPECT_EQ(load("a.png"), pixels);
    EXPECT_EQ(load("./without"), pixels);
    std::filesystem::current_path(before);
}

TEST_F(PictureFilesTest, WhatCannotBeReadLeavesTheImageEmptyAndOneLineInTheLog)
{
    write("empty.png", "");
    write("garbage.png", std::string(1000, 'x') + "\xFF\xD8\xFF");
    std::filesystem::create_directory(path("directory.png"));
    ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
    ASSERT_TRUE(save(path("good.png"), noise(50, 50), 50, 50));
    write("short.png", read("good.png").substr(0, 3000));
    for (const char* const name :
        {"empty.png", "garbage.png", "directory.png", "pipe.png", "short.png", "missing.png"}) {
        EXPECT_FALSE(load(path("good.png")).empty());
        EXPECT_TRUE(load(path(name)).empty()) << name;
        EXPECT_TRUE(
            logged("The resouce: " + path(name) + "not be add to resource group or path is not right!"))
            << name;
    }
    EXPECT_TRUE(load("").empty());
}

TEST_F(PictureFilesTest, APictureThatIsTooLargeIsRefusedByItsHeader)
{
    const auto header = [](u32 width, u32 height) {
        std::string bytes = "\x89PNG\r\n\x1A\n" + std::string("\0\0\0\x0DIHDR", 8);
        for (const u32 side : {width, height})
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes += char(side >> shift);
        return bytes + std::string("\x08\x06\0\0\0", 5) + std::string(200, '\0');
    };
    write("wide.png", header(16385, 1));
    write("high.png", header(1, 100000));
    write("limit.png", header(16384, 16384));
    for (const char* const name : {"wide.png", "high.png"}) {
        EXPECT_TRUE(load(path(name)).empty());
        EXPECT_TRUE(logged(std::string("The picture ") + path(name) + " is too large")) << name;
    }
    EXPECT_TRUE(load(path("limit.png")).empty());
    EXPECT_FALSE(logged("The picture " + path("limit.png"))) << "not too large, but there is nothing in it";
}

TEST_F(PictureFilesTest, AFailedSaveIsReportedAndLogged)
{
    const Bytes pixels = noise(60, 60);
    const Bytes wide(70000 * 4);
    ASSERT_TRUE(save(path("older.jpg"), pixels, 60, 60));
    const std::string older = read("older.jpg");
    ASSERT_EQ(symlink("/dev/full", path("full.png").c_str()), 0);
    ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
    std::filesystem::create_directory(path("directory.png"));

    EXPECT_FALSE(logged("Could not store picture."));
    EXPECT_FALSE(save(path("a.webp"), pixels, 60, 60));
    EXPECT_TRUE(logged("Could not store picture. Maybe something that you specified is wrong."));
    for (const char* const name :
        {"png", "a", "a.", "no/such/directory/a.png", "full.png", "pipe.png", "directory.png"})
        EXPECT_FALSE(save(path(name), pixels, 60, 60)) << name;
    EXPECT_FALSE(save(path("flat.png"), pixels, 60, 0));
    EXPECT_FALSE(save(path("older.jpg"), wide, 70000, 1)) << "wider than JPEG allows";
    EXPECT_EQ(read("older.jpg"), older);
    EXPECT_FALSE(std::filesystem::exists(path("flat.png")));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

// While it lives, files end at 64 KiB, as on a disk that fills up.
class ShortFiles {
public:
    ShortFiles()
    {
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{1 << 16, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~ShortFiles()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(PictureFilesTest, ASaveThatFailsLeavesWhatWasThere)
{
    ASSERT_TRUE(save(path("older.png"), noise(20, 20), 20, 20));
    ASSERT_EQ(symlink("older.png", path("link.png").c_str()), 0);
    const std::string older = read("older.png");
    const auto files = [&] {
        const std::filesystem::directory_iterator all(path(""));
        return std::distance(begin(all), end(all));
    };
    const auto before = files();
    {
        const ShortFiles limit;
        for (const char* const name : {"older.png", "link.png", "new.png"})
            EXPECT_FALSE(save(path(name), noise(200, 200), 200, 200)) << name;
    }
    EXPECT_EQ(read("older.png"), older);
    EXPECT_EQ(files(), before);

    // A save that succeeds goes through a link, and keeps the file's permissions.
    ASSERT_EQ(chmod(path("older.png").c_str(), 0640), 0);
    EXPECT_TRUE(save(path("link.png"), noise(30, 30), 30, 30));
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.png")));
    EXPECT_NE(read("older.png"), older);
    struct stat status { };
    ASSERT_EQ(stat(path("older.png").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
    EXPECT_EQ(files(), before);
}

TEST_F(PictureFilesTest, ScalingGivesTheSizeAskedForAndKeepsPlainColours)
{
    Bytes plain;
    for (int i = 0; i < 20 * 10; ++i)
        plain.insert(plain.end(), {11, 22, 33, 44});
    ASSERT_TRUE(save(path("plain.png"), plain, 20, 10));
    const KEXSDK::LoadedImage image = thread_.loadImage(path("plain.png").c_str());
    for (const auto& [width, height] : {std::pair{20u, 10u}, {50u, 33u}, {3u, 1u}, {4096u, 1u}}) {
        ASSERT_TRUE(image->scale(width, height));
        EXPECT_EQ(image->width(), width);
        EXPECT_EQ(image->height(), height);
        ASSERT_EQ(image->bytes().size(), std::size_t{width} * height * 4);
        EXPECT_EQ(Bytes(image->bytes().end() - 4, image->bytes().end()), (Bytes{11, 22, 33, 44}));
    }
    EXPECT_FALSE(image->scale(0, 5));
    EXPECT_FALSE(image->scale(70000, 5));
    image->freeMemory();
    EXPECT_FALSE(image->hasData());
    EXPECT_EQ(image->width(), 0u);
    EXPECT_FALSE(image->scale(5, 5));
}

pictures::Decoded decode(const Bytes& file, std::size_t length)
{
    std::istringstream stream(std::string(file.begin(), file.begin() + std::ptrdiff_t(length)));
    return pictures::decode(stream);
}

bool sameAs(const pictures::Decoded& a, const pictures::Decoded& b)
{
    return a.outcome == b.outcome && a.width == b.width && a.height == b.height && !a.pixels == !b.pixels
        && (!a.pixels
            || std::equal(
                a.pixels.get(), a.pixels.get() + std::size_t{a.width} * a.height * 4, b.pixels.get()));
}

TEST(PictureCodecs, NoBeginningOfAFileIsTakenForThePicture)
{
    using namespace pictures;
    constexpr std::size_t kChecksum = 4; // at the end of a PNG, and no part of its pixels
    for (const Kind kind : {Kind::png, Kind::jpeg, Kind::bmp, Kind::tga})
        for (const auto& [width, height] : {std::pair{2u, 2u}, {32u, 9u}}) {
            const Bytes file = encode(kind, noise(width, height).data(), width, height);
            const Decoded whole = decode(file, file.size());
            ASSERT_EQ(whole.outcome, Decoded::Outcome::picture);
            for (std::size_t length = 0; length < file.size(); ++length) {
                const Decoded part = decode(file, length);
                const bool complete =
                    kind == Kind::png && length + kChecksum >= file.size() && sameAs(part, whole);
                ASSERT_TRUE(part.outcome == Decoded::Outcome::unreadable || complete)
                    << "kind " << int(kind) << ", " << length << " of " << file.size() << " bytes";
            }
        }
}

// Files of the kinds that the engine only reads, by their formats' rules.
std::vector<std::pair<std::string, std::string>> filesOfOtherKinds()
{
    constexpr int kWidth = 40, kHeight = 11;
    std::mt19937 random(5);
    const auto byte = [&] { return char(random()); };
    const std::string header = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 11 +X 40\n";
    std::string runs = header, flat = header;
    for (int y = 0; y < kHeight; ++y) {
        runs += {2, 2, 0, kWidth};
        for (int channel = 0; channel < 4; ++channel) {
            runs += {char(128 + 20), char(100 + channel), 20}; // a run of 20, then 20 values
            for (int i = 0; i < 20; ++i)
                runs += char(1 + (byte() & 0x7F));
        }
    }
    for (int i = 0; i < kWidth * kHeight * 4; ++i)
        flat += char(100 + (byte() & 0x1F));
    std::string grey = "P5\n40 11\n255\n", colours = "P6\n40 11\n255\n";
    for (int i = 0; i < kWidth * kHeight; ++i) {
        grey += byte();
        colours += {byte(), byte(), byte()};
    }
    using namespace std::string_literals;
    const std::string sizes = "\0\0\0\x0B\0\0\0\x28"s;
    std::string photoshop =
        "8BPS\0\1\0\0\0\0\0\0\0\3"s + sizes + "\0\x08\0\3"s + std::string(12, '\0') + "\0\1"s;
    for (int row = 0; row < 3 * kHeight; ++row)
        photoshop += "\0\4"s;
    for (int row = 0; row < 3 * kHeight; ++row)
        photoshop += {char(-19), byte(), char(-19), byte()}; // two runs of 20
    return {{"runs.hdr", runs}, {"flat.hdr", flat}, {"grey.pgm", grey}, {"colours.ppm", colours},
        {"runs.psd", photoshop}};
}

TEST(PictureCodecs, NoFileHoldsADecoderForEver)
{
    using pictures::Decoded;
    for (const auto& [name, file] : filesOfOtherKinds()) {
        const Bytes bytes(file.begin(), file.end());
        ASSERT_EQ(decode(bytes, bytes.size()).outcome, Decoded::Outcome::picture) << name;
        for (std::size_t length = 0; length < bytes.size(); ++length)
            EXPECT_EQ(decode(bytes, length).outcome, Decoded::Outcome::unreadable)
                << name << ", " << length << " of " << bytes.size() << " bytes";
        std::mt19937 random(7);
        for (int attempt = 0; attempt < 400; ++attempt) {
            Bytes damaged = bytes;
            for (int i = 0; i < 3; ++i)
                damaged[random() % damaged.size()] = random() % 2 ? u8(random()) : u8(0);
            decode(
                damaged, damaged.size() - random() % 2 * (random() % 100)); // ends, with or without a picture
        }
    }
}

TEST(PictureCodecs, DamagedFilesReadTheSameEveryTime)
{
    // Where a decoder runs out of data it must not hand out memory that it never wrote.
    using namespace pictures;
    std::mt19937 random(1);
    for (const Kind kind : {Kind::png, Kind::jpeg, Kind::bmp, Kind::tga}) {
        const Bytes file = encode(kind, noise(24, 17).data(), 24, 17);
        for (int attempt = 0; attempt < 300; ++attempt) {
            Bytes damaged = file;
            for (int i = 0; i < 4; ++i) // half of it in the header
                damaged[random() % (i < 2 ? 64 : damaged.size())] = u8(random());
            mallopt(M_PERTURB, 0x11); // what fresh memory is filled with
            const Decoded first = decode(damaged, damaged.size());
            mallopt(M_PERTURB, 0xEE);
            const bool same = sameAs(first, decode(damaged, damaged.size()));
            mallopt(M_PERTURB, 0);
            EXPECT_TRUE(same) << "kind " << int(kind) << ", attempt " << attempt;
        }
    }
}

} // namespace
