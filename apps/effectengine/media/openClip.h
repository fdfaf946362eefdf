// Functions that open a clip: the file, its stream of pictures, its decoder.
#pragma once

#include "effectengine/media/ClipSource.h"
#include "effectengine/media/pipes.h"

namespace tool::media {

/// Opens a clip file, or the pictures that a name with %04d stands for. Throws ToolError: missing,
/// unreadable, or no clip.
Input openClip(const ClipSource& source);

/// Opens a clip that passes once, over the end of a pipe that must outlive the input. Throws ToolError.
Input openPassingClip(const ClipSource& source, AVIOContext& pipe);

/// The number of the stream that holds the clip's pictures. Throws ToolError when none does.
int pictureStreamOf(const AVFormatContext& input, const std::filesystem::path& file);

/// Makes the file give the packets of one stream only.
void readOnly(AVFormatContext& input, int stream);

/// Whether the stream's transparency is coded beside its pictures.
bool hasAlphaBeside(const AVStream& stream);

/// An opened decoder for a stream of pictures or sound. Throws ToolError when this machine has none.
/// Its pixel format is that of the frames, transparency included.
/// @param watcher  becomes the context's `opaque`, also on the decoder's threads
Codec openDecoder(const AVStream& stream, const std::filesystem::path& file, void* watcher);

} // namespace tool::media
