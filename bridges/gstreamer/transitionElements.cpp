// Mixers on GstVideoAggregator: the first input, the way over to the second, the second.
#include "gstreamer/transitionElements.h"

#include "gstreamer/StreamRun.h"
#include "gstreamer/frames.h"
#include "gstreamer/streamTime.h"

#include <gst/video/gstvideoaggregator.h>

#include <array>
#include <mutex>

namespace bridge {

namespace {

enum { kStart = 1, kDuration, kProgress };

constexpr GstClockTime kUsualDuration = GST_SECOND;
constexpr double kByTime = -1;

struct MixerKind {
    const EffectHostEffect* effect;
    std::vector<Property> properties;
};

struct MixerState {
    explicit MixerState(const MixerKind& kind) : properties(kind.properties) { }

    EffectProperties properties;
    StreamRun run;
    std::mutex mutex; ///< of what follows, which applications set
    GstClockTime start = 0;
    GstClockTime duration = kUsualDuration;
    double progress = kByTime;
};

struct Mixer {
    GstVideoAggregator parent;
    MixerState* state;
};

struct MixerClass {
    GstVideoAggregatorClass parent;
    const MixerKind* kind;
};

GstVideoAggregatorClass* parentClass = nullptr;

Mixer* mixerOf(gpointer object) { return static_cast<Mixer*>(object); }
MixerState& stateOf(gpointer object) { return *mixerOf(object)->state; }
const MixerKind& kindOf(gpointer object)
{
    return *reinterpret_cast<MixerClass*>(G_OBJECT_GET_CLASS(object))->kind;
}
GstAggregatorClass* parentAggregator() { return reinterpret_cast<GstAggregatorClass*>(parentClass); }

// ---- Inputs, which are converted to the output's format and size ----

struct InputPad {
    GstVideoAggregatorConvertPad parent;
};

struct InputPadClass {
    GstVideoAggregatorConvertPadClass parent;
};

G_DEFINE_TYPE(InputPad, effectengine_input_pad, GST_TYPE_VIDEO_AGGREGATOR_CONVERT_PAD)

void describeConversion(GstVideoAggregatorConvertPad* pad, GstVideoAggregator* mixer, GstVideoInfo* info)
{
    GST_VIDEO_AGGREGATOR_CONVERT_PAD_CLASS(effectengine_input_pad_parent_class)
        ->create_conversion_info(pad, mixer, info);
    if (!info->finfo)
        return;
    GstVideoInfo sized = *info;
    gst_video_info_set_format(&sized, GST_VIDEO_INFO_FORMAT(info), guint(GST_VIDEO_INFO_WIDTH(&mixer->info)),
        guint(GST_VIDEO_INFO_HEIGHT(&mixer->info)));
    sized.colorimetry = info->colorimetry;
    sized.chroma_site = info->chroma_site;
    sized.flags = info->flags;
    sized.interlace_mode = info->interlace_mode;
    sized.par_n = info->par_n;
    sized.par_d = info->par_d;
    sized.fps_n = info->fps_n;
    sized.fps_d = info->fps_d;
    *info = sized;
}

void effectengine_input_pad_init(InputPad*) { }

void effectengine_input_pad_class_init(InputPadClass* type)
{
    type->parent.create_conversion_info = describeConversion;
}

// ---- Properties ----

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec)
{
    MixerState& state = stateOf(object);
    if (id >= kFirstEffectProperty)
        return state.properties.set(id - kFirstEffectProperty, value);
    const std::lock_guard lock(state.mutex);
    if (id == kStart)
        state.start = g_value_get_uint64(value);
    else if (id == kDuration)
        state.duration = g_value_get_uint64(value);
    else if (id == kProgress)
        state.progress = g_value_get_double(value);
    else
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec* spec)
{
    MixerState& state = stateOf(object);
    if (id >= kFirstEffectProperty)
        return state.properties.get(id - kFirstEffectProperty, value);
    const std::lock_guard lock(state.mutex);
    if (id == kStart)
        g_value_set_uint64(value, state.start);
    else if (id == kDuration)
        g_value_set_uint64(value, state.duration);
    else if (id == kProgress)
        g_value_set_double(value, state.progress);
    else
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
}

void installOwnProperties(GObjectClass* type)
{
    constexpr auto kFlags =
        GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING);
    g_object_class_install_property(type, kStart,
        g_param_spec_uint64("start", "Start",
            "Stream time in nanoseconds at which the second input begins to show", 0, G_MAXUINT64, 0,
            kFlags));
    g_object_class_install_property(type, kDuration,
        g_param_spec_uint64("duration", "Duration", "Nanoseconds from there until it shows alone", 1,
            G_MAXUINT64, kUsualDuration, kFlags));
    g_object_class_install_property(type, kProgress,
        g_param_spec_double("progress", "Progress",
            "How far the transition is, from 0 to 1, whatever the time (-1: by start and duration)", kByTime,
            1, kByTime, GParamFlags(kFlags | GST_PARAM_CONTROLLABLE)));
}

// Classes do not inherit these.
void takeProperties(GObjectClass* type)
{
    type->set_property = setProperty;
    type->get_property = getProperty;
}

void finalize(GObject* object)
{
    delete mixerOf(object)->state;
    G_OBJECT_CLASS(parentClass)->finalize(object);
}

// ---- Pads ----

GstPad* requestPad(GstElement* element, GstPadTemplate* from, const gchar* name, const GstCaps* caps)
{
    GST_OBJECT_LOCK(element);
    const bool full = element->numsinkpads >= 2;
    GST_OBJECT_UNLOCK(element);
    if (full)
        return nullptr;
    GstPad* const pad = GST_ELEMENT_CLASS(parentClass)->request_new_pad(element, from, name, caps);
    if (pad)
        gst_child_proxy_child_added(GST_CHILD_PROXY(element), G_OBJECT(pad), GST_OBJECT_NAME(pad));
    return pad;
}

void releasePad(GstElement* element, GstPad* pad)
{
    gst_child_proxy_child_removed(GST_CHILD_PROXY(element), G_OBJECT(pad), GST_OBJECT_NAME(pad));
    GST_ELEMENT_CLASS(parentClass)->release_pad(element, pad);
}

GObject* childByIndex(GstChildProxy* element, guint index)
{
    GST_OBJECT_LOCK(element);
    gpointer const pad = g_list_nth_data(GST_ELEMENT(element)->sinkpads, index);
    GObject* const child = pad ? G_OBJECT(gst_object_ref(pad)) : nullptr;
    GST_OBJECT_UNLOCK(element);
    return child;
}

guint childrenCount(GstChildProxy* element)
{
    GST_OBJECT_LOCK(element);
    const guint count = GST_ELEMENT(element)->numsinkpads;
    GST_OBJECT_UNLOCK(element);
    return count;
}

void initChildProxy(gpointer interface, gpointer)
{
    auto* const proxy = static_cast<GstChildProxyInterface*>(interface);
    proxy->get_child_by_index = childByIndex;
    proxy->get_children_count = childrenCount;
}

// ---- Frames ----

// The prepared frames of the first two inputs in the order of their pads; null where an input has none now.
std::array<GstVideoFrame*, 2> framesOf(GstVideoAggregator* mixer)
{
    std::array<GstVideoFrame*, 2> frames{};
    std::size_t i = 0;
    GST_OBJECT_LOCK(mixer);
    for (GList* pad = GST_ELEMENT(mixer)->sinkpads; pad && i < frames.size(); pad = pad->next)
        frames[i++] = gst_video_aggregator_pad_get_prepared_frame(GST_VIDEO_AGGREGATOR_PAD(pad->data));
    GST_OBJECT_UNLOCK(mixer);
    return frames;
}

/// Where a frame lies: before the transition, behind it, or within.
struct Place {
    bool before = false;
    bool behind = false;
    double seconds = 0;
    double duration = 1;
};

Place placeOf(MixerState& state, GstClockTime time)
{
    const std::lock_guard lock(state.mutex);
    Place place;
    place.duration = double(state.duration) / GST_SECOND;
    if (state.progress >= 0) {
        place.seconds = state.progress * place.duration;
        return place;
    }
    if (!GST_CLOCK_TIME_IS_VALID(time) || time < state.start) {
        place.before = true;
        return place;
    }
    const GstClockTime since = time - state.start;
    place.behind = since >= state.duration;
    place.seconds = double(since) / GST_SECOND;
    return place;
}

bool show(GstVideoAggregator* mixer, GstVideoFrame* from, GstVideoFrame* to)
{
    stateOf(mixer).run.forgetFrames();
    if (from)
        return gst_video_frame_copy(to, from);
    for (int y = 0; y < GST_VIDEO_FRAME_HEIGHT(to); ++y)
        memset(
            static_cast<guint8*>(GST_VIDEO_FRAME_PLANE_DATA(to, 0)) + y * GST_VIDEO_FRAME_PLANE_STRIDE(to, 0),
            0, gsize(GST_VIDEO_FRAME_WIDTH(to)) * 4);
    return true;
}

bool mix(GstVideoAggregator* mixer, const std::array<GstVideoFrame*, 2>& from, GstVideoFrame* to,
    const Place& place)
{
    MixerState& state = stateOf(mixer);
    StreamTime time;
    time.seconds = place.seconds;
    time.duration = place.duration;
    if (GST_VIDEO_INFO_FPS_N(&mixer->info) > 0)
        time.rate = double(GST_VIDEO_INFO_FPS_N(&mixer->info)) / GST_VIDEO_INFO_FPS_D(&mixer->info);
    const std::array inputs{pictureOf(*from[0]), pictureOf(*from[1])};
    state.run.use({EFFECTHOST_LOOK_EFFECT, kindOf(mixer).effect->guid});
    if (state.run.run(inputs, pictureOf(*to), time, &state.properties))
        return true;
    GST_ELEMENT_ERROR(mixer, LIBRARY, FAILED, ("%s", EffectHostLastError()), (nullptr));
    return false;
}

GstFlowReturn aggregateFrames(GstVideoAggregator* mixer, GstBuffer* buffer)
{
    const auto* const source = GST_AGGREGATOR_PAD(GST_AGGREGATOR(mixer)->srcpad);
    const GstClockTime now = streamTimeOf(source->segment, buffer);
    if (GST_CLOCK_TIME_IS_VALID(now))
        gst_object_sync_values(GST_OBJECT(mixer), now);
    const auto frames = framesOf(mixer);
    const Place place = placeOf(stateOf(mixer), now);
    GstVideoFrame to;
    if (!gst_video_frame_map(&to, &mixer->info, buffer, GST_MAP_WRITE))
        return GST_FLOW_ERROR;
    const bool both = frames[0] && frames[1];
    const bool done = both && !place.before && !place.behind
        ? mix(mixer, frames, &to, place)
        : show(mixer, frames[1] && (place.behind || !frames[0]) ? frames[1] : frames[0], &to);
    gst_video_frame_unmap(&to);
    return done ? GST_FLOW_OK : GST_FLOW_ERROR;
}

gboolean negotiated(GstAggregator* mixer, GstCaps* caps)
{
    stateOf(mixer).run.stop();
    return parentAggregator()->negotiated_src_caps(mixer, caps);
}

GstFlowReturn flush(GstAggregator* mixer)
{
    stateOf(mixer).run.forgetFrames();
    return parentAggregator()->flush(mixer);
}

gboolean stop(GstAggregator* mixer)
{
    stateOf(mixer).run.stop();
    return parentAggregator()->stop(mixer);
}

gboolean sinkEvent(GstAggregator* mixer, GstAggregatorPad* pad, GstEvent* event)
{
    if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
        GstCaps* caps = nullptr;
        gst_event_parse_caps(event, &caps);
        if (const auto fault = faultOfSize(caps)) {
            GST_ELEMENT_ERROR(mixer, STREAM, FORMAT, ("%s", fault->c_str()), (nullptr));
            gst_event_unref(event);
            return FALSE;
        }
    }
    return parentAggregator()->sink_event(mixer, pad, event);
}

// Frames must not be dropped where later ones depend on them.
gboolean sourceEvent(GstAggregator* mixer, GstEvent* event)
{
    if (GST_EVENT_TYPE(event) == GST_EVENT_QOS && kindOf(mixer).effect->historyFrames != 0) {
        gst_event_unref(event);
        return TRUE;
    }
    return parentAggregator()->src_event(mixer, event);
}

// ---- Types ----

void addPads(GstElementClass* type)
{
    GstCaps* const inputs = gst_caps_from_string(GST_VIDEO_CAPS_MAKE(GST_VIDEO_FORMATS_ALL));
    GstCaps* const output = gst_caps_from_string(EFFECTENGINE_CAPS);
    gst_element_class_add_pad_template(type,
        gst_pad_template_new_with_gtype(
            "sink_%u", GST_PAD_SINK, GST_PAD_REQUEST, inputs, effectengine_input_pad_get_type()));
    gst_element_class_add_pad_template(type,
        gst_pad_template_new_with_gtype("src", GST_PAD_SRC, GST_PAD_ALWAYS, output, GST_TYPE_AGGREGATOR_PAD));
    gst_caps_unref(inputs);
    gst_caps_unref(output);
}

void initBase(gpointer classPointer, gpointer)
{
    parentClass = static_cast<GstVideoAggregatorClass*>(g_type_class_peek_parent(classPointer));
    auto* const object = static_cast<GObjectClass*>(classPointer);
    takeProperties(object);
    object->finalize = finalize;
    auto* const element = static_cast<GstElementClass*>(classPointer);
    element->request_new_pad = requestPad;
    element->release_pad = releasePad;
    addPads(element);
    auto* const aggregator = static_cast<GstAggregatorClass*>(classPointer);
    aggregator->negotiated_src_caps = negotiated;
    aggregator->flush = flush;
    aggregator->stop = stop;
    aggregator->sink_event = sinkEvent;
    aggregator->src_event = sourceEvent;
    static_cast<GstVideoAggregatorClass*>(classPointer)->aggregate_frames = aggregateFrames;
    installOwnProperties(object);
    gst_type_mark_as_plugin_api(effectengine_input_pad_get_type(), GstPluginAPIFlags(0));
}

void initEffect(gpointer classPointer, gpointer data)
{
    takeProperties(static_cast<GObjectClass*>(classPointer));
    const auto& kind = *static_cast<const MixerKind*>(data);
    static_cast<MixerClass*>(classPointer)->kind = &kind;
    const EffectHostEffect& effect = *kind.effect;
    gst_element_class_set_metadata(static_cast<GstElementClass*>(classPointer), effect.title,
        "Filter/Editor/Video/Compositor", effect.summary, EFFECTENGINE_AUTHOR);
    installProperties(
        static_cast<GObjectClass*>(classPointer), kind.properties, typeName("EffectEngine", effect.name));
}

void initInstance(GTypeInstance* instance, gpointer classPointer)
{
    mixerOf(instance)->state = new MixerState(*static_cast<MixerClass*>(classPointer)->kind);
}

GType baseType()
{
    static const GType type = [] {
        GTypeInfo info{};
        info.class_size = sizeof(MixerClass);
        info.class_init = initBase;
        info.instance_size = sizeof(Mixer);
        const GType made = g_type_register_static(
            GST_TYPE_VIDEO_AGGREGATOR, "EffectEngineMixer", &info, G_TYPE_FLAG_ABSTRACT);
        constexpr GInterfaceInfo kPreset{};
        g_type_add_interface_static(made, GST_TYPE_PRESET, &kPreset);
        constexpr GInterfaceInfo kChildProxy{initChildProxy, nullptr, nullptr};
        g_type_add_interface_static(made, GST_TYPE_CHILD_PROXY, &kChildProxy);
        return made;
    }();
    return type;
}

} // namespace

GType transitionType(const EffectHostEffect& effect)
{
    const std::string name = typeName("EffectEngine", effect.name);
    if (const GType made = g_type_from_name(name.c_str()))
        return made;
    // A kind lives as long as its type, which is to the end of the process.
    GTypeInfo info{};
    info.class_size = sizeof(MixerClass);
    info.class_init = initEffect;
    info.class_data = new MixerKind{&effect, propertiesOf(effect)};
    info.instance_size = sizeof(Mixer);
    info.instance_init = initInstance;
    return g_type_register_static(baseType(), name.c_str(), &info, GTypeFlags(0));
}

} // namespace bridge
