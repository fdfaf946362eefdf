// JPEG in both directions.
#include "pictures/JpegCodec.h"

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <istream>
#include <utility>

namespace pictures {

namespace {

constexpr std::streamoff kMaxFileBytes = std::streamoff{1} << 30;
constexpr u32 kRowsAtOnce = 16;
constexpr int kMaxScans = 200; // a progressive file of a few bytes can ask for hours of work

/// The library leaves by longjmp: the functions that it leaves keep no objects with destructors.
struct Errors {
    jpeg_error_mgr manager; // first: the library hands back its address
    std::jmp_buf leave;
    bool endedEarly;
    const Deadline* deadline; ///< null for none

    jpeg_error_mgr* prepare()
    {
        endedEarly = false;
        deadline = nullptr;
        jpeg_std_error(&manager);
        manager.error_exit = [](j_common_ptr jpeg) { std::longjmp(of(jpeg).leave, 1); };
        manager.emit_message = [](j_common_ptr jpeg, int) {
            if (jpeg->err->msg_code == JWRN_JPEG_EOF)
                of(jpeg).endedEarly = true;
        };
        return &manager;
    }
    static Errors& of(j_common_ptr jpeg) { return *reinterpret_cast<Errors*>(jpeg->err); }
};

void refuseEndlessWork(j_common_ptr jpeg)
{
    const Errors& errors = Errors::of(jpeg);
    const bool manyScans =
        jpeg->is_decompressor && reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > kMaxScans;
    if (manyScans || (errors.deadline && errors.deadline->isOver()))
        std::longjmp(Errors::of(jpeg).leave, 1);
}

/// Four inks, which the common programs store inverted, to blue, green, red, alpha.
void convertInks(u8* row, u32 width, bool inverted)
{
    for (u8* pixel = row; pixel != row + std::size_t{width} * 4; pixel += 4) {
        const auto light = [&](u8 ink) { return inverted ? ink : 255 - ink; };
        const int black = light(pixel[3]);
        const u8 red = u8(light(pixel[0]) * black / 255);
        pixel[1] = u8(light(pixel[1]) * black / 255);
        pixel[0] = u8(light(pixel[2]) * black / 255);
        pixel[2] = red;
        pixel[3] = 255;
    }
}

void invert(u8* row, u32 width)
{
    for (u8* ink = row; ink != row + std::size_t{width} * 4; ++ink)
        *ink = u8(255 - *ink);
}

/// The addresses of the next rows, kRowsAtOnce at most.
template <class Byte> u32 nextRows(JSAMPROW* addresses, Rows<Byte> rows, u32 first, u32 height)
{
    const u32 count = std::min(kRowsAtOnce, height - first);
    for (u32 i = 0; i < count; ++i)
        addresses[i] = const_cast<u8*>(rows.top + std::ptrdiff_t(first + i) * rows.stride);
    return count;
}

using Target = Rows<u8> (*)(void* context, u32 width, u32 height);

/// Decodes a JPEG file in memory.
/// @param result  receives what the header says, and the outcome
/// @param target  called with the size of the picture, it answers where its rows go, without a top row for
///                nowhere; it must not throw. Null: only the header is read, and the outcome is a picture
///                then
/// @param keepsInks  the rows receive inks, 0 for none, and a file without four of them cannot be read
/// @return false when the file cannot be read
bool readJpeg(Decoded& result, std::span<const u8> file, Target target, void* context, bool keepsInks = false)
{
    jpeg_decompress_struct jpeg;
    Errors errors;
    jpeg_progress_mgr progress{};
    jpeg.err = errors.prepare();
    if (setjmp(errors.leave)) {
        jpeg_destroy_decompress(&jpeg);
        return false;
    }
    jpeg_create_decompress(&jpeg);
    progress.progress_monitor = refuseEndlessWork;
    jpeg.progress = &progress;
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    result.width = jpeg.image_width;
    result.height = jpeg.image_height;
    if (tooLarge(result.width, result.height)) {
        result.outcome = Decoded::Outcome::tooLarge;
        jpeg_destroy_decompress(&jpeg);
        return true;
    }
    if (!target) {
        result.outcome = Decoded::Outcome::picture;
        jpeg_destroy_decompress(&jpeg);
        return true;
    }
    const Deadline deadline(u64{result.width} * result.height);
    errors.deadline = &deadline;
    const bool inks = jpeg.num_components == 4;
    if (keepsInks && !inks)
        std::longjmp(errors.leave, 1);
    jpeg.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGRA;
    jpeg_start_decompress(&jpeg);
    const Rows<u8> rows = target(context, result.width, result.height);
    if (!rows.top)
        std::longjmp(errors.leave, 1);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW addresses[kRowsAtOnce];
        const u32 count = nextRows(addresses, rows, jpeg.output_scanline, jpeg.output_height);
        const u32 read = jpeg_read_scanlines(&jpeg, addresses, count);
        for (u32 i = 0; inks && i < read; ++i) {
            if (!keepsInks)
                convertInks(addresses[i], result.width, jpeg.saw_Adobe_marker);
            else if (jpeg.saw_Adobe_marker)
                invert(addresses[i], result.width);
        }
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    result.outcome = Decoded::Outcome::picture;
    return !errors.endedEarly;
}

/// @param memory  receives the file, to be freed by the caller even after a failure
/// @return false when the picture cannot be encoded
bool writeJpeg(unsigned char** memory, unsigned long* size, Rows<const u8> rows, u32 width, u32 height,
    JpegQuality quality)
{
    jpeg_compress_struct jpeg;
    Errors errors;
    jpeg.err = errors.prepare();
    if (setjmp(errors.leave)) {
        jpeg_destroy_compress(&jpeg);
        return false;
    }
    jpeg_create_compress(&jpeg);
    jpeg_mem_dest(&jpeg, memory, size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality.percent, TRUE);
    for (int i = 0; quality.fullColour && i < jpeg.num_components; ++i)
        jpeg.comp_info[i].h_samp_factor = jpeg.comp_info[i].v_samp_factor = 1;
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < height) {
        JSAMPROW addresses[kRowsAtOnce];
        const u32 count = nextRows(addresses, rows, jpeg.next_scanline, height);
        jpeg_write_scanlines(&jpeg, addresses, count);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    return true;
}

// Pixels of the picture's own, which stay with it after a failure.
Rows<u8> ownPixels(void* decoded, u32 width, u32 height)
{
    auto& pixels = static_cast<Decoded*>(decoded)->pixels;
    const std::size_t stride = std::size_t{width} * 4;
    pixels.reset(static_cast<u8*>(std::malloc(stride * height)));
    return {pixels.get(), std::ptrdiff_t(stride)};
}

Decoded readBytes(std::span<const u8> file, Target target)
{
    Decoded result;
    return readJpeg(result, file, target, &result) ? std::move(result) : Decoded{};
}

Decoded readFile(std::istream& file, Target target)
{
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (size <= 0 || size > kMaxFileBytes)
        return {};
    std::vector<u8> bytes(static_cast<std::size_t>(size));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), size);
    return file.gcount() == size ? readBytes(bytes, target) : Decoded{};
}

} // namespace

bool beginsLikeJpeg(std::span<const u8> file)
{
    return file.size() >= 2 && file[0] == 0xFF && file[1] == 0xD8;
}

Decoded decodeJpeg(std::istream& file) { return readFile(file, ownPixels); }

Decoded inspectJpeg(std::istream& file) { return readFile(file, nullptr); }

Decoded decodeJpeg(std::span<const u8> file) { return readBytes(file, ownPixels); }

Decoded decodeJpegInks(std::span<const u8> file)
{
    Decoded result;
    return readJpeg(result, file, ownPixels, &result, true) ? std::move(result) : Decoded{};
}

Decoded inspectJpeg(std::span<const u8> file) { return readBytes(file, nullptr); }

bool decodeJpegInto(std::span<const u8> file, u32 width, u32 height, Rows<u8> rows)
{
    struct Given {
        u32 width, height;
        Rows<u8> rows;
    } given{width, height, rows};
    const Target target = [](void* context, u32 w, u32 h) {
        const auto& to = *static_cast<const Given*>(context);
        return to.width == w && to.height == h ? to.rows : Rows<u8>{};
    };
    Decoded result;
    return readJpeg(result, file, target, &given) && result.outcome == Decoded::Outcome::picture;
}

std::vector<u8> encodeJpeg(const u8* pixels, u32 width, u32 height, JpegQuality quality)
{
    return encodeJpeg(Rows<const u8>{pixels, std::ptrdiff_t{width} * 4}, width, height, quality);
}

std::vector<u8> encodeJpeg(Rows<const u8> rows, u32 width, u32 height, JpegQuality quality)
{
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    const bool written = writeJpeg(&memory, &size, rows, width, height, quality);
    const std::unique_ptr<unsigned char, decltype(&std::free)> own(memory, &std::free);
    return written ? std::vector<u8>(memory, memory + size) : std::vector<u8>{};
}

} // namespace pictures
