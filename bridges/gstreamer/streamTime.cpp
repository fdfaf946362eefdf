// Stream time in seconds, and how long a stream is.
#include "gstreamer/streamTime.h"

namespace bridge {

namespace {

double secondsOf(GstClockTime time) { return double(time) / GST_SECOND; }

} // namespace

GstClockTime streamTimeOf(const GstSegment& segment, const GstBuffer* buffer)
{
    return gst_segment_to_stream_time(&segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
}

StreamTime streamTime(const GstSegment& segment, const GstBuffer* buffer, const GstVideoInfo& info,
    GstClockTime total, GstPad* pad)
{
    StreamTime time;
    if (const GstClockTime at = streamTimeOf(segment, buffer); GST_CLOCK_TIME_IS_VALID(at))
        time.seconds = secondsOf(at);
    if (GST_VIDEO_INFO_FPS_N(&info) > 0 && GST_VIDEO_INFO_FPS_D(&info) > 0)
        time.rate = double(GST_VIDEO_INFO_FPS_N(&info)) / GST_VIDEO_INFO_FPS_D(&info);
    gint64 duration = 0;
    if (total > 0)
        time.duration = secondsOf(total);
    else if (GST_CLOCK_TIME_IS_VALID(segment.duration) && segment.duration > 0)
        time.duration = secondsOf(segment.duration);
    else if (GST_CLOCK_TIME_IS_VALID(segment.stop) && segment.stop > segment.start)
        time.duration = secondsOf(segment.stop - segment.start);
    else if (gst_pad_peer_query_duration(pad, GST_FORMAT_TIME, &duration) && duration > 0)
        time.duration = secondsOf(GstClockTime(duration));
    return time;
}

void installTotalTime(GObjectClass* type, guint id)
{
    g_object_class_install_property(type, id,
        g_param_spec_uint64("total-time", "Total Time",
            "Duration of the effect in nanoseconds (0: that of the segment)", 0, G_MAXUINT64, 0,
            GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING)));
}

} // namespace bridge
