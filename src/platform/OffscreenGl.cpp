// Opens OGRE's OpenGL plug-in and leads its window-system calls to the stand-ins or back.
#include "platform/OffscreenGl.h"

#include "platform/FakeWindowSystem.h"
#include "platform/ImportPatch.h"

#include <dlfcn.h>

#include <memory>

namespace offscreenGl {

namespace {

bool isWindowSystemCall(std::string_view name)
{
    return name.starts_with("glX") || (name.size() > 1 && name[0] == 'X' && name[1] >= 'A' && name[1] <= 'Z');
}

/// The plug-in with the patch of its imports. It stays open for ever, because the patch points into it.
struct Plugin {
    std::string file;
    std::unique_ptr<platform::ImportPatch> imports;
};

/// The patch of the opened plug-in; null when it cannot be opened, or when the host draws with it.
const platform::ImportPatch* openPlugin(const std::string& file)
{
    static Plugin* const plugin = new Plugin;
    if (plugin->imports)
        return plugin->file == file ? plugin->imports.get() : nullptr;
    if (void* const foreign = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
        dlclose(foreign);
        return nullptr; // the host draws with it
    }
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        return nullptr;
    StandIns standIns;
    addXlibStandIns(standIns);
    addGlxStandIns(standIns);
    plugin->file = file;
    plugin->imports =
        std::make_unique<platform::ImportPatch>(handle, isWindowSystemCall, [&](std::string_view name) {
            const auto found = standIns.find(name);
            return found == standIns.end() ? nullptr : found->second;
        });
    return plugin->imports.get();
}

bool allowedForTests = true;
const platform::ImportPatch* inForce = nullptr;

} // namespace

bool enable(const std::string& pluginFile)
{
    // Opened first: OGRE then gets this copy even if its calls go on to X, and they can be led to EGL later.
    const platform::ImportPatch* const imports = openPlugin(pluginFile);
    if (!allowedForTests || !imports || !imports->complete() || !platform::EglContext::get()
        || !imports->apply())
        return false;
    inForce = imports;
    return true;
}

void disable()
{
    if (inForce && inForce->undo())
        inForce = nullptr;
}

void setAllowed(bool allowed) { allowedForTests = allowed; }

} // namespace offscreenGl
