// Directories of TIFF files and EXIF blocks, taken apart into fields and put together in another place.
#include "effectengine/formats/tiffExif.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tool {

namespace {

constexpr std::size_t kHeader = 8;
constexpr std::size_t kFieldBytes = 12;
constexpr std::size_t kInside = 4; // bytes of a value that stands in the field itself
constexpr u16 kLong = 4;
constexpr u16 kExifDirectory = 0x8769, kGpsDirectory = 0x8825, kInteroperability = 0xA005,
              kMakerNote = 0x927C;

/// Fields of the main directory that tell of the photograph. The others tell of its pixels.
constexpr std::array<u16, 18> kOfPhotograph{0x10E, 0x10F, 0x110, 0x112, 0x11A, 0x11B, 0x128, 0x131, 0x132,
    0x13B, 0x13C, 0x4746, 0x4749, 0x8298, 0x9C9B, 0x9C9C, 0x9C9D, 0x9C9F};

/// A field with its numbers in little-endian order.
struct Field {
    u16 tag;
    u16 type;
    u32 count;
    std::vector<u8> value;
};
using Fields = std::vector<Field>; // by ascending tags

struct Type {
    unsigned bytes;  ///< of a value
    unsigned number; ///< of a number in it
};
/// None for a type that is not known.
Type typeOf(u16 type)
{
    constexpr Type kTypes[]{{0, 0}, {1, 1}, {1, 1}, {2, 2}, {4, 4}, {8, 4}, {1, 1}, {1, 1}, {2, 2}, {4, 4},
        {8, 4}, {4, 4}, {8, 8}};
    return type < std::size(kTypes) ? kTypes[type] : Type{0, 0};
}

class Block {
public:
    explicit Block(std::span<const u8> bytes) : bytes_(bytes), bigEndian_(!bytes.empty() && bytes[0] == 'M')
    {
    }

    bool readable() const
    {
        constexpr u8 kLittle[]{'I', 'I', 42, 0};
        constexpr u8 kBig[]{'M', 'M', 0, 42};
        return bytes_.size() >= kHeader
            && (std::ranges::equal(bytes_.first(4), kLittle) || std::ranges::equal(bytes_.first(4), kBig));
    }

    /// The fields of a directory that can be read; none where there is no directory.
    Fields fieldsAt(std::size_t place) const
    {
        Fields fields;
        if (place < kHeader || place + 2 > bytes_.size())
            return fields;
        const std::size_t count = number(place, 2);
        for (std::size_t at = place + 2; fields.size() < count && at + kFieldBytes <= bytes_.size();
             at += kFieldBytes) {
            auto field = fieldAt(at);
            if (!field)
                break;
            fields.push_back(std::move(*field));
        }
        return fields;
    }
    Fields main() const { return readable() ? fieldsAt(number(4, 4)) : Fields(); }

private:
    u32 number(std::size_t place, unsigned width) const
    {
        u32 value = 0;
        for (unsigned i = 0; i < width; ++i)
            value = value << 8 | bytes_[place + (bigEndian_ ? i : width - 1 - i)];
        return value;
    }

    /// A field, with no value where that lies outside of the block.
    std::optional<Field> fieldAt(std::size_t at) const
    {
        Field field{u16(number(at, 2)), u16(number(at + 2, 2)), number(at + 4, 4), {}};
        const Type type = typeOf(field.type);
        const u64 bytes = u64{field.count} * type.bytes;
        const std::size_t place = bytes <= kInside ? at + 8 : number(at + 8, 4);
        if (bytes == 0 || place + bytes > bytes_.size()) {
            field.count = 0;
            return field;
        }
        field.value.assign(
            bytes_.begin() + std::ptrdiff_t(place), bytes_.begin() + std::ptrdiff_t(place + bytes));
        for (std::size_t i = 0; bigEndian_ && i < field.value.size(); i += type.number)
            std::reverse(field.value.begin() + std::ptrdiff_t(i),
                field.value.begin() + std::ptrdiff_t(i + type.number));
        return field;
    }

    std::span<const u8> bytes_;
    bool bigEndian_;
};

struct Photograph {
    Fields main, exif, gps;
    bool empty() const { return main.empty() && exif.empty() && gps.empty(); }
};

u32 offsetIn(const Fields& fields, u16 tag)
{
    const auto field = std::ranges::find(fields, tag, &Field::tag);
    if (field == fields.end() || field->type != kLong || field->count != 1)
        return 0;
    return u32(field->value[0]) | u32(field->value[1]) << 8 | u32(field->value[2]) << 16
        | u32(field->value[3]) << 24;
}

Photograph photographIn(std::span<const u8> bytes)
{
    const Block block(bytes);
    const Fields all = block.main();
    Photograph photograph;
    std::ranges::copy_if(all, std::back_inserter(photograph.main), [](const Field& field) {
        return field.count > 0 && std::ranges::find(kOfPhotograph, field.tag) != kOfPhotograph.end();
    });
    const auto directory = [&](u16 tag) {
        Fields fields = block.fieldsAt(offsetIn(all, tag));
        std::erase_if(fields, [](const Field& field) {
            return field.count == 0 || field.tag == kMakerNote || field.tag == kInteroperability;
        });
        return fields;
    };
    photograph.exif = directory(kExifDirectory);
    photograph.gps = directory(kGpsDirectory);
    return photograph;
}

void append(std::vector<u8>& out, u32 value, unsigned width)
{
    for (unsigned i = 0; i < width; ++i)
        out.push_back(u8(value >> (8 * i)));
}

/// Appends a directory with its values. @return where it begins
u32 appendDirectory(std::vector<u8>& out, const Fields& fields)
{
    out.resize(out.size() + out.size() % 2);
    const u32 begin = u32(out.size());
    append(out, u32(fields.size()), 2);
    std::size_t values = out.size() + fields.size() * kFieldBytes + 4;
    std::vector<u8> behind;
    for (const Field& field : fields) {
        append(out, field.tag, 2);
        append(out, field.type, 2);
        append(out, field.count, 4);
        std::vector<u8> inside = field.value;
        if (inside.size() > kInside) {
            inside.clear();
            append(inside, u32(values + behind.size()), 4);
            behind.insert(behind.end(), field.value.begin(), field.value.end());
            behind.resize(behind.size() + behind.size() % 2);
        }
        inside.resize(kInside);
        out.insert(out.end(), inside.begin(), inside.end());
    }
    append(out, 0, 4); // no further directory
    out.insert(out.end(), behind.begin(), behind.end());
    return begin;
}

/// Appends a main directory with the photograph's fields, and the directories that they name, and has the
/// header name it.
void appendPhotograph(std::vector<u8>& out, Fields main, const Photograph& photograph)
{
    const auto add = [&](Field field) {
        if (std::ranges::find(main, field.tag, &Field::tag) == main.end())
            main.push_back(std::move(field));
    };
    std::ranges::for_each(photograph.main, add);
    for (const auto& [tag, fields] :
        {std::pair(kExifDirectory, &photograph.exif), std::pair(kGpsDirectory, &photograph.gps)}) {
        if (fields->empty())
            continue;
        Field pointer{tag, kLong, 1, {}};
        append(pointer.value, appendDirectory(out, *fields), 4);
        add(std::move(pointer));
    }
    std::ranges::sort(main, {}, &Field::tag);
    const u32 begin = appendDirectory(out, main);
    std::vector<u8> offset;
    append(offset, begin, 4);
    std::ranges::copy(offset, out.begin() + 4);
}

} // namespace

std::vector<u8> exifOfTiff(std::span<const u8> file)
{
    const Photograph photograph = photographIn(file);
    if (photograph.empty())
        return {};
    std::vector<u8> block{'I', 'I', 42, 0, 0, 0, 0, 0};
    appendPhotograph(block, {}, photograph);
    return block;
}

void addExifToTiff(std::vector<u8>& file, std::span<const u8> exif)
{
    const Photograph photograph = photographIn(exif);
    if (!photograph.empty())
        appendPhotograph(file, Block(file).main(), photograph);
}

} // namespace tool
