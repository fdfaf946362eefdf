// Reading and correcting of EXIF directories, which hold tagged fields in either byte order.
#include "effectengine/exif.h"

#include <algorithm>

namespace tool {

namespace {

constexpr std::size_t kHeader = 8;
constexpr std::size_t kFieldBytes = 12;
constexpr u16 kShort = 3;
constexpr u16 kLong = 4;

enum Tag : u16 {
    imageWidth = 0x100,
    imageLength = 0x101,
    stripOffsets = 0x111,
    orientation = 0x112,
    stripByteCounts = 0x117,
    previewOffset = 0x201,
    previewLength = 0x202,
    exifDirectory = 0x8769,
    pixelXDimension = 0xA002,
    pixelYDimension = 0xA003,
};

/// Access to the numbers in a block. Callers check that a place lies inside.
class Numbers {
public:
    explicit Numbers(std::span<const u8> bytes) : bytes_(bytes), bigEndian_(!bytes.empty() && bytes[0] == 'M')
    {
    }

    std::size_t size() const { return bytes_.size(); }
    u32 at(std::size_t place, unsigned width) const
    {
        u32 value = 0;
        for (unsigned i = 0; i < width; ++i)
            value = value << 8 | bytes_[place + (bigEndian_ ? i : width - 1 - i)];
        return value;
    }
    void put(std::span<u8> bytes, std::size_t place, unsigned width, u32 value) const
    {
        for (unsigned i = 0; i < width; ++i)
            bytes[place + (bigEndian_ ? width - 1 - i : i)] = u8(value >> (8 * i));
    }

private:
    std::span<const u8> bytes_;
    bool bigEndian_;
};

/// A field with a single whole number.
struct Field {
    std::size_t place;
    unsigned width;
};

struct Directory {
    std::size_t fields;
    unsigned count;

    std::size_t end() const { return fields + count * kFieldBytes; }
    std::optional<Field> find(const Numbers& numbers, Tag tag) const
    {
        for (std::size_t field = fields; field < end(); field += kFieldBytes) {
            const u32 type = numbers.at(field + 2, 2);
            if (numbers.at(field, 2) == tag && numbers.at(field + 4, 4) == 1
                && (type == kShort || type == kLong))
                return Field{field + 8, type == kShort ? 2u : 4u};
        }
        return std::nullopt;
    }
    std::optional<u32> value(const Numbers& numbers, Tag tag) const
    {
        const auto field = find(numbers, tag);
        return field ? std::optional(numbers.at(field->place, field->width)) : std::nullopt;
    }
};

std::optional<Directory> directoryAt(const Numbers& numbers, std::size_t place)
{
    if (place < kHeader || place + 2 > numbers.size())
        return std::nullopt;
    const Directory directory{place + 2, numbers.at(place, 2)};
    return directory.end() <= numbers.size() ? std::optional(directory) : std::nullopt;
}

std::optional<Directory> mainDirectory(const Numbers& numbers, std::span<const u8> exif)
{
    constexpr u8 kLittle[]{'I', 'I', 42, 0};
    constexpr u8 kBig[]{'M', 'M', 0, 42};
    if (exif.size() < kHeader
        || !(std::ranges::equal(exif.first(4), kLittle) || std::ranges::equal(exif.first(4), kBig)))
        return std::nullopt;
    return directoryAt(numbers, numbers.at(4, 4));
}

void erasePreview(std::vector<u8>& exif)
{
    const Numbers numbers(exif);
    const auto main = mainDirectory(numbers, exif);
    if (!main || main->end() + 4 > exif.size())
        return;
    const auto preview = directoryAt(numbers, numbers.at(main->end(), 4));
    numbers.put(exif, main->end(), 4, 0);
    if (!preview)
        return;
    std::size_t size = exif.size();
    for (const auto& [offset, length] :
        {std::pair(previewOffset, previewLength), std::pair(stripOffsets, stripByteCounts)}) {
        const std::size_t begin = preview->value(numbers, offset).value_or(0);
        const std::size_t end = begin + preview->value(numbers, length).value_or(0);
        if (begin < kHeader || begin >= end || end > exif.size())
            continue;
        std::fill(exif.begin() + std::ptrdiff_t(begin), exif.begin() + std::ptrdiff_t(end), u8(0));
        if (end == exif.size())
            size = begin;
    }
    exif.resize(size);
}

} // namespace

std::optional<int> exifOrientation(std::span<const u8> exif)
{
    const Numbers numbers(exif);
    const auto main = mainDirectory(numbers, exif);
    if (!main)
        return std::nullopt;
    const u32 value = main->value(numbers, orientation).value_or(1);
    return value >= 1 && value <= 8 ? int(value) : 1;
}

void describeUpright(std::vector<u8>& exif, u32 width, u32 height)
{
    erasePreview(exif);
    const Numbers numbers(exif);
    const auto main = mainDirectory(numbers, exif);
    if (!main) {
        exif.clear();
        return;
    }
    const auto store = [&](const Directory& directory, Tag tag, u32 value) {
        if (const auto field = directory.find(numbers, tag))
            numbers.put(exif, field->place, field->width, value);
    };
    store(*main, orientation, 1);
    store(*main, imageWidth, width);
    store(*main, imageLength, height);
    if (const auto more = directoryAt(numbers, main->value(numbers, exifDirectory).value_or(0))) {
        store(*more, pixelXDimension, width);
        store(*more, pixelYDimension, height);
    }
}

} // namespace tool
