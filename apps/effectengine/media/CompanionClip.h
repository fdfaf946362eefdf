// A clip that runs beside another one and feeds a further source of a graph.
#pragma once

#include "effectengine/clipVerbs.h"
#include "effectengine/media/ClipFrame.h"
#include "effectengine/media/PictureConversion.h"

#include <deque>

namespace tool::media {

/// Shows the frame that covers a time of the other clip. Both times count from the first frames.
class CompanionClip {
public:
    /// Opens the clip. Throws ToolError.
    /// @param pictureRate  frames per second of numbered pictures
    /// @param depth        how its frames become pictures
    /// @param size         of the pictures to draw
    /// @param pixelAspect  of those pictures; 0/1 for square pixels
    CompanionClip(const std::filesystem::path& file, const CompanionOptions& options,
        const std::string& pictureRate, const DepthOptions& depth, pixels::Extent size,
        AVRational pixelAspect);

    ClipReader& reader() { return reader_; }

    /// Draws the last frame that begins no later than this time, or what the options say after the clip's
    /// end. Times ascend; the first call goes to its frame where the file leads there. Throws what the reader
    /// throws, and when a stop is asked.
    void show(double seconds, pixels::View picture);

    /// Whether the frame that was drawn last is not, or not all of it, what was once encoded.
    bool damaged() const { return reader_.damagedFrames().contains(shownNumber_); }

private:
    bool isStill() { return reader_.table().count() == 1; }
    void beginAt(double seconds);
    void begin();
    void goTo(double seconds);
    void advance();
    double secondsOf(const AVFrame& frame) const;
    double endOf(const AVFrame& frame) const;
    pixels::View picture() { return {picture_.data(), size_}; }

    ClipReader reader_;
    ClipEnd end_;
    pixels::Extent size_;
    pixels::Extent part_; ///< what the clip takes of the middle of the pictures
    ToPicture convert_;
    Frame shown_ = makeFrame();
    Frame ahead_ = makeFrame();
    long long shownNumber_ = -1;
    long long aheadNumber_ = -1;
    bool hasAhead_ = false;
    bool begun_ = false;
    double rounding_ = 0;
    double length_ = 0;   ///< seconds; 0 unknown
    long long loops_ = 0; ///< how often it has begun again
    std::vector<unsigned char> picture_;
    long long drawn_ = -1; ///< the number of the frame in the picture
    bool black_ = false;
};

/// All further clips of a run.
class CompanionClips {
public:
    /// Opens the clips. Throws ToolError.
    /// @param depth        how their frames become pictures
    /// @param first        the clip that they run beside
    /// @param size         of the pictures
    /// @param pictureRate  frames per second of numbered pictures
    CompanionClips(const CompanionOptions& options, const DepthOptions& depth, const ClipInfo& first,
        pixels::Extent size, const std::string& pictureRate);

    std::vector<ClipReader*> readers();

    /// Draws the pictures after the frame's first one, as they are at a time of the first clip.
    void show(ClipFrame& frame, double seconds);

private:
    std::deque<CompanionClip> clips_;
};

/// How far the times between the first and another frame may be off, in seconds: the unit of a file need not
/// divide the time of a frame, and then each time is the nearest one that it can tell.
double roundingOf(AVRational unit, AVRational frameRate, std::int64_t firstTime);

/// The rate of numbered pictures that run beside a clip: the user's choice, or that of the clip.
std::string pictureRateBeside(AVRational clipRate, const std::string& chosen);

/// Throws ToolError when the graph takes another number of clips than there are.
/// @param graph  its name in the message
void checkClipCount(
    unsigned sources, const CompanionOptions& options, const std::string& graph, const char* verb);

} // namespace tool::media
