// Reading picture files: JPEG and PNM through codecs of their own, the other kinds through the system's stb
// library.
#include "pictures/JpegCodec.h"
#include "pictures/PictureCodecs.h"
#include "pictures/PnmCodec.h"

#include <stb_image.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <sstream>
#include <string_view>

namespace pictures {

namespace {

constexpr std::streamoff kHeadBytes = 128; // what stb reads ahead to find out the kind

/// Hands a file to stb, and notices when the file is too short: stb fills up what it lacks, partly with
/// memory that it never wrote, and reports nothing. At the end of a Radiance file stb would wait for ever for
/// something other than zeros. So beyond the end it gets zeros first, which end headers, and then ones, which
/// are runs of pixels or faults. A decoder that goes on all the same, or works for too long, is left by
/// longjmp, which would lose what it has allocated; in every case known a decoder frees its memory itself.
class Source {
public:
    /// @param pixels  of the picture, 0 while only its header is read
    Source(std::istream& stream, u64 pixels)
        : stream_(stream),
          beyondLimit_(kBeyondHeader + 8 * pixels),
          deadline_(pixels)
    {
    }

    bool ranOut() const { return ranOut_; }
    std::jmp_buf& leave() { return leave_; }

    static const stbi_io_callbacks& callbacks()
    {
        static constexpr stbi_io_callbacks kCallbacks{
            [](void* self, char* data, int size) { return static_cast<Source*>(self)->read(data, size); },
            [](void* self, int count) { static_cast<Source*>(self)->skip(count); },
            [](void* self) -> int { return static_cast<Source*>(self)->stream_.peek() == EOF; }};
        return kCallbacks;
    }

private:
    static constexpr u64 kBeyondHeader = 1 << 16;

    int read(char* data, int size)
    {
        if (!readAhead_)
            readAhead_ = data; // the decoder's own buffer comes first, and may be filled in part
        stream_.read(data, size);
        const int count = int(stream_.gcount());
        if (count == 0 || (count < size && data != readAhead_))
            ranOut_ = true;
        if (beyond_ > beyondLimit_ || deadline_.isOver())
            std::longjmp(leave_, 1);
        if (count > 0 || data != readAhead_)
            return count;
        std::memset(data, beyond_ == 0 ? 0 : 0xFF, std::size_t(size));
        beyond_ += u64(size);
        return size;
    }
    void skip(int count)
    {
        stream_.clear();
        stream_.seekg(count, std::ios::cur);
    }

    std::istream& stream_;
    const u64 beyondLimit_;
    const Deadline deadline_;
    const char* readAhead_ = nullptr;
    u64 beyond_ = 0; ///< bytes handed out that the file does not have
    bool ranOut_ = false;
    std::jmp_buf leave_;
};

// These three are left by longjmp, so they keep no objects with destructors.

bool readHeader(Source& source, int* width, int* height)
{
    int channels = 0;
    if (setjmp(source.leave()))
        return false;
    return stbi_info_from_callbacks(&Source::callbacks(), &source, width, height, &channels) && *width > 0
        && *height > 0;
}

bool readWhetherDeep(Source& source)
{
    return !setjmp(source.leave()) && stbi_is_16_bit_from_callbacks(&Source::callbacks(), &source);
}

/// Four channels of 8 or 16 bits to a pixel.
/// @return memory that the caller frees, or null
template <class Channel> Channel* readPixels(Source& source, int* width, int* height)
{
    int channels = 0;
    if (setjmp(source.leave()))
        return nullptr;
    // The host may use stb as well, and have it flip pictures on all threads.
    stbi_set_flip_vertically_on_load_thread(0);
    if constexpr (sizeof(Channel) == 2)
        return stbi_load_16_from_callbacks(&Source::callbacks(), &source, width, height, &channels, 4);
    else
        return stbi_load_from_callbacks(&Source::callbacks(), &source, width, height, &channels, 4);
}

/// Whether a file of so many bytes can hold that many pixels: a few bytes may declare a picture that takes
/// seconds and a gigabyte. Only for large pictures, with the most that each kind packs into a byte. (A GIF of
/// one pixel may lie on a canvas of any size.)
bool canHold(std::istream& stream, u64 pixels)
{
    constexpr u64 kLarge = 1 << 24;
    if (pixels <= kLarge)
        return true;
    char head[4] = {};
    stream.clear();
    stream.seekg(0, std::ios::end);
    const u64 bytes = u64(std::max<std::streamoff>(0, stream.tellg()));
    stream.seekg(0);
    stream.read(head, sizeof head);
    const std::string_view start(head, sizeof head);
    const auto most = [&]() -> u64 {
        if (start.starts_with("\x89PNG"))
            return 8 * 1032; // one bit a pixel, and deflate's best
        if (start.starts_with("GIF8"))
            return kMaxPixels;
        if (start.starts_with("BM"))
            return 8; // runs are not read
        if (start.starts_with("#?"))
            return 127; // a run holds 127 values at most, in two bytes
        if (start.starts_with("\x53\x80\xF6\x34"))
            return 1 << 16; // PIC: a run's length has two bytes
        return 128;         // TGA, Photoshop: runs of 128
    };
    return pixels / most() <= bytes;
}

/// Only the size; a picture outcome without pixels.
Decoded sizeIn(std::istream& stream)
{
    Decoded result;
    int width = 0, height = 0;
    Source header(stream, 0);
    if (!readHeader(header, &width, &height))
        return result;
    result.width = u32(width);
    result.height = u32(height);
    result.outcome =
        tooLarge(result.width, result.height) ? Decoded::Outcome::tooLarge : Decoded::Outcome::picture;
    return result;
}

/// The pixels of a file whose size is known, red first; null when it cannot be read to its end.
template <class Channel> std::unique_ptr<Channel[], Free> pixelsIn(std::istream& stream, const Decoded& size)
{
    if (!canHold(stream, u64{size.width} * size.height))
        return nullptr;
    stream.clear();
    stream.seekg(0);
    int width = 0, height = 0;
    Source source(stream, u64{size.width} * size.height);
    std::unique_ptr<Channel[], Free> pixels(readPixels<Channel>(source, &width, &height));
    if (source.ranOut() || u32(width) != size.width || u32(height) != size.height)
        pixels.reset();
    return pixels;
}

template <class Channel> void swapRedAndBlue(Channel* pixels, u32 width, u32 height)
{
    Channel* const end = pixels + std::size_t{width} * height * 4;
    for (Channel* pixel = pixels; pixel != end; pixel += 4)
        std::swap(pixel[0], pixel[2]);
}

/// The picture in 8 bits. The values of 16 bits leave their memory to it.
Decoded rounded(DecodedDeep deep)
{
    Decoded result{deep.outcome, deep.width, deep.height, nullptr};
    if (!deep.pixels)
        return result;
    const std::size_t count = std::size_t{deep.width} * deep.height * 4;
    const u16* const from = deep.pixels.get();
    result.pixels.reset(static_cast<u8*>(std::malloc(count)));
    if (result.pixels)
        std::transform(from, from + count, result.pixels.get(), [](u16 value) { return rounded8(value); });
    else
        result.outcome = Decoded::Outcome::unreadable;
    return result;
}

Decoded decodeWhole(std::istream& stream)
{
    Decoded result = sizeIn(stream);
    if (result.outcome != Decoded::Outcome::picture)
        return result;
    result.pixels = pixelsIn<u8>(stream, result);
    if (!result.pixels) {
        result.outcome = Decoded::Outcome::unreadable;
        return result;
    }
    swapRedAndBlue(result.pixels.get(), result.width, result.height);
    return result;
}

DecodedGrey decodeDeepGrey(std::istream& stream)
{
    const DecodedDeep picture = decodeDeep(stream);
    DecodedGrey result{picture.outcome, picture.width, picture.height, true, {}};
    if (!picture.pixels)
        return result;
    result.values.resize(std::size_t{picture.width} * picture.height);
    const u16* from = picture.pixels.get();
    for (u16& value : result.values) {
        value = luma(from[2], from[1], from[0]);
        from += 4;
    }
    return result;
}

/// Decodes a file shorter than what stb reads ahead to find out the kind, which alone may run into the file's
/// end. It is read twice, with different bytes appended: what depends on them is not in the file.
Decoded decodeTiny(const std::string& bytes)
{
    Decoded results[2];
    for (int i = 0; i < 2; ++i) {
        std::istringstream padded(bytes + std::string(std::size_t{kHeadBytes}, i ? '\xFF' : '\0'));
        results[i] = decodeWhole(padded);
        if (results[i].outcome != Decoded::Outcome::picture)
            return std::move(results[i]);
    }
    const std::size_t size = std::size_t{results[0].width} * results[0].height * 4;
    const bool same = results[0].width == results[1].width && results[0].height == results[1].height
        && std::memcmp(results[0].pixels.get(), results[1].pixels.get(), size) == 0;
    return same ? std::move(results[0]) : Decoded{};
}

} // namespace

Deadline::Deadline(u64 pixels)
    : end_(std::chrono::steady_clock::now() + std::chrono::seconds(10) + std::chrono::microseconds(pixels))
{
}

bool Deadline::isOver() const { return std::chrono::steady_clock::now() > end_; }

Decoded inspect(std::istream& file)
{
    char head[2] = {};
    file.read(head, sizeof head);
    const bool isJpeg = std::string_view(head, sizeof head) == "\xFF\xD8";
    file.clear();
    file.seekg(0);
    if (isPnm(file))
        return inspectPnm(file);
    return isJpeg ? inspectJpeg(file) : sizeIn(file);
}

Decoded decode(std::istream& file)
{
    if (isPnm(file))
        return decodePnm(file);
    std::string head(std::size_t{kHeadBytes}, '\0');
    file.read(head.data(), kHeadBytes);
    if (file.gcount() == 0)
        return {};
    if (head.starts_with("\xFF\xD8")) {
        file.clear();
        return decodeJpeg(file);
    }
    if (file.gcount() < kHeadBytes) {
        head.resize(std::size_t(file.gcount()));
        return decodeTiny(head);
    }
    file.clear();
    file.seekg(0);
    return isDeep(file) ? rounded(decodeDeep(file)) : decodeWhole(file);
}

// A file that is shorter than what stb reads ahead does not count.
bool isDeep(std::istream& file)
{
    char head[kHeadBytes];
    const bool enough = bool(file.read(head, kHeadBytes));
    file.clear();
    file.seekg(0);
    if (!enough)
        return false;
    Source source(file, 0);
    const bool deep = readWhetherDeep(source);
    file.clear();
    file.seekg(0);
    return deep;
}

DecodedDeep decodeDeep(std::istream& file)
{
    const Decoded size = sizeIn(file);
    DecodedDeep result{size.outcome, size.width, size.height, nullptr};
    if (size.outcome != Decoded::Outcome::picture)
        return result;
    result.pixels = pixelsIn<u16>(file, size);
    if (result.pixels)
        swapRedAndBlue(result.pixels.get(), result.width, result.height);
    else
        result.outcome = Decoded::Outcome::unreadable;
    return result;
}

DecodedGrey decodeGrey(std::istream& file)
{
    if (isPnm(file))
        return decodeGreyPnm(file);
    if (isDeep(file))
        return decodeDeepGrey(file);
    const Decoded picture = decode(file);
    DecodedGrey result{picture.outcome, picture.width, picture.height, false, {}};
    if (!picture.pixels)
        return result;
    result.values.resize(std::size_t{picture.width} * picture.height);
    constexpr u32 kByte = 257; // 255 becomes 65535
    const u8* from = picture.pixels.get();
    for (u16& value : result.values) {
        value = luma(from[2] * kByte, from[1] * kByte, from[0] * kByte);
        from += 4;
    }
    return result;
}

} // namespace pictures
