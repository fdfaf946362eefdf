// Writing of PNG files with red, green, blue and alpha of 8 bits each.
#pragma once

#include "core/Types.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

struct libdeflate_compressor;

namespace pictures {

/// What a PNG file's size is worth: `small` takes several times as long as `fast`.
enum class PngEffort { fast, small };

/// Pixels in memory, straight alpha.
struct PngPixels {
    enum class Order { bgra, rgba };

    const u8* top = nullptr;   ///< the top row
    std::ptrdiff_t stride = 0; ///< bytes from a row to the one below it
    u32 width = 0;
    u32 height = 0;
    Order order = Order::bgra;
    u32 aspectWidth = 0; ///< of a pixel, together with the height; 0 unknown
    u32 aspectHeight = 0;
};

/// Encodes pictures, one after another, in memory that it keeps from one to the next: once and a half to
/// three times that of the pixels. The bytes depend on pixels and effort alone.
class PngEncoder {
public:
    /// Throws std::bad_alloc.
    explicit PngEncoder(PngEffort effort);

    /// The bytes of a file, which hold until the next call; empty when a side is 0 or the file would be
    /// larger than a PNG file can be. Throws std::bad_alloc.
    std::span<const u8> encode(const PngPixels& picture);

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const;
    };
    /// Memory that grows and is not cleared.
    struct Bytes {
        std::unique_ptr<u8[]> bytes;
        std::size_t size = 0;
        u8* atLeast(std::size_t wanted);
    };

    void filter(const PngPixels& picture, u8* to);

    PngEffort effort_;
    std::unique_ptr<libdeflate_compressor, Free> compressor_;
    std::vector<u8> rows_; ///< the row and the one above it, each behind a pixel of zeros
    std::vector<u8> candidates_;
    Bytes filtered_;
    Bytes file_;
};

} // namespace pictures
