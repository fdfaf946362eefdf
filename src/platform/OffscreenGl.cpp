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

/// The plug-in as this process holds it, never closed once open: the patch is part of it.
struct Plugin {
    std::string file;
    std::unique_ptr<ImportPatch> imports;
};

/// Null when the plug-in cannot be opened or has a user of its own.
const ImportPatch* openPlugin(const std::string& file)
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
    plugin->imports = std::make_unique<ImportPatch>(handle, isWindowSystemCall, [&](std::string_view name) {
        const auto found = standIns.find(name);
        return found == standIns.end() ? nullptr : found->second;
    });
    return plugin->imports.get();
}

bool allowedForTests = true;
const ImportPatch* inForce = nullptr;

} // namespace

bool enable(const std::string& pluginFile)
{
    // Opened in any case: whoever goes on with X holds the same copy then, and it can be led here later.
    const ImportPatch* const imports = openPlugin(pluginFile);
    if (!allowedForTests || !imports || !imports->complete() || !EglContext::get() || !imports->apply())
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
