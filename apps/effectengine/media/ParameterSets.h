// The parameter sets of H.264 and HEVC at each place in a stream.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace tool::media {

/// Follows the parameter sets through a stream. A file's header holds some; packets bring others, also under
/// the numbers of earlier ones, and they stay until they are replaced. A decoder that begins at a later
/// keyframe has missed those, and some differences (a chroma offset, say) give wrong pictures without any
/// error.
class ParameterSets {
public:
    explicit ParameterSets(const AVCodecParameters& stream);

    /// Takes over the packet's sets. @return whether a decoder that knows only the header and begins with
    /// this packet then holds the same sets as one that has read everything. True for other codecs as long as
    /// no packet replaces the header.
    bool take(const AVPacket& packet);

private:
    using Bytes = std::vector<std::uint8_t>;
    using Sets = std::map<std::pair<int, unsigned>, Bytes>; ///< by kind and number

    void readHeader(std::span<const std::uint8_t> header, Sets& sets);
    void readUnits(std::span<const std::uint8_t> data, Sets& sets) const;
    void readPrefixed(std::span<const std::uint8_t> data, Sets& sets) const;
    void add(std::span<const std::uint8_t> unit, Sets& sets) const;

    AVCodecID codec_;
    int lengthBytes_ = 0; ///< before each unit; 0 when start codes stand between them
    Sets header_;
    Sets now_;
};

} // namespace tool::media
