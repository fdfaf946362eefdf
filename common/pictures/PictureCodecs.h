// Picture files, decoded to and encoded from 32-bit pixels: bytes blue, green, red, alpha, top row first,
// straight alpha.
#pragma once

#include "core/Types.h"

#include <chrono>
#include <cstdlib>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pictures {

/// A picture with a longer side, or with more pixels, is not decoded.
constexpr u32 kMaxSide = 16384;
constexpr u64 kMaxPixels = u64{kMaxSide} * kMaxSide;
constexpr bool tooLarge(u32 width, u32 height)
{
    return width > kMaxSide || height > kMaxSide || u64{width} * height > kMaxPixels;
}

struct Free {
    void operator()(void* memory) const { std::free(memory); } // as the libraries release what they allocate
};

/// A value of 16 bits in 8: the nearest, value * 255 / 65535 rounded.
constexpr u8 rounded8(u32 value) { return u8((value * 255 + 32895) >> 16); }

struct Decoded {
    enum class Outcome { picture, tooLarge, unreadable };
    Outcome outcome = Outcome::unreadable;
    u32 width = 0; ///< what the header says; also for a picture that is too large
    u32 height = 0;
    std::unique_ptr<u8[], Free> pixels; ///< width * height * 4 bytes, null unless the outcome is a picture
};

/// Reads PNG, JPEG, BMP, TGA, GIF (first frame), PSD, PIC, PPM, PGM and Radiance files, told apart by their
/// bytes. A file that ends too early is unreadable. 16-bit channels are rounded (rounded8); orientation tags
/// and colour profiles are not applied.
/// @param file  seekable, at its start
Decoded decode(std::istream& file);

/// A picture of 16 bits a channel.
struct DecodedDeep {
    Decoded::Outcome outcome = Decoded::Outcome::unreadable;
    u32 width = 0; ///< as in Decoded
    u32 height = 0;
    std::unique_ptr<u16[], Free> pixels; ///< blue, green, red, alpha; null unless the outcome is a picture
};

/// Whether a file has channels of 16 bits, which decodeDeep() reads: PNG and Photoshop files.
/// @param file  seekable, at its start, where it is left
bool isDeep(std::istream& file);
DecodedDeep decodeDeep(std::istream& file);

/// A picture that is read as a measure of something: its greys alone, in 16 bits.
struct DecodedGrey {
    Decoded::Outcome outcome = Decoded::Outcome::unreadable;
    u32 width = 0; ///< as in Decoded
    u32 height = 0;
    bool fine = false;       ///< the file holds more than 8 bits a channel
    std::vector<u16> values; ///< width * height from the top, 65535 for white; empty unless it is a picture
};

/// Reads the files that decode() reads; 16-bit channels are kept, colours count by their luma and alpha not
/// at all. Throws std::bad_alloc.
/// @param file  seekable, at its start
DecodedGrey decodeGrey(std::istream& file);

/// The grey of a colour of 16 bits a channel, in 77, 150 and 29 parts of 256.
constexpr u16 luma(u32 r, u32 g, u32 b) { return u16((r * 77 + g * 150 + b * 29 + 128) >> 8); }

/// The size alone, from the header: a picture outcome without pixels. Whether the rest of the file can be
/// read is not looked at.
/// @param file  seekable, at its start
Decoded inspect(std::istream& file);

/// Scales with a bilinear filter. @return false, with the picture unchanged, when a side is 0 or above
/// kMaxSide, or memory is short
bool scale(Decoded& picture, u32 width, u32 height);

/// The time that decoding a picture may take: ten seconds and one for every million pixels, many times what
/// the slowest kinds need. Decoders check it in their callbacks.
class Deadline {
public:
    explicit Deadline(u64 pixels);
    bool isOver() const;

private:
    std::chrono::steady_clock::time_point end_;
};

enum class Kind { png, jpeg, bmp, tga };

/// The kind that a path's extension, in either case, names; none for another extension.
std::optional<Kind> kindOf(std::string_view path);

/// The bytes of a picture file; empty when a side is 0 or the kind cannot hold a picture of that size. JPEG
/// drops alpha.
std::vector<u8> encode(Kind kind, const u8* pixels, u32 width, u32 height);

/// Writes a whole picture file, beside the path under a hidden name, and gives it the name when it is
/// complete; a link stays and its target is replaced. Pipes and devices are written to directly.
/// @return false when anything failed; what had the name before is as it was then
bool save(const std::string& path, const u8* pixels, u32 width, u32 height);

} // namespace pictures
