// Every element of the plug-in, and what pipelines ask of all of them, beside runs of the host library
// itself.
#include "gstreamer/GStreamerTest.h"

#include <gst/check/gstharness.h>
#include <gst/controller/gstdirectcontrolbinding.h>
#include <gst/controller/gstinterpolationcontrolsource.h>
#include <gst/video/video.h>

#include <cstdlib>
#include <set>

namespace gsttest {

namespace {

struct FreeHarness {
    void operator()(GstHarness* harness) const { gst_harness_teardown(harness); }
};
using Harness = std::unique_ptr<GstHarness, FreeHarness>;

std::string capsOf(Size size, const char* format = "BGRA")
{
    return "video/x-raw,format=" + std::string(format) + ",width=" + std::to_string(size.width)
        + ",height=" + std::to_string(size.height) + ",framerate=25/1";
}

// A buffer with rows `extra` bytes apart from each other beyond their pixels.
GstBuffer* bufferOf(const Picture& picture, int number, int extra = 0)
{
    const int row = picture.size.width * 4;
    const int stride = row + extra;
    GstBuffer* const buffer =
        gst_buffer_new_allocate(nullptr, gsize(stride) * gsize(picture.size.height), nullptr);
    for (int y = 0; y < picture.size.height; ++y)
        gst_buffer_fill(buffer, gsize(y) * gsize(stride), picture.bytes.data() + y * row, gsize(row));
    if (extra > 0) {
        const gsize offsets[GST_VIDEO_MAX_PLANES] = {0};
        const gint strides[GST_VIDEO_MAX_PLANES] = {stride};
        gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_BGRA,
            guint(picture.size.width), guint(picture.size.height), 1, const_cast<gsize*>(offsets),
            const_cast<gint*>(strides));
    }
    GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(guint64(number), GST_SECOND, 25);
    GST_BUFFER_DURATION(buffer) = GST_SECOND / 25;
    return buffer;
}

Picture pictureOf(Size size, GstBuffer* buffer)
{
    GstVideoInfo info;
    gst_video_info_set_format(&info, GST_VIDEO_FORMAT_BGRA, guint(size.width), guint(size.height));
    GstVideoFrame frame;
    Picture picture{size, {}};
    if (!gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ))
        return picture;
    for (int y = 0; y < size.height; ++y) {
        const auto* const row = static_cast<const unsigned char*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0))
            + std::ptrdiff_t(y) * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
        picture.bytes.insert(picture.bytes.end(), row, row + size.width * 4);
    }
    gst_video_frame_unmap(&frame);
    return picture;
}

Picture pulled(GstHarness* harness, Size size)
{
    GstBuffer* const buffer = gst_harness_pull(harness);
    if (!buffer)
        return {};
    const Picture picture = pictureOf(size, buffer);
    gst_buffer_unref(buffer);
    return picture;
}

Harness filterHarness(const std::string& element)
{
    Harness harness(gst_harness_new(element.c_str()));
    g_object_set(harness->element, "total-time", guint64(4 * GST_SECOND), nullptr);
    return harness;
}

// As programs do that open a project: every property gets the value that it has.
void setEveryProperty(GstElement* element)
{
    guint count = 0;
    GParamSpec** const specs = g_object_class_list_properties(G_OBJECT_GET_CLASS(element), &count);
    for (guint i = 0; i < count; ++i) {
        if (!std::string_view(g_type_name(specs[i]->owner_type)).starts_with("EffectEngine"))
            continue;
        GValue value = G_VALUE_INIT;
        g_value_init(&value, specs[i]->value_type);
        g_object_get_property(G_OBJECT(element), specs[i]->name, &value);
        g_object_set_property(G_OBJECT(element), specs[i]->name, &value);
        g_value_unset(&value);
    }
    g_free(specs);
}

void setCaps(const Harness& harness, Size size)
{
    gst_harness_set_src_caps(harness.get(), gst_caps_from_string(capsOf(size).c_str()));
}

} // namespace

class GStreamer : public GStreamerTest { };

TEST_F(GStreamer, EveryFilterGivesTheBytesOfTheHostLibraryAtEverySize)
{
    for (const EffectHostEffect* const effect : effects(1)) {
        SCOPED_TRACE(effect->name);
        const Harness harness = filterHarness("ee-" + std::string(effect->name));
        int number = 0;
        for (const Size size : {Size{33, 17}, Size{4096, 2}, Size{5, 4096}, Size{33, 17}}) {
            setCaps(harness, size);
            HostRun run(effect->guid, size);
            for (const int extra : {0, 12}) {
                const Picture input = noise(size, unsigned(number));
                ASSERT_EQ(gst_harness_push(harness.get(), bufferOf(input, number, extra)), GST_FLOW_OK);
                const Picture output = pulled(harness.get(), size);
                if (!effect->random) {
                    EXPECT_TRUE(output == run.frame({input}, number / 25.0, 25, 4))
                        << size.width << " x " << size.height;
                }
                ++number;
            }
            setEveryProperty(harness->element);
        }
        EXPECT_TRUE(gst_harness_push_event(harness.get(), gst_event_new_gap(GST_SECOND, GST_SECOND)));
        EXPECT_TRUE(gst_harness_push_event(harness.get(), gst_event_new_eos()));
    }
}

TEST_F(GStreamer, AFlushOrADiscontinuityStartsAnew)
{
    constexpr Size kSize{64, 48};
    for (const char* const name : {"vertigo", "water-surfer"}) {
        SCOPED_TRACE(name);
        const Harness harness = filterHarness("ee-" + std::string(name));
        setCaps(harness, kSize);
        const auto three = [&](bool discontinuous) {
            std::vector<Picture> pictures;
            for (int i = 0; i < 3; ++i) {
                GstBuffer* const buffer = bufferOf(noise(kSize, unsigned(i)), 50 + i);
                if (i == 0 && discontinuous)
                    GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
                EXPECT_EQ(gst_harness_push(harness.get(), buffer), GST_FLOW_OK);
                pictures.push_back(pulled(harness.get(), kSize));
            }
            return pictures;
        };
        const auto fresh = three(false);
        EXPECT_TRUE(three(true) == fresh) << "a discontinuity";
        EXPECT_FALSE(three(false) == fresh) << "the effect has no history";
        gst_harness_push_event(harness.get(), gst_event_new_flush_start());
        gst_harness_push_event(harness.get(), gst_event_new_flush_stop(TRUE));
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        gst_harness_push_event(harness.get(), gst_event_new_segment(&segment));
        EXPECT_TRUE(three(false) == fresh) << "a flush";
        gboolean dropsFrames = TRUE;
        g_object_get(harness->element, "qos", &dropsFrames, nullptr);
        EXPECT_FALSE(dropsFrames);
    }
}

TEST_F(GStreamer, ElementsGoUpAndDownFiftyTimes)
{
    std::vector<std::string> names = {"ee-look"};
    for (const EffectHostEffect* const effect : effects(1))
        names.push_back("ee-" + std::string(effect->name));
    for (const std::string& name : names) {
        GstElement* const element = gst_element_factory_make(name.c_str(), nullptr);
        ASSERT_TRUE(element) << name;
        gst_object_ref_sink(element);
        for (int i = 0; i < 50; ++i) {
            ASSERT_NE(gst_element_set_state(element, GST_STATE_PAUSED), GST_STATE_CHANGE_FAILURE) << name;
            ASSERT_NE(gst_element_set_state(element, GST_STATE_NULL), GST_STATE_CHANGE_FAILURE) << name;
        }
        gst_object_unref(element);
    }
}

TEST_F(GStreamer, AControlledPropertyFollowsStreamTime)
{
    constexpr Size kSize{40, 30};
    const Harness harness = filterHarness("ee-hue-shift");
    GstControlSource* const control = gst_interpolation_control_source_new();
    g_object_set(control, "mode", GST_INTERPOLATION_MODE_LINEAR, nullptr);
    gst_timed_value_control_source_set(GST_TIMED_VALUE_CONTROL_SOURCE(control), 0, 10);
    gst_timed_value_control_source_set(GST_TIMED_VALUE_CONTROL_SOURCE(control), GST_SECOND, 60);
    gst_object_add_control_binding(GST_OBJECT(harness->element),
        gst_direct_control_binding_new_absolute(GST_OBJECT(harness->element), "hue", control));
    gst_object_unref(control);
    setCaps(harness, kSize);
    HostRun run("hue-shift", kSize);
    for (const int number : {0, 7, 25}) {
        const Picture input = noise(kSize, unsigned(number));
        ASSERT_EQ(gst_harness_push(harness.get(), bufferOf(input, number)), GST_FLOW_OK);
        run.set("Hue", 10 + 50 * std::min(1.0, number / 25.0));
        EXPECT_TRUE(pulled(harness.get(), kSize) == run.frame({input}, number / 25.0, 25, 4)) << number;
    }
}

TEST_F(GStreamer, AChainTurnsTheRowsOnceEachWay)
{
    constexpr Size kSize{64, 48};
    const Harness harness(
        gst_harness_new_parse("ee-am-negative name=a ! ee-blur name=b ! queue ! ee-hue-shift hue=30 name=c"));
    std::vector<int> strides;
    const auto watch = [](GstPad*, GstPadProbeInfo* info, gpointer data) {
        const GstVideoMeta* const meta = gst_buffer_get_video_meta(GST_PAD_PROBE_INFO_BUFFER(info));
        static_cast<std::vector<int>*>(data)->push_back(meta ? meta->stride[0] : 0);
        return GST_PAD_PROBE_OK;
    };
    for (const char* const name : {"a", "b", "c"}) {
        GstElement* const element = gst_bin_get_by_name(GST_BIN(harness->element), name);
        GstPad* const pad = gst_element_get_static_pad(element, "src");
        gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, watch, &strides, nullptr);
        gst_object_unref(pad);
        gst_object_unref(element);
    }
    setCaps(harness, kSize);
    const Picture input = noise(kSize, 1);
    ASSERT_EQ(gst_harness_push(harness.get(), bufferOf(input, 0)), GST_FLOW_OK);
    const Picture output = pulled(harness.get(), kSize);
    ASSERT_EQ(strides.size(), 3u);
    EXPECT_EQ(strides[0], -kSize.width * 4);
    EXPECT_EQ(strides[1], -kSize.width * 4);
    EXPECT_GE(strides[2], 0);
    HostRun negative("am-negative", kSize);
    HostRun blur("blur", kSize);
    HostRun hue("hue-shift", kSize);
    hue.set("Hue", 30);
    EXPECT_TRUE(output == hue.frame({blur.frame({negative.frame({input}, 0, 25, 5)}, 0, 25, 5)}, 0, 25, 5));
}

TEST_F(GStreamer, LooksComeFromFilesAndTexts)
{
    constexpr Size kSize{64, 48};
    const std::string text = R"({"effectengine": 1, "nodes": [{"id": "n", "effect": "am-negative"}]})";
    const std::string file = temporaryFile("look.json", text);
    const Picture input = noise(kSize, 1);
    HostRun negative("am-negative", kSize);
    const Picture expected = negative.frame({input}, 0, 25, 5);
    for (const auto& [property, value] :
        std::vector<std::pair<const char*, std::string>>{{"file", file}, {"look", text}}) {
        const Harness harness(gst_harness_new("ee-look"));
        g_object_set(harness->element, property, value.c_str(), nullptr);
        setCaps(harness, kSize);
        ASSERT_EQ(gst_harness_push(harness.get(), bufferOf(input, 0)), GST_FLOW_OK);
        EXPECT_TRUE(pulled(harness.get(), kSize) == expected) << property;
    }
    const Harness harness(gst_harness_new("ee-look"));
    g_object_set(harness->element, "look", "{", nullptr);
    setCaps(harness, kSize);
    EXPECT_EQ(gst_harness_push(harness.get(), bufferOf(input, 0)), GST_FLOW_ERROR);
}

TEST_F(GStreamer, PresetsOfTheUserAreKept)
{
    GstElement* const element = gst_element_factory_make("ee-glow", nullptr);
    gst_object_ref_sink(element);
    g_object_set(element, "size", 21, nullptr);
    ASSERT_TRUE(gst_preset_save_preset(GST_PRESET(element), "mine"));
    g_object_set(element, "size", 3, nullptr);
    ASSERT_TRUE(gst_preset_load_preset(GST_PRESET(element), "mine"));
    int size = 0;
    g_object_get(element, "size", &size, nullptr);
    EXPECT_EQ(size, 21);
    gst_object_unref(element);
}

TEST_F(GStreamer, FramesBeyondTheLargestSideFailWithWords)
{
    const Harness harness = filterHarness("ee-glow");
    GstBus* const bus = gst_bus_new();
    gst_element_set_bus(harness->element, bus);
    setCaps(harness, {4097, 4});
    gst_harness_push(harness.get(), bufferOf(noise({4097, 4}, 1), 0));
    GstMessage* const message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
    ASSERT_TRUE(message);
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    EXPECT_STREQ(error->message, "frames of 4097 x 4 are too large: sides end at 4096");
    g_error_free(error);
    gst_message_unref(message);
    gst_element_set_bus(harness->element, nullptr);
    gst_object_unref(bus);
}

TEST_F(GStreamer, EveryTransitionGivesTheBytesOfTheHostLibrary)
{
    constexpr Size kSize{48, 36};
    for (const EffectHostEffect* const effect : effects(2)) {
        SCOPED_TRACE(effect->name);
        const bool isTransition = std::string_view(effect->family) == "transition";
        GstElement* const element = gst_element_factory_make(
            ((isTransition ? "ee-transition-" : "ee-") + std::string(effect->name)).c_str(), nullptr);
        ASSERT_TRUE(element);
        gst_object_ref_sink(element);
        g_object_set(
            element, "start", guint64(40 * GST_MSECOND), "duration", guint64(160 * GST_MSECOND), nullptr);
        {
            const Harness from(gst_harness_new_with_element(element, "sink_%u", "src"));
            const Harness to(gst_harness_new_with_element(element, "sink_%u", nullptr));
            setCaps(from, kSize);
            setCaps(to, kSize);
            HostRun run(effect->guid, kSize);
            for (int i = 0; i < 6; ++i) {
                gst_harness_push(from.get(), bufferOf(noise(kSize, unsigned(i)), i));
                gst_harness_push(to.get(), bufferOf(noise(kSize, unsigned(100 + i)), i));
            }
            gst_harness_push_event(from.get(), gst_event_new_eos());
            gst_harness_push_event(to.get(), gst_event_new_eos());
            for (int i = 0; i < 6; ++i) {
                const Picture output = pulled(from.get(), kSize);
                const Picture before = noise(kSize, unsigned(i));
                const Picture behind = noise(kSize, unsigned(100 + i));
                if (i == 0)
                    EXPECT_TRUE(output == before);
                else if (i == 5)
                    EXPECT_TRUE(output == behind);
                else
                    EXPECT_TRUE(
                        effect->random || output == run.frame({before, behind}, (i - 1) * 0.04, 25, 0.16))
                        << i;
            }
        }
        gst_object_unref(element);
    }
}

TEST_F(GStreamer, BranchesBehindATeeRunAtTheSameTime)
{
    GError* error = nullptr;
    GstElement* const pipeline = gst_parse_launch(
        "videotestsrc num-buffers=20 ! video/x-raw,format=BGRA,width=160,height=120 ! tee name=t "
        "t. ! queue ! ee-glow ! fakesink t. ! queue ! ee-echo ! ee-am-70s ! fakesink "
        "t. ! queue ! ee-hue-shift ! videoconvert ! fakesink t. ! queue ! ee-am-rq-old-photo ! ee-blur ! "
        "fakesink",
        &error);
    ASSERT_TRUE(pipeline) << error->message;
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* const bus = gst_element_get_bus(pipeline);
    GstMessage* const message =
        gst_bus_timed_pop_filtered(bus, 60 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    ASSERT_TRUE(message);
    EXPECT_EQ(GST_MESSAGE_TYPE(message), GST_MESSAGE_EOS);
    gst_message_unref(message);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
}

// Programs keep these names in projects and presets: names and types stay; new ones come into the list.
TEST_F(GStreamer, NamesAndTypesAreThoseOfTheFirstRelease)
{
    std::set<std::string> here;
    for (const auto& [name, element] : elements()) {
        here.insert(name + " is a " + G_OBJECT_TYPE_NAME(element.get()));
        guint count = 0;
        GParamSpec** const specs = g_object_class_list_properties(G_OBJECT_GET_CLASS(element.get()), &count);
        for (guint i = 0; i < count; ++i)
            if (std::string_view(g_type_name(specs[i]->owner_type)).starts_with("EffectEngine"))
                here.insert(name + " " + specs[i]->name + " " + g_type_name(specs[i]->value_type));
        g_free(specs);
    }
    if (const char* const file = std::getenv("EFFECTENGINE_WRITE_INTERFACE")) {
        writeLines(file, here);
        return;
    }
    const std::set<std::string> stored = storedInterface();
    std::string missing;
    std::string unknown;
    for (const std::string& line : stored)
        missing += here.contains(line) ? "" : line + "\n";
    for (const std::string& line : here)
        unknown += stored.contains(line) ? "" : line + "\n";
    EXPECT_EQ(missing, "") << "these are promised";
    EXPECT_EQ(unknown, "")
        << "write them into tests/gstreamer/interface.txt: EFFECTENGINE_WRITE_INTERFACE=FILE";
}

} // namespace gsttest
