// Video frames and their row order: GStreamer's elements start at the top, the engine at the bottom.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <gst/video/video.h>

#include <optional>
#include <string>

namespace bridge {

/// The formats that need no conversion beyond the order of their bytes.
#define EFFECTENGINE_FORMATS "{ BGRA, BGRx, RGBA, RGBx }"

/// Caps of frames that the engine holds.
#define EFFECTENGINE_CAPS                                                                                    \
    "video/x-raw, format=(string)" EFFECTENGINE_FORMATS                                                      \
    ", width=(int)[ 1, 4096 ], height=(int)[ 1, 4096 ], framerate=(fraction)[ 0/1, max ]"

/// Largest width and height of frames.
constexpr int kLargestSide = 4096;

/// What is wrong with the size of some caps, for people; nothing when the engine holds it.
std::optional<std::string> faultOfSize(const GstCaps* caps);

/// A mapped frame for the host library.
EffectHostPicture pictureOf(const GstVideoFrame& frame);

/// Tells upstream, in a query for an allocation, that bottom rows may come first.
void offerBottomUp(GstQuery* query);

/// Whether downstream takes bottom rows first.
bool takesBottomUp(GstQuery* query);

/// A pool of frames whose bottom row comes first, which their metadata says. The caller owns it.
GstBufferPool* makeBottomUpPool();

} // namespace bridge
