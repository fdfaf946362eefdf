// Times of streams as effects count them.
#pragma once

#include "gstreamer/StreamRun.h"

#include <gst/video/video.h>

namespace bridge {

/// The author that elements name.
#define EFFECTENGINE_AUTHOR "EffectEngine maintainers <maintainers@effectengine.example>"

/// The stream time of a buffer, or GST_CLOCK_TIME_NONE.
GstClockTime streamTimeOf(const GstSegment& segment, const GstBuffer* buffer);

/// The time of a frame.
/// @param total  nanoseconds; 0 for the segment's duration, else the stream's, else 5 seconds
/// @param pad    whose peer knows the stream's duration
StreamTime streamTime(const GstSegment& segment, const GstBuffer* buffer, const GstVideoInfo& info,
    GstClockTime total, GstPad* pad);

/// Adds the property "total-time".
void installTotalTime(GObjectClass* type, guint id);

} // namespace bridge
