// What the verbs for clips share: sizes, checks, encoding choices, and graphs over frames.
#pragma once

#include "effectengine/clipVerbs.h"
#include "effectengine/media/ClipSink.h"
#include "effectengine/media/PictureConversion.h"
#include "host/EffectGraph.h"

namespace media {

/// The size to work at: the named one, or the clip's, scaled down with a warning where it is too large for
/// the engine. Throws ToolError.
pixels::Extent workingSize(const ClipInfo& clip, const std::string& named);

/// The largest part of pictures of a size in which a clip keeps the shape that it is shown in; at least a
/// pixel.
/// @param pixelAspect  of those pictures; 0/1 for square pixels
pixels::Extent shapedLike(const ClipInfo& clip, pixels::Extent size, AVRational pixelAspect);

EncoderChoice choiceOf(const EncodingOptions& options);

/// Throws ToolError when the output would replace one of the inputs.
void checkNotItself(const std::filesystem::path& in, const std::filesystem::path& out);

/// The pixels of an image of the engine.
pixels::View viewOf(const host::Image& image);
pixels::ConstView viewOf(CEffectImage* image);

/// Warnings about what is lost on the way: more than 8 bits, damaged frames.
void warnOfDepth(const ClipInfo& clip);
void warnOfDamage(const ClipReader& reader);

/// Whether an output is to be transparent where its frames are. For the automatic choice this looks through
/// those clips whose format has room for transparency, up to the first frame with any; effects on opaque
/// clips may leave what they like in the alpha channel.
bool keepsAlpha(AlphaChoice choice, const AVCodec& encoder, const std::vector<const ClipInfo*>& clips);

/// Warns once when a picture of the clip is transparent and the output cannot be.
class AlphaWarning {
public:
    AlphaWarning(const ClipInfo& clip, AlphaChoice choice, AVPixelFormat output);
    void look(pixels::ConstView picture);

private:
    const ClipInfo& clip_;
    bool looks_;
};

/// Where a frame stands in its clip.
struct FramePlace {
    long long number = 0;
    std::int64_t time = 0; ///< as the file counts, in the clip's time base
    std::int64_t sinceFirst = 0;
    std::int64_t duration = 0; ///< 0 unknown
    bool damaged = false;      ///< in the clip itself
};

/// A frame on its way to the effects.
struct FrameIn {
    Frame frame = makeFrame();
    std::optional<host::Image> picture;
    FramePlace place;
    bool shown = true; ///< false for frames that only an effect's history needs
};

/// A frame on its way to the file.
struct FrameOut {
    Frame frame = makeFrame();
    FramePlace place;
};

/// As many as lie between the stages: enough to keep each busy, few enough to stay small.
inline constexpr std::size_t kFramesUnderWay = 4;

/// Seconds since the first frame, and the clip's rate and duration.
host::FrameTime timeOf(const FramePlace& place, const ClipInfo& clip);

} // namespace media
