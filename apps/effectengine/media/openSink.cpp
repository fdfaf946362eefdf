// Outputs by their names: what the name stands for, whether it can be written, and the sink that writes it.
#include "effectengine/ToolError.h"
#include "effectengine/media/ClipFile.h"
#include "effectengine/media/PictureSequence.h"
#include "effectengine/media/pipes.h"
#include "effectengine/pictureFiles.h"

namespace fs = std::filesystem;

namespace tool::media {

FrameShape shapeOf(const ClipInfo& clip, int width, int height)
{
    FrameShape shape{
        width, height, clip.timeBase, clip.frameRate, clip.sampleAspect, clip.format, clip.pictureColour()};
    if (clip.sampleAspect.num && (width != clip.width || height != clip.height)) {
        // Pixels of another aspect, so that the picture keeps its shape on the screen.
        const AVRational scale{clip.width * height, clip.height * width};
        shape.sampleAspect = av_mul_q(clip.sampleAspect, scale);
    }
    return shape;
}

namespace {

const AVOutputFormat& containerNamed(const std::string& name)
{
    const AVOutputFormat* const container =
        av_guess_format(name == "y4m" ? "yuv4mpegpipe" : name.c_str(), nullptr, nullptr);
    if (!container || container->flags & AVFMT_NOFILE || container->video_codec == AV_CODEC_ID_NONE)
        throw ToolError(ExitCode::usage,
            "no output format \"" + name + "\" (y4m, nut, rawvideo, matroska, mpegts, mp4...)");
    return *container;
}

} // namespace

bool isPictureSequence(const fs::path& out) { return av_filename_number_test(out.c_str()); }

void checkNoCompression(const fs::path& out, const EncoderChoice& choice)
{
    if (choice.compression)
        throw ToolError(ExitCode::usage,
            "--compression is for numbered PNG pictures without --encoder-option, not for " + out.string());
}

bool goesToPipe(const fs::path& out) { return isStandardStream(out) || isPipe(out); }

fs::path outputName(const fs::path& out) { return isStandardStream(out) ? "standard output" : out; }

const AVOutputFormat& containerFor(const fs::path& out, const std::string& name)
{
    if (!name.empty() && !isPictureSequence(out))
        return containerNamed(name);
    const AVOutputFormat* const container = av_guess_format(nullptr, out.c_str(), nullptr);
    if (!container || (container->flags & AVFMT_NOFILE && !isPictureSequence(out))
        || container->video_codec == AV_CODEC_ID_NONE)
        throw ToolError(ExitCode::cannotWrite,
            "cannot write " + out.string()
                + ": the name must end as a clip's does (.mp4, .mkv, .mov, .webm, .gif...) or number "
                  "pictures "
                  "(%04d.png)");
    return *container;
}

void checkClipOutput(const fs::path& out, const std::string& container)
{
    if (!container.empty() && isPictureSequence(out))
        throw ToolError(ExitCode::usage, "--format is for clips; numbered pictures are what their names say");
    if (!goesToPipe(out) || !container.empty())
        containerFor(out, container);
    if (!goesToPipe(out))
        checkPlace(out);
}

void checkNotItself(const fs::path& in, const fs::path& out)
{
    std::error_code ignored;
    if (goesToPipe(out))
        return;
    if (in == out || fs::equivalent(in, out, ignored))
        throw ToolError(ExitCode::usage, out.string() + " is the input; it would be replaced");
}

std::unique_ptr<ClipSink> openSink(
    const fs::path& out, const FrameShape& shape, const EncoderChoice& choice, SideTracks tracks)
{
    if (isPictureSequence(out))
        return std::make_unique<PictureSequence>(out, shape, choice);
    checkNoCompression(out, choice);
    return std::make_unique<ClipFile>(out, shape, choice, std::move(tracks));
}

} // namespace tool::media
