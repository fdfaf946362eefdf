// Reading of greymaps and pixmaps, row by row.
#include "pictures/PnmCodec.h"

#include <algorithm>
#include <cstdlib>
#include <istream>
#include <span>

namespace pictures {

namespace {

constexpr u32 kLargestValue = 65535;

/// A file's header, and its pixels as samples of 16 bits.
class PnmFile {
public:
    explicit PnmFile(std::istream& stream) : stream_(stream)
    {
        char kind[2] = {};
        stream.read(kind, 2);
        channels_ = kind[1] == '6' ? 3 : 1;
        width_ = number();
        height_ = number();
        largest_ = number();
        const int blank = stream.get(); // exactly one before the pixels
        good_ = stream && isBlank(blank) && width_ > 0 && height_ > 0 && largest_ > 0
            && largest_ <= kLargestValue;
    }

    u32 width() const { return width_; }
    u32 height() const { return height_; }
    bool fine() const { return largest_ > 255; }

    Decoded::Outcome outcome() const
    {
        if (!good_)
            return Decoded::Outcome::unreadable;
        return tooLarge(width_, height_) ? Decoded::Outcome::tooLarge : Decoded::Outcome::picture;
    }

    /// Whether the file goes on for as long as its header says.
    bool whole()
    {
        const std::streamoff start = stream_.tellg();
        stream_.seekg(0, std::ios::end);
        const std::streamoff end = stream_.tellg();
        stream_.seekg(start);
        return start >= 0 && end >= start && u64(end - start) >= u64{height_} * rowBytes();
    }

    /// Calls use(red, green, blue) for every pixel in the file's order, with values scaled to 0..65535. False
    /// when the file cannot be read.
    template <class Use> bool eachPixel(Use use)
    {
        for (u32 y = 0; y < height_; ++y) {
            const std::span<const u16> samples = row();
            if (samples.empty())
                return false;
            for (std::size_t i = 0; i < samples.size(); i += channels_)
                use(samples[i], samples[i + channels_ / 2], samples[i + channels_ - 1]);
        }
        return true;
    }

private:
    /// The next row: width * channels values scaled to 0..65535, valid until the next call. Empty when the
    /// file cannot be read.
    std::span<const u16> row()
    {
        bytes_.resize(rowBytes());
        samples_.resize(std::size_t{width_} * channels_);
        if (!stream_.read(reinterpret_cast<char*>(bytes_.data()), std::streamsize(bytes_.size())))
            return {};
        for (std::size_t i = 0; i < samples_.size(); ++i) {
            const u32 value = fine() ? u32(bytes_[2 * i]) << 8 | bytes_[2 * i + 1] : bytes_[i];
            samples_[i] = u16((std::min(value, largest_) * kLargestValue + largest_ / 2) / largest_);
        }
        return samples_;
    }

    static bool isBlank(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

    std::size_t rowBytes() const { return std::size_t{width_} * channels_ * (fine() ? 2 : 1); }

    /// The next number of the header; blanks and comments may stand before it. 0 when there is none, a large
    /// one when there are too many digits.
    u32 number()
    {
        for (int c = stream_.peek(); isBlank(c) || c == '#'; c = stream_.peek()) {
            stream_.get();
            if (c == '#')
                while (stream_ && stream_.peek() != '\n' && stream_.peek() != '\r')
                    stream_.get();
        }
        u32 value = 0;
        constexpr u32 kEnough = 100'000'000;
        for (int c = stream_.peek(); c >= '0' && c <= '9'; c = stream_.peek()) {
            value = std::min(value * 10 + u32(c - '0'), kEnough);
            stream_.get();
        }
        return value;
    }

    std::istream& stream_;
    u32 channels_;
    u32 width_;
    u32 height_;
    u32 largest_;
    bool good_;
    std::vector<u8> bytes_;
    std::vector<u16> samples_;
};

} // namespace

bool isPnm(std::istream& file)
{
    char head[2] = {};
    file.read(head, sizeof head);
    file.clear();
    file.seekg(0);
    return head[0] == 'P' && (head[1] == '5' || head[1] == '6');
}

Decoded inspectPnm(std::istream& file)
{
    const PnmFile pnm(file);
    if (pnm.outcome() == Decoded::Outcome::unreadable)
        return {};
    return {pnm.outcome(), pnm.width(), pnm.height(), nullptr};
}

Decoded decodePnm(std::istream& file)
{
    PnmFile pnm(file);
    if (pnm.outcome() != Decoded::Outcome::picture)
        return {pnm.outcome(), pnm.width(), pnm.height(), nullptr};
    Decoded result{Decoded::Outcome::unreadable, pnm.width(), pnm.height(), nullptr};
    if (!pnm.whole())
        return result;
    std::unique_ptr<u8[], Free> pixels(
        static_cast<u8*>(std::malloc(std::size_t{pnm.width()} * pnm.height() * 4))); // as Free releases it
    if (!pixels)
        return result;
    u8* to = pixels.get();
    const auto store = [&to](u16 red, u16 green, u16 blue) {
        for (const u16 value : {blue, green, red})
            *to++ = rounded8(value);
        *to++ = 255;
    };
    if (!pnm.eachPixel(store))
        return result;
    result.outcome = Decoded::Outcome::picture;
    result.pixels = std::move(pixels);
    return result;
}

DecodedGrey decodeGreyPnm(std::istream& file)
{
    PnmFile pnm(file);
    DecodedGrey result{pnm.outcome(), pnm.width(), pnm.height(), pnm.fine(), {}};
    if (result.outcome != Decoded::Outcome::picture)
        return result;
    result.outcome = Decoded::Outcome::unreadable;
    if (!pnm.whole()) // before memory is taken for what is not there
        return result;
    result.values.reserve(std::size_t{pnm.width()} * pnm.height());
    if (!pnm.eachPixel(
            [&](u16 red, u16 green, u16 blue) { result.values.push_back(luma(red, green, blue)); }))
        return result;
    result.outcome = Decoded::Outcome::picture;
    return result;
}

} // namespace pictures
