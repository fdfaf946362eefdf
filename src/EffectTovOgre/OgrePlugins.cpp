// Loading of plug-ins by their full path; OGRE does not look for them by itself.
#include "EffectTovOgre/OgrePlugins.h"

#include "EffectTovOgre/TovOgreBase.h"
#include "platform/OffscreenGl.h"

#include <OgreRoot.h>

#include <cstdlib>

namespace {

#define EFFECTENGINE_TEXT_OF(value) #value
#define EFFECTENGINE_TEXT(value) EFFECTENGINE_TEXT_OF(value)

/// The suffix that OGRE appends to the names of libraries, for a plug-in that is opened before OGRE does.
constexpr const char* kVersionSuffix = ".so." EFFECTENGINE_TEXT(OGRE_VERSION_MAJOR) "." EFFECTENGINE_TEXT(
    OGRE_VERSION_MINOR) "." EFFECTENGINE_TEXT(OGRE_VERSION_PATCH);

#undef EFFECTENGINE_TEXT
#undef EFFECTENGINE_TEXT_OF

std::string pathOf(const std::string& file) { return EFFECTENGINE_OGRE_PLUGIN_DIR "/" + file; }

} // namespace

namespace ogrePlugins {

bool load(Ogre::Root& root, const std::string& file)
{
    try {
        root.loadPlugin(pathOf(file));
        return true;
    } catch (const std::exception& error) {
        KEXSDK::TovOgreBase::log(error.what());
        return false;
    }
}

bool loadRenderSystem(Ogre::Root& root)
{
    const std::string file = "RenderSystem_GL";
    if (!offscreenGl::enable(pathOf(file) + kVersionSuffix)) {
        // The display is the second choice: Xlib ends the whole process when it goes away.
        offscreenGl::disable();
        const char* const display = std::getenv("DISPLAY");
        if (!display || !*display) {
            KEXSDK::TovOgreBase::log(
                "No OpenGL: drawing off-screen is not possible here, and there is no display.");
            return false;
        }
    }
    return load(root, file);
}

} // namespace ogrePlugins
