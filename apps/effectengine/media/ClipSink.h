// Where finished frames go: a clip file or numbered pictures.
#pragma once

#include "effectengine/media/ClipReader.h"
#include "effectengine/media/SideTrack.h"

#include <optional>
#include <utility>

namespace media {

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

struct EncoderChoice {
    std::string codec;          ///< an encoder's or codec's name; empty: by the output's name
    std::optional<int> quality; ///< in the encoder's own measure; lower is better
    std::vector<std::pair<std::string, std::string>> options;
    bool needsAlpha = false; ///< rather an error than an opaque output
};

class ClipSink {
public:
    virtual ~ClipSink() = default;

    /// What write() wants.
    virtual AVPixelFormat format() const = 0;
    virtual Colour colour() const = 0;

    /// Frames come in ascending order of their pts, which counts in the shape's time base from 0.
    /// @param number    of the frame in its clip
    /// @param duration  in the time base, 0 unknown
    virtual void write(AVFrame& frame, long long number, std::int64_t duration) = 0;

    /// Everything is complete and takes its place. Without this call nothing stays. Throws ToolError.
    virtual void finish() = 0;
};

/// Whether the name stands for numbered pictures.
bool isPictureSequence(const std::filesystem::path& out);

/// The container that the name stands for. Throws ToolError.
const AVOutputFormat& containerFor(const std::filesystem::path& out);

/// Throws ToolError when the name is none that can be written, or its directory is missing or closed.
void checkClipOutput(const std::filesystem::path& out);

/// Throws ToolError: unknown codec or option, or a file that cannot be written. `tracks` go along in a file.
std::unique_ptr<ClipSink> openSink(const std::filesystem::path& out, const FrameShape& shape,
    const EncoderChoice& choice, SideTracks tracks);

} // namespace media
