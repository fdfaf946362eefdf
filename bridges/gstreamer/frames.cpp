// Descriptions of frames, and the pool of those with the bottom row first: elements of ours that follow each
// other agree on it, so that a chain turns the rows once at its start and once at its end.
#include "gstreamer/frames.h"

namespace bridge {

namespace {

constexpr const char* kLayout = "effectengine-layout";
constexpr const char* kBottomUp = "bottom-up";

struct BottomUpPool {
    GstBufferPool parent;
    GstVideoInfo info;
};

struct BottomUpPoolClass {
    GstBufferPoolClass parent;
};

G_DEFINE_TYPE(BottomUpPool, effectengine_bottom_up_pool, GST_TYPE_BUFFER_POOL)

BottomUpPool* poolOf(GstBufferPool* pool) { return reinterpret_cast<BottomUpPool*>(pool); }

const gchar** optionsOf(GstBufferPool*)
{
    static const gchar* kOptions[] = {GST_BUFFER_POOL_OPTION_VIDEO_META, nullptr};
    return kOptions;
}

gboolean setConfig(GstBufferPool* pool, GstStructure* config)
{
    GstCaps* caps = nullptr;
    guint least = 0;
    guint most = 0;
    GstVideoInfo& info = poolOf(pool)->info;
    if (!gst_buffer_pool_config_get_params(config, &caps, nullptr, &least, &most) || !caps
        || !gst_video_info_from_caps(&info, caps))
        return FALSE;
    gst_buffer_pool_config_set_params(config, caps, guint(info.size), least, most);
    return GST_BUFFER_POOL_CLASS(effectengine_bottom_up_pool_parent_class)->set_config(pool, config);
}

GstFlowReturn allocate(GstBufferPool* pool, GstBuffer** buffer, GstBufferPoolAcquireParams*)
{
    const GstVideoInfo& info = poolOf(pool)->info;
    const int width = GST_VIDEO_INFO_WIDTH(&info);
    const int height = GST_VIDEO_INFO_HEIGHT(&info);
    const gint rowBytes = width * 4;
    GstBuffer* const made = gst_buffer_new_allocate(nullptr, gsize(rowBytes) * gsize(height), nullptr);
    if (!made)
        return GST_FLOW_ERROR;
    gsize offsets[GST_VIDEO_MAX_PLANES] = {gsize(rowBytes) * gsize(height - 1)};
    gint strides[GST_VIDEO_MAX_PLANES] = {-rowBytes};
    gst_buffer_add_video_meta_full(made, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info),
        guint(width), guint(height), 1, offsets, strides);
    *buffer = made;
    return GST_FLOW_OK;
}

void effectengine_bottom_up_pool_init(BottomUpPool*) { }

void effectengine_bottom_up_pool_class_init(BottomUpPoolClass* type)
{
    auto* const pool = reinterpret_cast<GstBufferPoolClass*>(type);
    pool->get_options = optionsOf;
    pool->set_config = setConfig;
    pool->alloc_buffer = allocate;
}

std::uint32_t formatOf(GstVideoFormat format)
{
    switch (format) {
    case GST_VIDEO_FORMAT_RGBA:
        return EFFECTHOST_RGBA;
    case GST_VIDEO_FORMAT_BGRx:
        return EFFECTHOST_BGRX;
    case GST_VIDEO_FORMAT_RGBx:
        return EFFECTHOST_RGBX;
    default:
        return EFFECTHOST_BGRA;
    }
}

} // namespace

std::optional<std::string> faultOfSize(const GstCaps* caps)
{
    gint width = 0;
    gint height = 0;
    if (gst_caps_is_empty(caps) || gst_caps_is_any(caps))
        return std::nullopt;
    const GstStructure* const structure = gst_caps_get_structure(caps, 0);
    if (!gst_structure_get_int(structure, "width", &width)
        || !gst_structure_get_int(structure, "height", &height)
        || (width <= kLargestSide && height <= kLargestSide))
        return std::nullopt;
    return "frames of " + std::to_string(width) + " x " + std::to_string(height)
        + " are too large: sides end at " + std::to_string(kLargestSide);
}

EffectHostPicture pictureOf(const GstVideoFrame& frame)
{
    EffectHostPicture picture{};
    picture.pixels = GST_VIDEO_FRAME_PLANE_DATA(&frame, 0);
    picture.stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    picture.width = GST_VIDEO_FRAME_WIDTH(&frame);
    picture.height = GST_VIDEO_FRAME_HEIGHT(&frame);
    picture.format = formatOf(GST_VIDEO_FRAME_FORMAT(&frame));
    return picture;
}

void offerBottomUp(GstQuery* query)
{
    GstStructure* const layout = gst_structure_new(kLayout, kBottomUp, G_TYPE_BOOLEAN, TRUE, nullptr);
    guint index = 0;
    if (gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, &index))
        gst_query_remove_nth_allocation_meta(query, index);
    gst_query_add_allocation_meta(query, GST_VIDEO_META_API_TYPE, layout);
    gst_structure_free(layout);
}

bool takesBottomUp(GstQuery* query)
{
    guint index = 0;
    if (!gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, &index))
        return false;
    const GstStructure* layout = nullptr;
    gst_query_parse_nth_allocation_meta(query, index, &layout);
    gboolean bottomUp = FALSE;
    return layout && gst_structure_has_name(layout, kLayout)
        && gst_structure_get_boolean(layout, kBottomUp, &bottomUp) && bottomUp;
}

GstBufferPool* makeBottomUpPool()
{
    auto* const pool =
        static_cast<GstBufferPool*>(g_object_new(effectengine_bottom_up_pool_get_type(), nullptr));
    gst_object_ref_sink(pool);
    return pool;
}

} // namespace bridge
