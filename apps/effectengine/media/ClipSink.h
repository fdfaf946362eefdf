// Outputs for finished frames: a clip file or numbered pictures.
#pragma once

#include "effectengine/clipVerbs.h"
#include "effectengine/media/ClipFrame.h"
#include "effectengine/media/SideTrack.h"
#include "pictures/PngEncoder.h"

#include <functional>
#include <optional>
#include <utility>

namespace tool::media {

/// What the frames of an output have in common.
struct FrameShape {
    int width = 0;
    int height = 0;
    AVRational timeBase{1, 25};
    AVRational frameRate{25, 1};
    AVRational sampleAspect{0, 1};
    AVPixelFormat sourceFormat = AV_PIX_FMT_NONE; ///< the output keeps its chroma resolution where it can
    Colour colour;
    bool keepsAlpha = false; ///< else the output is opaque
};

/// The shape of a clip's frames, scaled to a size; opaque.
FrameShape shapeOf(const ClipInfo& clip, int width, int height);

/// The encoder and its settings, as the user chose them.
struct EncoderChoice {
    std::string codec = {};          ///< an encoder's or codec's name; empty: by the output's name
    std::optional<int> quality = {}; ///< in the encoder's own measure; lower is better
    std::vector<std::pair<std::string, std::string>> options = {};
    bool needsAlpha = false;                             ///< an output that must be opaque is an error
    std::optional<pictures::PngEffort> compression = {}; ///< another output than PNG pictures is an error
    std::string container = {};                          ///< its name; empty: by the output's name
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;         ///< none: near the source's
};

/// An output for the frames of a clip.
class ClipSink {
public:
    virtual ~ClipSink() = default;

    /// The format and the colours of the frames that write() takes.
    virtual AVPixelFormat format() const = 0;
    virtual Colour colour() const = 0;

    /// Takes frames in ascending order of their pts, which counts in the shape's time base from 0. Throws.
    /// @param place  of the frame in its clip; its duration counts in the shape's time base
    virtual void write(AVFrame& frame, const FramePlace& place) = 0;

    /// Completes the output, which takes its place. Without this call a clip, or a sequence of pictures, is
    /// removed; of rendered pictures those stay that are complete. Throws ToolError.
    virtual void finish() = 0;

    /// Has a function called for each frame that was written, on the thread that calls write() or finish().
    void whenWritten(std::function<void()> function) { written_ = std::move(function); }

protected:
    /// To be called by the sink once for each frame.
    void tellWritten() const
    {
        if (written_)
            written_();
    }

private:
    std::function<void()> written_;
};

/// Whether the name stands for numbered pictures.
bool isPictureSequence(const std::filesystem::path& out);

/// Throws ToolError when the choice holds a compression, which outputs other than PNG pictures do not have.
void checkNoCompression(const std::filesystem::path& out, const EncoderChoice& choice);

/// The container of this name, or else the one that the output's name stands for. Throws ToolError.
const AVOutputFormat& containerFor(const std::filesystem::path& out, const std::string& container);

/// Whether the name stands for standard output, or for what is written once and in order.
bool goesToPipe(const std::filesystem::path& out);

/// What messages call the output.
std::filesystem::path outputName(const std::filesystem::path& out);

/// Chooses what neither the output's name nor the user tells: the container for a pipe, and how it holds
/// frames that are not compressed. Throws ToolError.
/// @param clips  that the output shows
void settleChoice(EncoderChoice& choice, const std::filesystem::path& out, AlphaChoice alpha,
    const std::vector<const ClipInfo*>& clips);

/// Throws ToolError when the output would replace one of the inputs.
void checkNotItself(const std::filesystem::path& in, const std::filesystem::path& out);

/// Throws ToolError when the name is none that can be written, or its directory is missing or closed.
/// @param container  as in EncoderChoice
void checkClipOutput(const std::filesystem::path& out, const std::string& container = {});

/// Opens a clip or a sequence of pictures, by the name; `tracks` go along in a clip. Throws ToolError:
/// unknown codec or option, or a file that cannot be written.
std::unique_ptr<ClipSink> openSink(const std::filesystem::path& out, const FrameShape& shape,
    const EncoderChoice& choice, SideTracks tracks);

} // namespace tool::media
