// The plug-in: registers an element for each effect of the catalogue, without starting the engine.
#include "gstreamer/filterElements.h"
#include "gstreamer/transitionElements.h"

#include <gst/gst.h>

#include <string>
#include <string_view>

GST_DEBUG_CATEGORY(effectengine_debug);
#define GST_CAT_DEFAULT effectengine_debug

namespace bridge {

namespace {

// Scans again when the catalogue, the pack or a user's descriptors change.
void dependOnCatalogue(GstPlugin* plugin)
{
    gst_plugin_add_dependency_simple(
        plugin, nullptr, EFFECTENGINE_CATALOGUE_DIR, "effects.json", GST_PLUGIN_DEPENDENCY_FLAG_NONE);
    gst_plugin_add_dependency_simple(plugin,
        "EFFECTENGINE_RESOURCES/Shader,EFFECTENGINE_RESOURCES/Shader/lookup,EFFECTENGINE_RESOURCES/"
        "Transitions",
        EFFECTENGINE_PACK_DIR "/Shader," EFFECTENGINE_PACK_DIR "/Shader/lookup," EFFECTENGINE_PACK_DIR
                              "/Transitions",
        ".json",
        GstPluginDependencyFlags(GST_PLUGIN_DEPENDENCY_FLAG_PATHS_ARE_DEFAULT_ONLY
            | GST_PLUGIN_DEPENDENCY_FLAG_FILE_NAME_IS_SUFFIX));
}

bool registerElement(GstPlugin* plugin, const EffectHostEffect& effect)
{
    const bool isTransition = std::string_view(effect.family) == "transition";
    const std::string name = (isTransition ? "ee-transition-" : "ee-") + std::string(effect.name);
    if (effect.inputs > 2)
        return true; // there are none yet
    return gst_element_register(plugin, name.c_str(), GST_RANK_NONE,
        effect.inputs == 2 ? transitionType(effect) : filterType(effect));
}

gboolean init(GstPlugin* plugin)
{
    GST_DEBUG_CATEGORY_INIT(effectengine_debug, "effectengine", 0, "EffectEngine");
    dependOnCatalogue(plugin);
    const EffectHostEffect* const* effects = nullptr;
    std::size_t count = 0;
    if (EffectHostOpen(nullptr, nullptr) != EFFECTHOST_OK
        || EffectHostGetEffects(&effects, &count) != EFFECTHOST_OK) {
        GST_WARNING("no effects: %s", EffectHostLastError());
        return FALSE;
    }
    for (std::size_t i = 0; i < count; ++i)
        if (!registerElement(plugin, *effects[i]))
            return FALSE;
    return gst_element_register(plugin, "ee-look", GST_RANK_NONE, lookType());
}

} // namespace

} // namespace bridge

#define PACKAGE "effectengine"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, effectengine,
    "Image and video effects: filters, looks and transitions", bridge::init, EFFECTENGINE_VERSION, "MIT/X11",
    "EffectEngine", "https://effectengine.example")
