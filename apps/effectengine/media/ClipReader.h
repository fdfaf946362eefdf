// A clip's frames in the order in which they are shown.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace media {

/// How numbers stand for colours; carried from the input to the output.
struct Colour {
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVColorSpace space = AVCOL_SPC_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVChromaLocation location = AVCHROMA_LOC_UNSPECIFIED;
};

/// How the stored picture turns into the shown one: swapped first, then mirrored.
struct Orientation {
    bool swapsSides = false;
    bool mirrorsColumns = false;
    bool mirrorsRows = false;
    bool upright() const { return !swapsSides && !mirrorsColumns && !mirrorsRows; }
};

struct ClipInfo {
    std::filesystem::path file;
    int width = 0; ///< as shown, after the display matrix
    int height = 0;
    Orientation orientation;
    AVRational sampleAspect{0, 1}; ///< as shown; 0/1 unknown
    AVPixelFormat format = AV_PIX_FMT_NONE;
    Colour colour;
    AVRational timeBase{1, 1};  ///< unit of timestamps
    AVRational frameRate{0, 1}; ///< average
    std::int64_t start = 0; ///< timestamp at which the file starts: its sound may come before its first frame
    double duration = 0;    ///< seconds
    long long frames = 0;   ///< as the file says, or estimated from its duration; 0 unknown
    int audioStreams = 0;
    int subtitleStreams = 0;

    bool hasAlpha() const;
    double rate() const { return av_q2d(frameRate); }
};

/// Opens a clip file, or the pictures that a name with %04d stands for. Throws ToolError: missing,
/// unreadable, or no clip.
/// @param pictureRate  frames per second of pictures; empty for the library's own 25
Input openClip(const std::filesystem::path& file, const std::string& pictureRate = {});

/// Timestamps of all frames and which of them can be decoded without others, from a pass over the packets.
struct FrameTable {
    struct Key {
        std::int64_t decoded; ///< when it is decoded
        std::int64_t shown;   ///< when it is shown
    };
    std::vector<std::int64_t> times; ///< ascending
    std::vector<Key> keys;
    std::int64_t lastDuration = 0; ///< of the last frame; 0 unknown
};

/// Throws ToolError.
FrameTable readFrameTable(const std::filesystem::path& file, const std::string& pictureRate = {});

class ClipReader {
public:
    /// Throws ToolError.
    explicit ClipReader(const std::filesystem::path& file, const std::string& pictureRate = {});

    const ClipInfo& info() const { return info_; }

    /// Goes to a frame, counted from 0, without decoding everything before it where the file allows it. To be
    /// called before the first next().
    void skipTo(long long frame);

    /// The next frame as it is stored; its pts is set, and ascends. False at the end.
    /// Throws ToolError when the file breaks off before its first frame.
    bool next(AVFrame& frame);

    /// The number of the frame that next() gave last.
    long long index() const { return index_; }

    /// The time of frame 0, once a frame has come.
    std::int64_t firstTime() const { return firstTime_; }

    /// Packets that could not be decoded so far.
    int damaged() const { return damaged_; }

private:
    void openDecoder();
    void describe();
    bool decode(AVFrame& frame);
    bool feed();

    ClipInfo info_;
    std::string pictureRate_;
    Input input_;
    Codec decoder_;
    Packet packet_;
    int stream_ = -1;
    long long index_ = -1;
    std::int64_t firstTime_ = AV_NOPTS_VALUE;
    std::int64_t lastTime_ = AV_NOPTS_VALUE;
    std::optional<std::int64_t> discardBefore_;
    int damaged_ = 0;
    bool drained_ = false;
};

} // namespace media
