// TIFF pictures over libtiff: strips and tiles of grey, palette, RGB and CMYK in 1 to 32 bits are put
// together here; what else libtiff knows comes from its own converter.
#include "effectengine/formats/PictureFormat.h"
#include "effectengine/formats/tiffExif.h"

#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace tool {

namespace {

using Outcome = pictures::Decoded::Outcome;
using Tiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

constexpr std::size_t kLargestBlock = std::size_t{1} << 31;
constexpr u64 kSmallBlock = 1 << 22;         // pixels of a block that is never too large for its picture
constexpr std::size_t kStripBytes = 1 << 18; // in files that are written
constexpr int kLevels[]{6, 1, 9};            // of deflate, by Effort

/// A file in memory as libtiff reads and writes it.
struct Memory {
    std::span<const u8> given;       ///< the file to read
    std::vector<u8>* made = nullptr; ///< the file to write, instead
    std::size_t at = 0;
    bool endedEarly = false; ///< a picture in JPEG's way breaks off, for which libtiff has a warning alone

    std::size_t size() const { return made ? made->size() : given.size(); }
    static Memory& of(thandle_t handle) { return *static_cast<Memory*>(handle); }

    static tmsize_t read(thandle_t handle, void* to, tmsize_t size)
    {
        Memory& self = of(handle);
        const u8* const bytes = self.made ? self.made->data() : self.given.data();
        const std::size_t count = std::min(std::size_t(size), self.size() - std::min(self.at, self.size()));
        std::copy_n(bytes + self.at, count, static_cast<u8*>(to));
        self.at += count;
        return tmsize_t(count);
    }
    static tmsize_t write(thandle_t handle, void* from, tmsize_t size)
    {
        Memory& self = of(handle);
        if (!self.made)
            return -1;
        self.made->resize(std::max(self.made->size(), self.at + std::size_t(size)));
        std::copy_n(static_cast<const u8*>(from), size, self.made->begin() + std::ptrdiff_t(self.at));
        self.at += std::size_t(size);
        return size;
    }
    static toff_t seek(thandle_t handle, toff_t offset, int from)
    {
        Memory& self = of(handle);
        self.at = std::size_t(offset) + (from == SEEK_CUR ? self.at : from == SEEK_END ? self.size() : 0);
        return self.at;
    }
    static toff_t sizeOf(thandle_t handle) { return of(handle).size(); }
    static int close(thandle_t) { return 0; }
    static int map(thandle_t, void**, toff_t*) { return 0; }
    static void unmap(thandle_t, void*, toff_t) { }
};

int noteWarning(TIFF*, void* memory, const char* module, const char*, va_list words)
{
    // libjpeg's warnings come as the one argument of "%s".
    if (module && std::string_view(module) == "JPEGLib")
        if (const char* const text = va_arg(words, const char*))
            if (std::string_view(text).find("remature end") != std::string_view::npos)
                static_cast<Memory*>(memory)->endedEarly = true;
    return 1;
}

/// @param memory  stays as long as the answer
Tiff opened(Memory& memory, const char* mode)
{
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
    if (!options)
        return {nullptr, &TIFFClose};
    TIFFOpenOptionsSetErrorHandlerExtR(
        options.get(), [](TIFF*, void*, const char*, const char*, va_list) { return 1; }, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), noteWarning, &memory);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), tmsize_t(kLargestBlock));
    return {TIFFClientOpenExt("picture", mode, &memory, Memory::read, Memory::write, Memory::seek,
                Memory::close, Memory::sizeOf, Memory::map, Memory::unmap, options.get()),
        &TIFFClose};
}

/// The file at its first picture that is no smaller version of another one.
Tiff openedToRead(Memory& memory)
{
    Tiff tiff = opened(memory, "rm");
    if (!tiff)
        return tiff;
    do {
        u32 kind = 0;
        TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_SUBFILETYPE, &kind);
        if (!(kind & FILETYPE_REDUCEDIMAGE))
            return tiff;
    } while (TIFFReadDirectory(tiff.get()));
    TIFFSetDirectory(tiff.get(), 0);
    return tiff;
}

template <class Number> Number field(TIFF* tiff, u32 tag)
{
    Number value{};
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

/// How samples lie in a file.
struct Layout {
    u32 width, height;
    u16 bits, samples, photometric;
    bool floats, separate;
    int alpha = -1; ///< the sample that is alpha
    bool associated = false;
    u32 blockWidth, blockHeight; ///< of a tile or a strip
    bool tiled;

    explicit Layout(TIFF* tiff)
        : width(field<u32>(tiff, TIFFTAG_IMAGEWIDTH)),
          height(field<u32>(tiff, TIFFTAG_IMAGELENGTH)),
          bits(field<u16>(tiff, TIFFTAG_BITSPERSAMPLE)),
          samples(field<u16>(tiff, TIFFTAG_SAMPLESPERPIXEL)),
          photometric(field<u16>(tiff, TIFFTAG_PHOTOMETRIC)),
          floats(field<u16>(tiff, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_IEEEFP),
          separate(field<u16>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE),
          tiled(TIFFIsTiled(tiff) != 0)
    {
        blockWidth = tiled ? field<u32>(tiff, TIFFTAG_TILEWIDTH) : width;
        blockHeight = tiled ? field<u32>(tiff, TIFFTAG_TILELENGTH)
                            : std::min(height, field<u32>(tiff, TIFFTAG_ROWSPERSTRIP));
        u16 count = 0;
        const u16* kinds = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
        for (int i = 0; i < count && alpha < 0; ++i)
            if (kinds[i] != EXTRASAMPLE_UNSPECIFIED) {
                alpha = samples - count + i;
                associated = kinds[i] == EXTRASAMPLE_ASSOCALPHA;
            }
    }

    bool isGrey() const
    {
        return photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
    }
    u16 colours() const
    {
        return photometric == PHOTOMETRIC_SEPARATED ? 4 : photometric == PHOTOMETRIC_RGB ? 3 : 1;
    }
    bool isKnown() const
    {
        const bool bitsFit = floats ? bits == 32 : bits <= 16 || bits == 32;
        const bool palette = photometric == PHOTOMETRIC_PALETTE && bits <= 16 && !floats;
        return bits > 0 && bitsFit && samples >= colours()
            && (isGrey() || palette || photometric == PHOTOMETRIC_RGB
                || photometric == PHOTOMETRIC_SEPARATED);
    }
    /// Whether blocks are in proportion to the picture.
    bool fits() const
    {
        return blockWidth > 0 && blockHeight > 0
            && u64{blockWidth} * blockHeight <= std::max(kSmallBlock, 4 * u64{width} * height);
    }
};

/// Takes samples from the bytes of a row and brings them to the range of the result.
class Unpacker {
public:
    Unpacker(const Layout& layout, bool deep)
        : bits_(layout.bits),
          floats_(layout.floats),
          largest_(layout.bits >= 32 ? 0xFFFFFFFFu : (1u << layout.bits) - 1),
          wanted_(layout.photometric == PHOTOMETRIC_PALETTE ? largest_
                  : deep                                    ? 65535u
                                                            : 255u)
    {
    }

    u32 at(const u8* row, std::size_t index) const
    {
        if (bits_ == 8 && wanted_ == 255)
            return row[index];
        return scaled(raw(row, index));
    }

private:
    u32 raw(const u8* row, std::size_t index) const
    {
        if (bits_ == 16) {
            u16 value;
            std::memcpy(&value, row + index * 2, sizeof value);
            return value;
        }
        if (bits_ == 32) {
            u32 value;
            std::memcpy(&value, row + index * 4, sizeof value);
            return floats_ ? fromFloat(std::bit_cast<float>(value)) : value;
        }
        u32 value = 0;
        for (std::size_t bit = index * bits_, end = bit + bits_; bit < end; ++bit)
            value = value << 1 | ((row[bit / 8] >> (7 - bit % 8)) & 1u);
        return value;
    }
    static u32 fromFloat(float value)
    {
        const double inRange = value > 0 ? std::min(double(value), 1.0) : 0.0; // not a number: 0
        return u32(inRange * 4294967295.0 + 0.5);
    }
    u32 scaled(u32 value) const
    {
        return largest_ == wanted_ ? value : u32((u64{value} * wanted_ + largest_ / 2) / largest_);
    }

    unsigned bits_;
    bool floats_;
    u32 largest_;
    u32 wanted_;
};

template <class Sample> class Assembly {
public:
    Assembly(TIFF* tiff, const Layout& layout, RawPicture& picture)
        : tiff_(tiff),
          layout_(layout),
          picture_(picture),
          unpacker_(layout, sizeof(Sample) == 2),
          pixels_(reinterpret_cast<Sample*>(picture.samples.get()))
    {
    }

    /// @return false for a file that breaks off or is damaged
    bool run()
    {
        const bool inks = picture_.inks;
        if (!inks)
            for (std::size_t i = 0; i < count(); ++i)
                pixels_[i * 4 + 3] = kLargest;
        if (layout_.photometric == PHOTOMETRIC_PALETTE
            && !TIFFGetField(tiff_, TIFFTAG_COLORMAP, &map_[0], &map_[1], &map_[2]))
            return false;
        const std::size_t bytes = std::size_t(layout_.tiled ? TIFFTileSize(tiff_) : TIFFStripSize(tiff_));
        if (bytes == 0 || bytes > kLargestBlock)
            return false;
        std::vector<u8> block(bytes);
        const u16 planes = layout_.separate ? layout_.samples : 1;
        for (u16 plane = 0; plane < planes; ++plane)
            for (u32 y = 0; y < layout_.height; y += layout_.blockHeight)
                for (u32 x = 0; x < layout_.width; x += layout_.blockWidth)
                    if (!place(block, x, y, plane))
                        return false;
        if (!inks)
            finish();
        return true;
    }

private:
    static constexpr Sample kLargest = std::numeric_limits<Sample>::max();

    std::size_t count() const { return std::size_t{layout_.width} * layout_.height; }

    /// Where a sample goes in a pixel; below 0 for one that is not wanted.
    int channelOf(int sample) const
    {
        if (picture_.inks)
            return sample < 4 ? sample : -1;
        if (sample == layout_.alpha)
            return 3;
        if (sample >= layout_.colours())
            return -1;
        return layout_.colours() == 3 ? 2 - sample : 0;
    }

    bool place(std::vector<u8>& block, u32 x, u32 y, u16 plane)
    {
        const u32 rows = std::min(layout_.blockHeight, layout_.height - y);
        const u32 columns = std::min(layout_.blockWidth, layout_.width - x);
        std::size_t stride = 0;
        tmsize_t got = 0, wanted = 0;
        if (layout_.tiled) {
            stride = std::size_t(TIFFTileRowSize(tiff_));
            wanted = tmsize_t(block.size());
            got = TIFFReadEncodedTile(tiff_, TIFFComputeTile(tiff_, x, y, 0, plane), block.data(), wanted);
        } else {
            stride = std::size_t(TIFFScanlineSize(tiff_));
            wanted = TIFFVStripSize(tiff_, rows);
            got = TIFFReadEncodedStrip(
                tiff_, TIFFComputeStrip(tiff_, y, plane), block.data(), tmsize_t(block.size()));
        }
        const int samples = layout_.separate ? 1 : layout_.samples;
        const std::size_t rowBits = std::size_t{columns} * std::size_t(samples) * layout_.bits;
        if (got < wanted || stride * rows > block.size() || rowBits > stride * 8)
            return false;
        for (u32 row = 0; row < rows; ++row) {
            const u8* const from = block.data() + row * stride;
            Sample* const to = pixels_ + (std::size_t{y + row} * layout_.width + x) * 4;
            for (int sample = 0; sample < samples; ++sample) {
                const int channel = channelOf(sample + plane);
                for (u32 i = 0; channel >= 0 && i < columns; ++i)
                    store(to + i * 4, channel,
                        unpacker_.at(from, std::size_t{i} * std::size_t(samples) + std::size_t(sample)));
            }
        }
        return true;
    }

    void store(Sample* pixel, int channel, u32 value) const
    {
        if (layout_.photometric != PHOTOMETRIC_PALETTE) {
            pixel[channel] = Sample(value);
            return;
        }
        if (channel == 3) {
            pixel[3] = Sample(u64{value} * kLargest / ((u64{1} << layout_.bits) - 1));
            return;
        }
        for (int i = 0; i < 3; ++i)
            pixel[2 - i] = Sample(map_[i][value]);
    }

    void finish() const
    {
        const bool grey = layout_.isGrey();
        const bool inverted = layout_.photometric == PHOTOMETRIC_MINISWHITE;
        for (Sample* pixel = pixels_; pixel != pixels_ + count() * 4; pixel += 4) {
            if (grey)
                pixel[0] = pixel[1] = pixel[2] = inverted ? Sample(kLargest - pixel[0]) : pixel[0];
            if (layout_.associated && pixel[3] != kLargest)
                for (int i = 0; i < 3; ++i)
                    pixel[i] = pixel[3] == 0 ? Sample(0)
                                             : Sample(std::min<u64>(kLargest,
                                                 (u64{pixel[i]} * kLargest + pixel[3] / 2) / pixel[3]));
        }
    }

    TIFF* tiff_;
    const Layout& layout_;
    RawPicture& picture_;
    Unpacker unpacker_;
    Sample* pixels_;
    const u16* map_[3] = {};
};

/// What libtiff converts itself, to 8 bits.
bool convert(TIFF* tiff, RawPicture& picture)
{
    TIFFRGBAImage image;
    char reason[1024];
    if (!TIFFRGBAImageBegin(&image, tiff, 1, reason))
        return false;
    image.req_orientation = image.orientation; // the picture stays as it is stored
    const bool read =
        TIFFRGBAImageGet(&image, reinterpret_cast<u32*>(picture.samples.get()), picture.width, picture.height)
        != 0;
    TIFFRGBAImageEnd(&image);
    for (std::size_t i = 0; i < std::size_t{picture.width} * picture.height; ++i)
        std::swap(picture.samples[i * 4], picture.samples[i * 4 + 2]);
    return read;
}

std::vector<u8> profileOf(TIFF* tiff)
{
    u32 size = 0;
    const u8* bytes = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &bytes) || !bytes)
        return {};
    return {bytes, bytes + size};
}

/// Whether values of 16 bits in a palette are those of 8 bits in their lower halves, as some old programs
/// write them.
bool hasSmallPalette(TIFF* tiff, const Layout& layout)
{
    const u16* map[3] = {};
    if (layout.photometric != PHOTOMETRIC_PALETTE
        || !TIFFGetField(tiff, TIFFTAG_COLORMAP, &map[0], &map[1], &map[2]))
        return false;
    const std::size_t count = std::size_t{1} << layout.bits;
    return std::ranges::all_of(map, [=](const u16* values) {
        return std::all_of(values, values + count, [](u16 value) { return value < 256; });
    });
}

class TiffFormat final : public PictureFormat {
public:
    FormatHeader inspect(std::span<const u8> file) const override
    {
        FormatHeader header;
        Memory memory{.given = file};
        const Tiff tiff = openedToRead(memory);
        if (!tiff)
            return header;
        header.width = field<u32>(tiff.get(), TIFFTAG_IMAGEWIDTH);
        header.height = field<u32>(tiff.get(), TIFFTAG_IMAGELENGTH);
        if (header.width == 0 || header.height == 0)
            return header;
        header.outcome =
            pictures::tooLarge(header.width, header.height) ? Outcome::tooLarge : Outcome::picture;
        const u16 orientation = field<u16>(tiff.get(), TIFFTAG_ORIENTATION);
        header.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
        header.profile = profileOf(tiff.get());
        header.exif = exifOfTiff(file);
        if (TIFFReadDirectory(tiff.get())
            && !(field<u32>(tiff.get(), TIFFTAG_SUBFILETYPE) & FILETYPE_REDUCEDIMAGE))
            header.pictures = 2;
        return header;
    }

    RawPicture decode(std::span<const u8> file) const override
    {
        RawPicture picture;
        Memory memory{.given = file};
        const Tiff tiff = openedToRead(memory);
        if (!tiff)
            return picture;
        Layout layout(tiff.get());
        if (layout.width == 0 || layout.height == 0 || pictures::tooLarge(layout.width, layout.height)
            || !layout.fits())
            return picture;
        if (layout.photometric == PHOTOMETRIC_YCBCR
            && field<u16>(tiff.get(), TIFFTAG_COMPRESSION) == COMPRESSION_JPEG && layout.samples == 3) {
            TIFFSetField(tiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            layout.photometric = PHOTOMETRIC_RGB;
        }
        picture.width = layout.width;
        picture.height = layout.height;
        picture.inks = layout.photometric == PHOTOMETRIC_SEPARATED
            && field<u16>(tiff.get(), TIFFTAG_INKSET) == INKSET_CMYK;
        const bool palette = layout.photometric == PHOTOMETRIC_PALETTE;
        const bool assembled =
            layout.isKnown() && picture.inks == (layout.photometric == PHOTOMETRIC_SEPARATED);
        picture.deep = assembled && (layout.bits > 8 || palette);
        allocate(picture);
        if (!picture.samples)
            return picture;
        const bool read = !assembled ? convert(tiff.get(), picture)
            : picture.deep           ? Assembly<u16>(tiff.get(), layout, picture).run()
                                     : Assembly<u8>(tiff.get(), layout, picture).run();
        if (!read || memory.endedEarly)
            picture.outcome = Outcome::unreadable;
        else if (hasSmallPalette(tiff.get(), layout))
            for (std::size_t i = 0; i < std::size_t{picture.width} * picture.height * 4; ++i)
                if (i % 4 < 3)
                    reinterpret_cast<u16*>(picture.samples.get())[i] *= 257;
        return picture;
    }

    std::vector<u8> encode(const PictureToSave& source, const SaveOptions& options) const override
    {
        std::vector<u8> file;
        Memory memory{.given = {}, .made = &file};
        Tiff tiff = opened(memory, "wl");
        if (!tiff || !describe(tiff.get(), source, options) || !writeRows(tiff.get(), source))
            return {};
        const bool complete = TIFFFlush(tiff.get()) != 0;
        tiff.reset();
        if (!complete)
            return {};
        addExifToTiff(file, source.exif);
        return file;
    }

private:
    static u16 channelsOf(const PictureToSave& source) { return source.opaque ? 3 : 4; }

    static bool describe(TIFF* tiff, const PictureToSave& source, const SaveOptions& options)
    {
        const std::size_t rowBytes = std::size_t{source.width} * channelsOf(source);
        const u32 rows = u32(std::clamp<std::size_t>(kStripBytes / rowBytes, 1, source.height));
        const u16 alpha[]{EXTRASAMPLE_UNASSALPHA};
        return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, source.width)
            && TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, source.height)
            && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8)
            && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, channelsOf(source))
            && TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB)
            && TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)
            && TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT)
            && TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE)
            && TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL)
            && TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, kLevels[std::size_t(options.effort)])
            && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rows)
            && (source.opaque || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, alpha))
            && (source.profile.empty()
                || TIFFSetField(tiff, TIFFTAG_ICCPROFILE, u32(source.profile.size()), source.profile.data()));
    }

    static bool writeRows(TIFF* tiff, const PictureToSave& source)
    {
        const unsigned channels = channelsOf(source);
        std::vector<u8> row(std::size_t{source.width} * channels);
        for (u32 y = 0; y < source.height; ++y) {
            const u8* from = source.row(y);
            for (u8* to = row.data(); to != row.data() + row.size(); to += channels, from += 4) {
                to[0] = from[2];
                to[1] = from[1];
                to[2] = from[0];
                if (channels == 4)
                    to[3] = from[3];
            }
            if (TIFFWriteScanline(tiff, row.data(), y, 0) < 0) // which overwrites the row
                return false;
        }
        return true;
    }
};

} // namespace

EFFECTENGINE_MODULE const PictureFormat* effectenginePictureFormat()
{
    static const TiffFormat format;
    return &format;
}

} // namespace tool
