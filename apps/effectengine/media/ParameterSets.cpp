// Reading of a stream's units: which are parameter sets, and with which numbers.
#include "effectengine/media/ParameterSets.h"

#include <algorithm>

namespace tool::media {

namespace {

using Data = std::span<const std::uint8_t>;

/// Reads the bits of a unit without the bytes that only avoid start codes. Beyond the end it reads zeros.
class Bits {
public:
    explicit Bits(Data data)
    {
        int zeros = 0;
        for (const std::uint8_t byte : data) {
            if (zeros >= 2 && byte == 3) {
                zeros = 0;
                continue;
            }
            zeros = byte ? 0 : zeros + 1;
            bytes_.push_back(byte);
        }
    }

    void skip(std::size_t bits) { at_ += bits; }

    unsigned read(int bits)
    {
        unsigned value = 0;
        for (; bits > 0; --bits, ++at_)
            value = value << 1 | (at_ / 8 < bytes_.size() ? bytes_[at_ / 8] >> (7 - at_ % 8) & 1 : 0);
        return value;
    }

    /// Reads an Exp-Golomb number: as many zeros in front as it has bits after its first one.
    unsigned readGolomb()
    {
        int zeros = 0;
        while (zeros < 31 && !read(1))
            ++zeros;
        return (1u << zeros) - 1 + read(zeros);
    }

private:
    std::vector<std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

// Skips profile, tier and level, also those of the layers below the highest one.
void skipProfile(Bits& bits, unsigned layersBelow)
{
    constexpr unsigned kMostLayers = 8;
    constexpr std::size_t kProfile = 88;
    constexpr std::size_t kLevel = 8;
    bits.skip(kProfile + kLevel);
    std::size_t more = 0;
    for (unsigned layer = 0; layer < layersBelow; ++layer) {
        more += bits.read(1) ? kProfile : 0;
        more += bits.read(1) ? kLevel : 0;
    }
    if (layersBelow > 0)
        bits.skip(2 * (kMostLayers - layersBelow));
    bits.skip(more);
}

enum H264Unit { kH264Sequence = 7, kH264Picture = 8 };
enum HevcUnit { kHevcVideo = 32, kHevcSequence = 33, kHevcPicture = 34 };

bool isNumbered(AVCodecID codec) { return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC; }

unsigned bigEndian(Data data)
{
    unsigned value = 0;
    for (const std::uint8_t byte : data)
        value = value << 8 | byte;
    return value;
}

} // namespace

ParameterSets::ParameterSets(const AVCodecParameters& stream) : codec_(stream.codec_id)
{
    readHeader({stream.extradata, std::size_t(stream.extradata_size)}, header_);
    now_ = header_;
}

bool ParameterSets::take(const AVPacket& packet)
{
    Sets own;
    std::size_t size = 0;
    if (const std::uint8_t* const header = av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, &size))
        readHeader({header, size}, own);
    if (isNumbered(codec_))
        readUnits({packet.data, std::size_t(packet.size)}, own);
    for (const auto& [number, bytes] : own)
        now_[number] = bytes;
    return std::ranges::all_of(now_, [&](const auto& set) {
        const auto begun = header_.find(set.first);
        return own.contains(set.first) || (begun != header_.end() && begun->second == set.second);
    });
}

// Reads the sets in a file's header: in MP4 and Matroska a list of sets with two bytes of length each, in
// other containers units as in packets.
void ParameterSets::readHeader(Data header, Sets& sets)
{
    if (!isNumbered(codec_)) {
        sets[{0, 0}] = Bytes(header.begin(), header.end());
        return;
    }
    const bool hevc = codec_ == AV_CODEC_ID_HEVC;
    const std::size_t lists = hevc ? 23 : 6; // where they begin
    const bool startCodes = header.size() < lists || (header[0] == 0 && header[1] == 0 && header[2] <= 1);
    lengthBytes_ = startCodes ? 0 : (header[hevc ? 21 : 4] & 3) + 1;
    if (startCodes)
        return readUnits(header, sets);
    const auto readList = [&](unsigned count) {
        for (; count > 0 && header.size() >= 2; --count) {
            const std::size_t length = std::min<std::size_t>(bigEndian(header.first(2)), header.size() - 2);
            add(header.subspan(2, length), sets);
            header = header.subspan(2 + length);
        }
    };
    if (hevc) {
        unsigned count = header[lists - 1];
        header = header.subspan(lists);
        for (; count > 0 && header.size() >= 3; --count) {
            const unsigned length = bigEndian(header.subspan(1, 2));
            header = header.subspan(3);
            readList(length);
        }
    } else {
        const unsigned sequences = header[lists - 1] & 31;
        header = header.subspan(lists);
        readList(sequences);
        if (!header.empty()) {
            const unsigned pictures = header[0];
            header = header.subspan(1);
            readList(pictures);
        }
    }
}

void ParameterSets::readUnits(Data data, Sets& sets) const
{
    if (lengthBytes_)
        return readPrefixed(data, sets);
    constexpr std::uint8_t kStartCode[] = {0, 0, 1};
    auto start = std::ranges::search(data, kStartCode);
    while (!start.empty()) {
        const Data rest(start.end(), data.end());
        start = std::ranges::search(rest, kStartCode);
        add({rest.begin(), start.begin()}, sets);
    }
}

void ParameterSets::readPrefixed(Data data, Sets& sets) const
{
    const auto prefix = std::size_t(lengthBytes_);
    while (data.size() > prefix) {
        const std::size_t length = std::min<std::size_t>(bigEndian(data.first(prefix)), data.size() - prefix);
        add(data.subspan(prefix, length), sets);
        data = data.subspan(prefix + length);
    }
}

void ParameterSets::add(Data unit, Sets& sets) const
{
    if (unit.size() < 2)
        return;
    const bool hevc = codec_ == AV_CODEC_ID_HEVC;
    const int kind = hevc ? unit[0] >> 1 & 63 : unit[0] & 31;
    const auto isSet =
        hevc ? kind >= kHevcVideo && kind <= kHevcPicture : kind == kH264Sequence || kind == kH264Picture;
    if (!isSet)
        return;
    while (unit.size() > 2 && unit.back() == 0) // padding in front of the next start code
        unit = unit.first(unit.size() - 1);
    Bits bits(unit.subspan(hevc ? 2 : 1));
    unsigned number = 0;
    if (hevc && kind == kHevcVideo) {
        number = bits.read(4);
    } else if (hevc && kind == kHevcSequence) {
        bits.skip(4);
        const unsigned layersBelow = bits.read(3);
        bits.skip(1);
        skipProfile(bits, layersBelow);
        number = bits.readGolomb();
    } else {
        if (!hevc && kind == kH264Sequence)
            bits.skip(24); // profile, constraints, level
        number = bits.readGolomb();
    }
    sets[{kind, number}] = Bytes(unit.begin(), unit.end());
}

} // namespace tool::media
