// Picture files, decoded to and encoded from 32-bit pixels: bytes blue, green, red, alpha, top row first,
// straight alpha.
#pragma once

#include "core/Types.h"

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
bool tooLarge(u32 width, u32 height);

struct Free {
    void operator()(void* memory) const;
};

struct Decoded {
    enum class Outcome { picture, tooLarge, unreadable };
    Outcome outcome = Outcome::unreadable;
    u32 width = 0; ///< what the header says; also for a picture that is too large
    u32 height = 0;
    std::unique_ptr<u8[], Free> pixels; ///< width * height * 4 bytes, null unless the outcome is a picture
};

/// Reads PNG, JPEG, BMP, TGA, GIF (first frame), PSD, PIC, PPM, PGM and Radiance files, told apart by their
/// bytes. A file that ends too early is unreadable. 16-bit channels keep their upper half; orientation tags
/// and colour profiles are not applied.
/// @param file  seekable, at its start
Decoded decode(std::istream& file);

enum class Kind { png, jpeg, bmp, tga };

/// The kind that a path's extension names, in either case.
std::optional<Kind> kindOf(std::string_view path);

/// The bytes of a picture file; empty when the kind cannot hold a picture of that size. JPEG drops alpha.
std::vector<u8> encode(Kind kind, const u8* pixels, u32 width, u32 height);

/// Writes a whole picture file. @return false when anything failed; a file that was begun is removed then
bool save(const std::string& path, const u8* pixels, u32 width, u32 height);

} // namespace pictures
