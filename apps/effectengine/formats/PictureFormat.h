// What a module for a further kind of pictures offers. Each kind is a shared object that the tool opens when
// it meets such a picture: the libraries that these need take longer to load than most runs of the tool.
#pragma once

#include "pictures/PictureCodecs.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace tool {

/// Samples as a file holds them, four to a pixel, top row first: blue, green, red and straight alpha.
struct RawPicture {
    pictures::Decoded::Outcome outcome = pictures::Decoded::Outcome::unreadable;
    u32 width = 0;
    u32 height = 0;
    bool deep = false; ///< samples of 16 bits in the machine's order, else of 8
    bool inks = false; ///< cyan, magenta, yellow and black instead, 0 for no ink
    std::unique_ptr<u8[], pictures::Free> samples = nullptr; ///< null unless the outcome is a picture
};

/// Memory for a picture of that size, which counts as one then; it stays unreadable without memory.
inline void allocate(RawPicture& picture)
{
    const std::size_t pixel = picture.deep ? 8 : 4;
    picture.samples.reset(static_cast<u8*>(std::malloc(std::size_t{picture.width} * picture.height * pixel)));
    picture.outcome =
        picture.samples ? pictures::Decoded::Outcome::picture : pictures::Decoded::Outcome::unreadable;
}

/// Colours by their numbers in ITU-T H.273.
struct ColourCode {
    unsigned primaries;
    unsigned transfer;
};

/// What stands in front of the pixels.
struct FormatHeader {
    pictures::Decoded::Outcome outcome = pictures::Decoded::Outcome::unreadable;
    u32 width = 0; ///< of the stored picture, also of one that is too large
    u32 height = 0;
    std::optional<int> orientation; ///< as EXIF counts; nothing: what the EXIF data says
    std::vector<u8> exif;
    std::vector<u8> profile; ///< for whatever kind of pixels
    std::optional<ColourCode> colours;
    u32 pictures = 1; ///< of an animation
};

/// What an encoder's time and a file's size are worth against each other.
enum class Effort { normal, fast, small };

struct SaveOptions {
    std::optional<int> quality; ///< 1 to 100; nothing: the kind's own
    Effort effort = Effort::normal;
};

/// A picture to be encoded, bytes blue, green, red and straight alpha.
struct PictureToSave {
    const u8* top;
    std::ptrdiff_t stride; ///< bytes from a row to the one below it
    u32 width;
    u32 height;
    bool opaque;              ///< every alpha is 255
    std::span<const u8> exif; ///< of an upright picture of that size; empty for none
    std::span<const u8> profile;

    const u8* row(u32 y) const { return top + stride * std::ptrdiff_t(y); }
};

/// One kind of picture files. Nothing is thrown but std::bad_alloc.
class PictureFormat {
public:
    virtual ~PictureFormat() = default;

    virtual FormatHeader inspect(std::span<const u8> file) const = 0;
    /// The picture as it is stored, of an animation the first one. A file that ends too early is unreadable.
    virtual RawPicture decode(std::span<const u8> file) const = 0;
    /// The bytes of a file, which depend on the arguments alone; empty when the kind holds no such picture.
    virtual std::vector<u8> encode(const PictureToSave& picture, const SaveOptions& options) const = 0;
};

/// The function by which a module hands out its kind; see EFFECTENGINE_MODULE.
using OfferFormat = const PictureFormat*();

} // namespace tool

#define EFFECTENGINE_MODULE extern "C" __attribute__((visibility("default")))
