// The display server that OGRE's OpenGL plug-in believes in: a screen, and windows that are small surfaces.
#pragma once

#include "platform/EglContext.h"

#include <X11/Xlib.h>

#include <cstdlib>
#include <map>
#include <string_view>

namespace offscreenGl {

inline constexpr int kScreenWidth = 1024; // of the screen that the plug-in believes in
inline constexpr int kScreenHeight = 768;
inline constexpr int kSurfaceSide = 16; // nothing is ever shown in the window, so its pixels may be few
inline constexpr Window kRootWindow = 1;

struct OffscreenSurface {
    EGLSurface surface = EGL_NO_SURFACE;
    int x = 0, y = 0, width = 0, height = 0;
};

/// The state of the stand-ins. It has no lock: the plug-in has one user at a time, and that user one thread.
struct WindowSystem {
    Visual visual{};
    Screen screen{};
    Display* display = nullptr; ///< only the members that Xlib's macros read
    int openCount = 0;
    XErrorHandler errorHandler = nullptr;
    std::map<XID, OffscreenSurface> drawables;
    XID lastId = kRootWindow;

    WindowSystem();
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;

    /// A window or pbuffer; 0 when EGL refuses. The surface may be smaller than the window claims to be.
    XID create(int x, int y, int width, int height, int surfaceWidth, int surfaceHeight)
    {
        const EGLSurface surface = platform::EglContext::get()->createSurface(surfaceWidth, surfaceHeight);
        if (surface == EGL_NO_SURFACE)
            return 0;
        drawables[++lastId] = {surface, x, y, width, height};
        return lastId;
    }
    void destroy(XID id)
    {
        if (const auto found = drawables.find(id); found != drawables.end()) {
            platform::EglContext::get()->destroySurface(found->second.surface);
            drawables.erase(found);
        }
    }
    OffscreenSurface* find(XID id)
    {
        const auto found = drawables.find(id);
        return found == drawables.end() ? nullptr : &found->second;
    }
};

/// The process's only window system.
WindowSystem& windowSystem();

/// Zeroed memory that XFree can release.
template <class T> T* allocate(std::size_t count = 1)
{
    return static_cast<T*>(std::calloc(count, sizeof(T)));
}

/// The address of a stand-in, checked against the declaration of the function that it replaces.
template <class Declared> void* standIn(Declared* function) { return reinterpret_cast<void*>(function); }

/// Stand-ins by the names of the functions that they replace.
using StandIns = std::map<std::string_view, void*>;
void addXlibStandIns(StandIns& all);
void addGlxStandIns(StandIns& all);

} // namespace offscreenGl
