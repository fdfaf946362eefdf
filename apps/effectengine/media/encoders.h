// Encoders: which one an output gets, and with which settings.
#pragma once

#include "effectengine/media/ClipSink.h"

namespace tool::media {

/// The settings in the options of a command line. Throws ToolError.
EncoderChoice choiceOf(const EncodingOptions& options);

/// An opened encoder for frames of the shape, with its time base and pixel format chosen.
/// @param globalHeader  the container keeps the codec's data apart
/// Throws ToolError: unknown codec, option or value, or --alpha keep with a codec that has none.
Codec openEncoder(
    const AVCodec& codec, const FrameShape& shape, const EncoderChoice& choice, bool globalHeader);

/// The encoder of this name, or the usual one for the codec of this name. Throws ToolError.
const AVCodec& encoderNamed(const std::string& name);

/// The chosen encoder, or the one that the name stands for: of a clip, or of numbered pictures. Throws
/// ToolError.
const AVCodec& encoderOf(const std::filesystem::path& out, const EncoderChoice& choice);

/// Whether some of the encoder's formats have room for transparency.
bool offersAlpha(const AVCodec& codec);

/// The usual encoder for the codec. Throws ToolError when this machine has none.
const AVCodec& encoderFor(AVCodecID id, const std::filesystem::path& out);

} // namespace tool::media
