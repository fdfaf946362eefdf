// JPEG in both directions.
#include "pictures/JpegCodec.h"

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <istream>

namespace pictures {

namespace {

constexpr std::streamoff kMaxFileBytes = std::streamoff{1} << 30;
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

/// Decodes a JPEG file in memory.
/// @param result      its pixels are the caller's even after a failure
/// @param headerOnly  the outcome is a picture then, without pixels
/// @return false when the file cannot be read
bool readJpeg(Decoded& result, const unsigned char* bytes, unsigned long size, bool headerOnly)
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
    jpeg_mem_src(&jpeg, bytes, size);
    jpeg_read_header(&jpeg, TRUE);
    result.width = jpeg.image_width;
    result.height = jpeg.image_height;
    if (tooLarge(result.width, result.height)) {
        result.outcome = Decoded::Outcome::tooLarge;
        jpeg_destroy_decompress(&jpeg);
        return true;
    }
    if (headerOnly) {
        result.outcome = Decoded::Outcome::picture;
        jpeg_destroy_decompress(&jpeg);
        return true;
    }
    const Deadline deadline(u64{result.width} * result.height);
    errors.deadline = &deadline;
    const bool inks = jpeg.num_components == 4;
    jpeg.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGRA;
    jpeg_start_decompress(&jpeg);
    const std::size_t stride = std::size_t{result.width} * 4;
    result.pixels.reset(static_cast<u8*>(std::malloc(stride * result.height)));
    while (result.pixels && jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = result.pixels.get() + jpeg.output_scanline * stride;
        jpeg_read_scanlines(&jpeg, &row, 1);
        if (inks)
            convertInks(row, result.width, jpeg.saw_Adobe_marker);
    }
    if (!result.pixels)
        std::longjmp(errors.leave, 1);
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    result.outcome = Decoded::Outcome::picture;
    return !errors.endedEarly;
}

/// @param memory  receives the file, to be freed by the caller even after a failure
/// @return false when the picture cannot be encoded
bool writeJpeg(
    unsigned char** memory, unsigned long* size, const u8* pixels, u32 width, u32 height, JpegQuality quality)
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
        JSAMPROW row = const_cast<u8*>(pixels + std::size_t{jpeg.next_scanline} * width * 4);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    return true;
}

Decoded readFile(std::istream& file, bool headerOnly)
{
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (size <= 0 || size > kMaxFileBytes)
        return {};
    std::vector<unsigned char> bytes{};
    bytes.resize(std::size_t(size));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), size);
    Decoded result;
    if (file.gcount() != size
        || !readJpeg(result, bytes.data(), static_cast<unsigned long>(size), headerOnly))
        return {};
    return result;
}

} // namespace

Decoded decodeJpeg(std::istream& file) { return readFile(file, false); }

Decoded inspectJpeg(std::istream& file) { return readFile(file, true); }

std::vector<u8> encodeJpeg(const u8* pixels, u32 width, u32 height, JpegQuality quality)
{
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    const bool written = writeJpeg(&memory, &size, pixels, width, height, quality);
    const std::unique_ptr<unsigned char, decltype(&std::free)> own(memory, &std::free);
    return written ? std::vector<u8>(memory, memory + size) : std::vector<u8>{};
}

} // namespace pictures
