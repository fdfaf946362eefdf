// Standard input and output, and other files that are read or written once and in order.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <filesystem>

namespace tool::media {

/// Closes a pipe's end and frees what belongs to it.
struct ClosePipe {
    void operator()(AVIOContext* pipe) const;
};

/// A pipe's end for FFmpeg's libraries, which neither seek in it nor close it.
using Pipe = std::unique_ptr<AVIOContext, ClosePipe>;

/// Whether the name stands for standard input or output.
inline bool isStandardStream(const std::filesystem::path& name) { return name == "-"; }

/// Whether the path leads to a pipe, a socket or a device.
bool isPipe(const std::filesystem::path& path);

/// The end to read from. Reading waits for the other side; it ends with AVERROR_EXIT when a stop is asked.
/// Throws ToolError: no permission, or a terminal.
/// @param path  "/dev/stdin" for standard input
Pipe openPipeToRead(const std::filesystem::path& path);

/// Ends reading, now and from now on, with AVERROR_EXIT. For other threads than the one that reads.
void abandon(const AVIOContext& pipe);

/// The end to write to; "-" stands for standard output, and what else would be printed there goes to standard
/// error from then on. While it is open a closed reader is an error of writing, AVERROR(EPIPE), and no
/// signal. Throws ToolError: no permission, or a terminal.
Pipe openPipeToWrite(const std::filesystem::path& name);

/// Ends the work because the reader of an output is gone: as other filters do, by SIGPIPE; or with a
/// ToolError where the process was started to ignore that signal.
[[noreturn]] void stopForClosedReader(const AVIOContext& pipe, const std::filesystem::path& name);

} // namespace tool::media
