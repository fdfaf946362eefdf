// Kinds of sources, and what the command line says about them.
#include "effectengine/media/ClipSource.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/pipes.h"

namespace fs = std::filesystem;

namespace tool::media {

bool ClipSource::passesOnce() const { return isPipe(path()); }

fs::path ClipSource::name() const { return isStandardStream(file) ? "standard input" : file; }

fs::path ClipSource::path() const { return isStandardStream(file) ? "/dev/stdin" : file; }

ClipSource sourceOf(const InputOptions& options)
{
    ClipSource source(options.file, options.rate);
    source.format = options.format == "y4m" ? "yuv4mpegpipe" : options.format;
    source.pixelFormat = options.pixelFormat;
    if (source.isRaw()) {
        source.size = options.size;
        if (source.size.empty() || source.pixelFormat.empty())
            throw ToolError(
                ExitCode::usage, "--input-format rawvideo needs --size WIDTHxHEIGHT and --pixel-format NAME");
    } else if (!source.pixelFormat.empty()) {
        throw ToolError(ExitCode::usage, "--pixel-format is for --input-format rawvideo");
    }
    return source;
}

std::string outputSizeOf(const InputOptions& options)
{
    if (options.format == "rawvideo")
        return options.scale;
    if (!options.size.empty() && !options.scale.empty())
        throw ToolError(ExitCode::usage, "--size and --scale both name the output's size");
    return options.scale.empty() ? options.size : options.scale;
}

} // namespace tool::media
