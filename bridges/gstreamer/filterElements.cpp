// Filters on GstVideoFilter. Stream time is the effect's time.
#include "gstreamer/filterElements.h"

#include "gstreamer/StreamRun.h"
#include "gstreamer/frames.h"
#include "gstreamer/streamTime.h"

#include <gst/video/gstvideofilter.h>

#include <mutex>
#include <string>

GST_DEBUG_CATEGORY_EXTERN(effectengine_debug);
#define GST_CAT_DEFAULT effectengine_debug

namespace bridge {

namespace {

enum { kTotalTime = 1, kFile, kLook };

/// What a class knows: its effect with the properties, or no effect for looks.
struct FilterKind {
    const EffectHostEffect* effect;
    std::vector<Property> properties;
};

struct FilterState {
    explicit FilterState(const FilterKind& kind) : properties(kind.properties) { }

    EffectProperties properties;
    StreamRun run;
    std::mutex mutex; ///< of what follows, which applications set
    GstClockTime totalTime = 0;
    std::string file;
    std::string look;
};

struct Filter {
    GstVideoFilter parent;
    FilterState* state;
};

struct FilterClass {
    GstVideoFilterClass parent;
    const FilterKind* kind;
};

GstVideoFilterClass* parentClass = nullptr;

Filter* filterOf(gpointer object) { return static_cast<Filter*>(object); }
FilterState& stateOf(gpointer object) { return *filterOf(object)->state; }
const FilterKind& kindOf(gpointer object)
{
    return *reinterpret_cast<FilterClass*>(G_OBJECT_GET_CLASS(object))->kind;
}
GstBaseTransformClass* parentTransform() { return reinterpret_cast<GstBaseTransformClass*>(parentClass); }

LookSource sourceOf(GstBaseTransform* element)
{
    if (const EffectHostEffect* const effect = kindOf(element).effect)
        return {EFFECTHOST_LOOK_EFFECT, effect->guid};
    FilterState& state = stateOf(element);
    const std::lock_guard lock(state.mutex);
    if (!state.look.empty())
        return {EFFECTHOST_LOOK_JSON, state.look};
    if (!state.file.empty())
        return {EFFECTHOST_LOOK_FILE, state.file};
    return {};
}

void setText(FilterState& state, std::string& text, const GValue* value)
{
    const char* const given = g_value_get_string(value);
    const std::lock_guard lock(state.mutex);
    text = given ? given : "";
}

void getText(FilterState& state, const std::string& text, GValue* value)
{
    const std::lock_guard lock(state.mutex);
    g_value_set_string(value, text.empty() ? nullptr : text.c_str());
}

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec)
{
    FilterState& state = stateOf(object);
    if (id >= kFirstEffectProperty) {
        state.properties.set(id - kFirstEffectProperty, value);
    } else if (id == kTotalTime) {
        const std::lock_guard lock(state.mutex);
        state.totalTime = g_value_get_uint64(value);
    } else if (id == kFile) {
        setText(state, state.file, value);
    } else if (id == kLook) {
        setText(state, state.look, value);
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec* spec)
{
    FilterState& state = stateOf(object);
    if (id >= kFirstEffectProperty) {
        state.properties.get(id - kFirstEffectProperty, value);
    } else if (id == kTotalTime) {
        const std::lock_guard lock(state.mutex);
        g_value_set_uint64(value, state.totalTime);
    } else if (id == kFile) {
        getText(state, state.file, value);
    } else if (id == kLook) {
        getText(state, state.look, value);
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

// Classes do not inherit these.
void takeProperties(GObjectClass* type)
{
    type->set_property = setProperty;
    type->get_property = getProperty;
}

void finalize(GObject* object)
{
    delete filterOf(object)->state;
    G_OBJECT_CLASS(parentClass)->finalize(object);
}

// Frames may be dropped, unless later ones depend on them. A look that cannot be made fails with its first
// frame.
gboolean start(GstBaseTransform* element)
{
    FilterState& state = stateOf(element);
    state.run.use(sourceOf(element));
    bool history = false;
    if (state.run.dependsOnEarlierFrames(history))
        gst_base_transform_set_qos_enabled(element, !history);
    return TRUE;
}

gboolean stop(GstBaseTransform* element)
{
    stateOf(element).run.stop();
    return TRUE;
}

gboolean acceptCaps(GstBaseTransform* element, GstPadDirection direction, GstCaps* caps)
{
    if (parentTransform()->accept_caps(element, direction, caps))
        return TRUE;
    GstState state = GST_STATE_NULL;
    gst_element_get_state(GST_ELEMENT(element), &state, nullptr, 0);
    const auto fault = faultOfSize(caps);
    if (fault && state >= GST_STATE_PAUSED)
        GST_ELEMENT_ERROR(element, STREAM, FORMAT, ("%s", fault->c_str()), (nullptr));
    return FALSE;
}

gboolean sinkEvent(GstBaseTransform* element, GstEvent* event)
{
    if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP)
        stateOf(element).run.forgetFrames();
    return parentTransform()->sink_event(element, event);
}

gboolean setInfo(GstVideoFilter* element, GstCaps*, GstVideoInfo*, GstCaps*, GstVideoInfo*)
{
    stateOf(element).run.stop();
    return TRUE;
}

gboolean proposeAllocation(GstBaseTransform* element, GstQuery* decided, GstQuery* query)
{
    if (!parentTransform()->propose_allocation(element, decided, query))
        return FALSE;
    if (decided)
        offerBottomUp(query);
    return TRUE;
}

gboolean decideAllocation(GstBaseTransform* element, GstQuery* query)
{
    if (takesBottomUp(query)) {
        GST_DEBUG_OBJECT(element, "the next element takes the bottom row first");
        GstBufferPool* const pool = makeBottomUpPool();
        if (gst_query_get_n_allocation_pools(query) > 0)
            gst_query_set_nth_allocation_pool(query, 0, pool, 0, 0, 0);
        else
            gst_query_add_allocation_pool(query, pool, 0, 0, 0);
        gst_object_unref(pool);
    }
    return parentTransform()->decide_allocation(element, query);
}

void beforeTransform(GstBaseTransform* element, GstBuffer* buffer)
{
    const GstClockTime time = streamTimeOf(element->segment, buffer);
    if (GST_CLOCK_TIME_IS_VALID(time))
        gst_object_sync_values(GST_OBJECT(element), time);
}

StreamTime timeOf(GstVideoFilter* element, GstBuffer* buffer)
{
    FilterState& state = stateOf(element);
    GstClockTime total = 0;
    {
        const std::lock_guard lock(state.mutex);
        total = state.totalTime;
    }
    GstBaseTransform* const transform = GST_BASE_TRANSFORM(element);
    return streamTime(transform->segment, buffer, element->in_info, total, transform->sinkpad);
}

GstFlowReturn transformFrame(GstVideoFilter* element, GstVideoFrame* in, GstVideoFrame* out)
{
    FilterState& state = stateOf(element);
    if (GST_BUFFER_IS_DISCONT(in->buffer))
        state.run.forgetFrames();
    state.run.use(sourceOf(GST_BASE_TRANSFORM(element)));
    const EffectHostPicture input = pictureOf(*in);
    if (state.run.run({&input, 1}, pictureOf(*out), timeOf(element, in->buffer), &state.properties))
        return GST_FLOW_OK;
    GST_ELEMENT_ERROR(element, LIBRARY, FAILED, ("%s", EffectHostLastError()), (nullptr));
    return GST_FLOW_ERROR;
}

void addPad(GstElementClass* type, const char* name, GstPadDirection direction)
{
    GstCaps* const caps = gst_caps_from_string(EFFECTENGINE_CAPS);
    gst_element_class_add_pad_template(type, gst_pad_template_new(name, direction, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
}

void initBase(gpointer classPointer, gpointer)
{
    parentClass = static_cast<GstVideoFilterClass*>(g_type_class_peek_parent(classPointer));
    auto* const object = static_cast<GObjectClass*>(classPointer);
    takeProperties(object);
    object->finalize = finalize;
    auto* const transform = static_cast<GstBaseTransformClass*>(classPointer);
    transform->start = start;
    transform->stop = stop;
    transform->accept_caps = acceptCaps;
    transform->sink_event = sinkEvent;
    transform->propose_allocation = proposeAllocation;
    transform->decide_allocation = decideAllocation;
    transform->before_transform = beforeTransform;
    auto* const filter = static_cast<GstVideoFilterClass*>(classPointer);
    filter->set_info = setInfo;
    filter->transform_frame = transformFrame;
    auto* const element = static_cast<GstElementClass*>(classPointer);
    addPad(element, "sink", GST_PAD_SINK);
    addPad(element, "src", GST_PAD_SRC);
    installTotalTime(object, kTotalTime);
}

void initEffect(gpointer classPointer, gpointer data)
{
    takeProperties(static_cast<GObjectClass*>(classPointer));
    const auto& kind = *static_cast<const FilterKind*>(data);
    static_cast<FilterClass*>(classPointer)->kind = &kind;
    const EffectHostEffect& effect = *kind.effect;
    gst_element_class_set_metadata(static_cast<GstElementClass*>(classPointer), effect.title,
        "Filter/Effect/Video", effect.summary, EFFECTENGINE_AUTHOR);
    installProperties(
        static_cast<GObjectClass*>(classPointer), kind.properties, typeName("EffectEngine", effect.name));
}

void initLook(gpointer classPointer, gpointer data)
{
    static_cast<FilterClass*>(classPointer)->kind = static_cast<const FilterKind*>(data);
    constexpr auto kFlags =
        GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING);
    auto* const object = static_cast<GObjectClass*>(classPointer);
    takeProperties(object);
    g_object_class_install_property(object, kFile,
        g_param_spec_string("file", "File", "Graph or preset file; \"look\" goes first", nullptr, kFlags));
    g_object_class_install_property(
        object, kLook, g_param_spec_string("look", "Look", "The text of such a file", nullptr, kFlags));
    gst_element_class_set_metadata(static_cast<GstElementClass*>(classPointer), "Look", "Filter/Effect/Video",
        "Effects, chains and graphs with parameters over time, from a file or a text.", EFFECTENGINE_AUTHOR);
}

void initInstance(GTypeInstance* instance, gpointer classPointer)
{
    filterOf(instance)->state = new FilterState(*static_cast<FilterClass*>(classPointer)->kind);
}

GType baseType()
{
    static const GType type = [] {
        GTypeInfo info{};
        info.class_size = sizeof(FilterClass);
        info.class_init = initBase;
        info.instance_size = sizeof(Filter);
        const GType made =
            g_type_register_static(GST_TYPE_VIDEO_FILTER, "EffectEngineFilter", &info, G_TYPE_FLAG_ABSTRACT);
        constexpr GInterfaceInfo kPreset{};
        g_type_add_interface_static(made, GST_TYPE_PRESET, &kPreset);
        return made;
    }();
    return type;
}

// A kind lives as long as its type, which is to the end of the process.
GType makeType(const char* name, GClassInitFunc init, const FilterKind* kind)
{
    GTypeInfo info{};
    info.class_size = sizeof(FilterClass);
    info.class_init = init;
    info.class_data = kind;
    info.instance_size = sizeof(Filter);
    info.instance_init = initInstance;
    return g_type_register_static(baseType(), name, &info, GTypeFlags(0));
}

} // namespace

GType filterType(const EffectHostEffect& effect)
{
    const std::string name = typeName("EffectEngine", effect.name);
    if (const GType made = g_type_from_name(name.c_str()))
        return made;
    return makeType(name.c_str(), initEffect, new FilterKind{&effect, propertiesOf(effect)});
}

GType lookType()
{
    static const FilterKind kKind{nullptr, {}};
    static const GType type = makeType("EffectEngineLook", initLook, &kKind);
    return type;
}

} // namespace bridge
