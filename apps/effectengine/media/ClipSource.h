// What a clip is read from: a file, numbered pictures, or a pipe.
#pragma once

#include "effectengine/clipVerbs.h"

#include <filesystem>
#include <string>

namespace tool::media {

/// The origin of a clip's bytes, and what must be known beside them.
struct ClipSource {
    ClipSource(std::filesystem::path clip = {}, std::string rate = {})
        : file(std::move(clip)),
          pictureRate(std::move(rate))
    {
    }

    std::filesystem::path file;   ///< "-" stands for standard input
    std::string pictureRate = {}; ///< frames per second of numbered and of raw pictures; empty: 25
    std::string format = {};      ///< FFmpeg's name of the container; empty: what the bytes look like
    std::string size = {};        ///< WIDTHxHEIGHT of raw pictures
    std::string pixelFormat = {}; ///< FFmpeg's name of that of raw pictures

    /// Whether it can be read but once, from its start: a pipe, a socket, a device.
    bool passesOnce() const;
    /// Whether these are pixels with nothing around them.
    bool isRaw() const { return format == "rawvideo"; }
    /// What messages call it.
    std::filesystem::path name() const;
    /// What the file system calls it.
    std::filesystem::path path() const;
};

/// The source and the output's size in the options of a command line; the size is empty when none is wanted.
/// Throw ToolError.
ClipSource sourceOf(const InputOptions& options);
std::string outputSizeOf(const InputOptions& options);

} // namespace tool::media
