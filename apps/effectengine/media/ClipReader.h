// The reader of a clip's frames, in the order in which they are shown.
#pragma once

#include "effectengine/DepthOptions.h"
#include "effectengine/media/ClipSource.h"
#include "effectengine/media/DecoderWatch.h"
#include "effectengine/media/FrameTable.h"
#include "effectengine/media/pipes.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tool::media {

/// The marks of a clip's colours: how its numbers stand for them. They go from the input to the output.
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

/// The properties of a clip.
struct ClipInfo {
    ClipSource source;
    std::filesystem::path file; ///< its name in messages
    int width = 0;              ///< as shown, after the display matrix
    int height = 0;
    Orientation orientation;
    AVRational sampleAspect{0, 1}; ///< as shown; 0/1 unknown
    AVCodecID codec = AV_CODEC_ID_NONE;
    AVPixelFormat format = AV_PIX_FMT_NONE;
    Colour colour;
    AVRational timeBase{1, 1};  ///< unit of timestamps
    AVRational frameRate{0, 1}; ///< average
    std::int64_t start = 0; ///< timestamp at which the file starts: its sound may come before its first frame
    double duration = 0;    ///< seconds; 0 unknown, as of most pipes
    long long frames = 0;   ///< as the file says, or estimated from its duration; 0 unknown
    int audioStreams = 0;
    int subtitleStreams = 0;
    DepthOptions depth;   ///< its curve is none unless the clip has a high dynamic range
    double brightest = 0; ///< of a clip whose tones are mapped, in multiples of white

    bool isToneMapped() const { return depth.toneMapping != ToneMapping::none; }
    /// The colours of the clip's pictures once they are the engine's.
    Colour pictureColour() const;
    bool mayBeTransparent() const { return hasAlpha(format); }
    double rate() const { return av_q2d(frameRate); }
};

/// Decodes a clip from its start, or from a frame on.
class ClipReader {
public:
    /// Takes a packet of another stream than that of the pictures; it may move its contents.
    using Take = std::function<void(AVPacket& packet)>;

    /// Opens the clip. Throws ToolError.
    /// @param depth  how the frames become pictures
    explicit ClipReader(const ClipSource& source, const DepthOptions& depth = {});

    const ClipInfo& info() const { return info_; }
    /// The clip's streams.
    const AVFormatContext& container() const { return *input_; }

    /// Times and number of all frames, from a pass over the file when it is first asked for. From then on,
    /// and before the first next(), frames are numbered by it. Not for clips that pass once.
    const FrameTable& table();

    /// Hands on the packets of other streams that next() comes past, on its thread; for clips that pass once.
    /// To be called before the first next().
    void handOnOthers(const std::vector<int>& streams, Take take);

    /// Goes to a frame, counted from 0, without decoding everything before it where the file allows it. To be
    /// called before the first next(). A clip that passes once stays where it is.
    void skipTo(long long frame);

    /// Goes back to the state before the first next(). Not for clips that pass once.
    void startAgain();

    /// The next frame as it is stored; its pts is set, and ascends. Where frames are numbered by the table,
    /// one that cannot be decoded is the one before it again. False at the end. Throws ToolError when the
    /// file breaks off before its first frame.
    bool next(AVFrame& frame);

    /// Lets next() wait no longer for what a pipe may bring. For other threads than the one that reads.
    void abandon() const
    {
        if (pipe_)
            media::abandon(*pipe_);
    }

    /// How long next() has taken so far: reading, and waiting for the decoder.
    std::chrono::nanoseconds decoding() const { return decoding_; }

    /// The time of the frame that next() gave last, in seconds since the file's start.
    double secondsSinceStart() const { return double(lastTime_ - info_.start) * av_q2d(info_.timeBase); }

    /// The number of the frame that next() gave last.
    long long index() const { return index_; }

    /// The time of frame 0, once a frame has come.
    std::int64_t firstTime() const { return firstTime_; }

    /// Whether the frame that next() gave last is not, or not all of it, what was once encoded.
    bool damaged() const { return damaged_.contains(index_); }

    /// The numbers of all damaged frames so far. A clip that breaks off has one at its end.
    const std::set<long long>& damagedFrames() const { return damaged_; }

private:
    void describe();
    void chooseToneMapping();
    void begin();
    bool beginBefore(long long frame, std::size_t keysBack);
    void beginEarlier();
    bool nextInOrder(AVFrame& frame);
    bool nextByNumber(AVFrame& frame);
    void decodeAhead();
    bool isDamaged(const AVFrame& frame) const;
    bool decode(AVFrame& frame);
    bool feed();

    ClipInfo info_;
    DecoderWatch watch_; ///< outlives the decoder, whose threads use it
    Pipe pipe_;          ///< of a clip that passes once
    Input input_;
    Codec decoder_;
    Packet packet_;
    int stream_ = -1;
    Take takeOther_;
    std::chrono::nanoseconds decoding_{};
    long long index_ = -1;
    std::int64_t firstTime_ = AV_NOPTS_VALUE;
    std::int64_t lastTime_ = AV_NOPTS_VALUE;
    std::set<long long> damaged_;
    bool failed_ = false; ///< the decoder refused something since the last frame
    bool drained_ = false;
    bool breaksOff_ = false; ///< it is drained because the file cannot be read on
    bool intraOnly_ = false;

    std::optional<FrameTable> table_;
    std::optional<FrameTable::Key> from_; ///< where decoding began; empty: at the start
    std::size_t keysBack_ = 0;            ///< how many keys before the frame it began at
    Frame ahead_;                         ///< the latest decoded one
    Frame before_;                        ///< the one before that
    long long aheadNumber_ = -1;          ///< of frame ahead_; the count of frames at the end
};

} // namespace tool::media
