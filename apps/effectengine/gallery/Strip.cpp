// Scaling down by averages of square blocks, and the JPEG file.
#include "effectengine/gallery/Strip.h"

#include "effectengine/PartialFile.h"
#include "pictures/JpegCodec.h"

#include <algorithm>
#include <cerrno>

namespace tool {

using pixels::Bgra;

namespace {

constexpr pictures::JpegQuality kLookedAt{.percent = 80, .fullColour = false};
constexpr unsigned kCheckSize = 8;
constexpr unsigned kLightCheck = 204;
constexpr unsigned kDarkCheck = 153;

struct Sum {
    unsigned b = 0;
    unsigned g = 0;
    unsigned r = 0;

    void add(Bgra p, unsigned behind)
    {
        const auto over = [&](unsigned colour) { return (colour * p.a + behind * (255u - p.a) + 127) / 255; };
        b += over(p.b);
        g += over(p.g);
        r += over(p.r);
    }
    Bgra average(unsigned count) const
    {
        const auto rounded = [&](unsigned sum) { return u8((sum + count / 2) / count); };
        return {rounded(b), rounded(g), rounded(r), 255};
    }
};

} // namespace

Strip::Strip(PictureSize cell, unsigned scale, unsigned count)
    : cell_(cell),
      scale_(scale),
      pixels_(std::size_t(cell.width) * count * cell.height),
      rowLength_(std::size_t(cell.width) * count)
{
}

void Strip::add(pixels::ConstView picture)
{
    for (unsigned v = 0; v < cell_.height; ++v) {
        Bgra* const to = &pixels_[v * rowLength_ + std::size_t(filled_) * cell_.width];
        for (unsigned x = 0; x < cell_.width; ++x) {
            const unsigned behind = (x / kCheckSize + v / kCheckSize) % 2 ? kDarkCheck : kLightCheck;
            Sum sum;
            for (unsigned i = 0; i < scale_; ++i) {
                const auto row = picture.pictureRow(int(v * scale_ + i));
                for (unsigned j = 0; j < scale_; ++j)
                    sum.add(row[std::size_t(x) * scale_ + j], behind);
            }
            to[x] = sum.average(scale_ * scale_);
        }
    }
    ++filled_;
}

bool Strip::changes() const
{
    for (unsigned v = 0; v < cell_.height; ++v) {
        const auto row = pixels_.begin() + std::ptrdiff_t(v * rowLength_);
        const auto end = row + std::ptrdiff_t(std::size_t(filled_) * cell_.width);
        if (filled_ > 1 && !std::equal(row + cell_.width, end, row))
            return true;
    }
    return false;
}

void Strip::save(const std::filesystem::path& file) const
{
    const std::size_t length = std::size_t(filled_) * cell_.width;
    std::vector<Bgra> packed;
    packed.reserve(length * cell_.height);
    for (unsigned v = 0; v < cell_.height; ++v) {
        const auto row = pixels_.begin() + std::ptrdiff_t(v * rowLength_);
        packed.insert(packed.end(), row, row + std::ptrdiff_t(length));
    }
    const std::vector<u8> bytes = pictures::encodeJpeg(
        reinterpret_cast<const u8*>(packed.data()), u32(length), cell_.height, kLookedAt);
    if (bytes.empty())
        throwCannotWrite(file, EFBIG);
    writeTextFile(file, {bytes.begin(), bytes.end()});
}

} // namespace tool
