// Stand-ins for Xlib and XRandR: a display that always opens, is never shown and has one screen mode.
#include "core/Types.h"
#include "platform/FakeWindowSystem.h"

#include <X11/Xutil.h>

#include <cstring>
#include <type_traits>
#include <utility>

namespace offscreenGl {

namespace {

int closeDisplay(Display*)
{
    WindowSystem& system = windowSystem();
    if (--system.openCount > 0)
        return 0;
    platform::EglContext::get()->makeCurrent(EGL_NO_SURFACE, EGL_NO_CONTEXT);
    while (!system.drawables.empty())
        system.destroy(system.drawables.begin()->first);
    platform::EglContext::get()->releaseThread();
    return 0;
}

Status getWindowAttributes(Display*, Window window, XWindowAttributes* attributes)
{
    WindowSystem& system = windowSystem();
    std::memset(attributes, 0, sizeof *attributes);
    attributes->width = kScreenWidth;
    attributes->height = kScreenHeight;
    if (const OffscreenSurface* const found = system.find(window)) {
        attributes->x = found->x;
        attributes->y = found->y;
        attributes->width = found->width;
        attributes->height = found->height;
    }
    attributes->depth = 24;
    attributes->visual = &system.visual;
    attributes->root = kRootWindow;
    attributes->c_class = InputOutput;
    attributes->map_state = IsViewable;
    attributes->screen = &system.screen;
    return 1;
}

XErrorHandler setErrorHandler(XErrorHandler handler)
{
    return std::exchange(windowSystem().errorHandler, handler);
}

} // namespace

WindowSystem::WindowSystem()
{
    visual.visualid = 1;
    visual.c_class = TrueColor;
    visual.bits_per_rgb = 8;
    screen.root = kRootWindow;
    screen.width = kScreenWidth;
    screen.height = kScreenHeight;
    screen.root_depth = 24;
    screen.root_visual = &visual;
    static std::remove_pointer_t<_XPrivDisplay> fields{};
    static char name[] = "";
    fields.display_name = name;
    fields.nscreens = 1;
    fields.screens = &screen;
    display = screen.display = reinterpret_cast<Display*>(&fields);
}

WindowSystem& windowSystem()
{
    static WindowSystem* const only = new WindowSystem; // outlives whatever still draws at exit
    return *only;
}

void addXlibStandIns(StandIns& all)
{
    // The display, without extensions.
    all["XOpenDisplay"] = standIn<decltype(XOpenDisplay)>([](const char*) {
        ++windowSystem().openCount;
        return windowSystem().display;
    });
    all["XCloseDisplay"] = standIn<decltype(XCloseDisplay)>(closeDisplay);
    all["XDisplayName"] =
        standIn<decltype(XDisplayName)>([](const char*) { return DisplayString(windowSystem().display); });
    all["XQueryExtension"] = standIn<decltype(XQueryExtension)>(
        [](Display*, const char*, int*, int*, int*) -> Bool { return False; });
    all["XInternAtom"] =
        standIn<decltype(XInternAtom)>([](Display*, const char*, Bool) -> Atom { return 1; });
    all["XFlush"] = standIn<decltype(XFlush)>([](Display*) { return 1; });
    all["XSync"] = standIn<decltype(XSync)>([](Display*, Bool) { return 1; });
    all["XFree"] = standIn<decltype(XFree)>([](void* memory) {
        std::free(memory);
        return 1;
    });
    all["XSetErrorHandler"] = standIn<decltype(XSetErrorHandler)>(setErrorHandler);
    all["XGetErrorText"] = standIn<decltype(XGetErrorText)>([](Display*, int, char* text, int size) {
        if (size > 0)
            *text = '\0';
        return 0;
    });
    all["XVisualIDFromVisual"] =
        standIn<decltype(XVisualIDFromVisual)>([](Visual* visual) { return visual->visualid; });
    all["XCreateColormap"] =
        standIn<decltype(XCreateColormap)>([](Display*, Window, Visual*, int) -> Colormap { return 1; });

    // Screen modes: none to choose from.
    all["XRRGetScreenInfo"] =
        standIn<void*(Display*, Window)>([](Display*, Window) -> void* { return nullptr; });
    all["XRRFreeScreenConfigInfo"] = standIn<void(void*)>([](void*) {});
    all["XRRConfigCurrentConfiguration"] =
        standIn<u16(void*, u16*)>([](void*, u16* rotation) -> u16 { return *rotation = 0; });
    all["XRRConfigCurrentRate"] = standIn<short(void*)>([](void*) -> short { return 0; });
    all["XRRConfigSizes"] = standIn<void*(void*, int*)>([](void*, int* count) -> void* {
        *count = 0;
        return nullptr;
    });
    all["XRRConfigRates"] = standIn<short*(void*, int, int*)>([](void*, int, int* count) -> short* {
        *count = 0;
        return nullptr;
    });
    all["XRRSetScreenConfigAndRate"] = standIn<Status(Display*, void*, Window, int, u16, short, Time)>(
        [](Display*, void*, Window, int, u16, short, Time) -> Status { return 0; });

    // Windows: a size to remember and a small surface.
    all["XCreateWindow"] = standIn<decltype(XCreateWindow)>(
        [](Display*, Window, int x, int y, unsigned width, unsigned height, unsigned, int, unsigned, Visual*,
            unsigned long, XSetWindowAttributes*) -> Window {
            return windowSystem().create(x, y, int(width), int(height), kSurfaceSide, kSurfaceSide);
        });
    all["XDestroyWindow"] = standIn<decltype(XDestroyWindow)>([](Display*, Window window) {
        windowSystem().destroy(window);
        return 1;
    });
    all["XMoveWindow"] = standIn<decltype(XMoveWindow)>([](Display*, Window window, int x, int y) {
        if (OffscreenSurface* const found = windowSystem().find(window)) {
            found->x = x;
            found->y = y;
        }
        return 1;
    });
    all["XResizeWindow"] =
        standIn<decltype(XResizeWindow)>([](Display*, Window window, unsigned width, unsigned height) {
            if (OffscreenSurface* const found = windowSystem().find(window)) {
                found->width = int(width);
                found->height = int(height);
            }
            return 1;
        });
    all["XGetWindowAttributes"] = standIn<decltype(XGetWindowAttributes)>(getWindowAttributes);
    all["XQueryTree"] = standIn<decltype(XQueryTree)>(
        [](Display*, Window, Window* root, Window* parent, Window** children, unsigned* count) -> Status {
            *root = *parent = kRootWindow;
            *children = nullptr;
            *count = 0;
            return 1;
        });
    all["XMapWindow"] = standIn<decltype(XMapWindow)>([](Display*, Window) { return 1; });
    all["XUnmapWindow"] = standIn<decltype(XUnmapWindow)>([](Display*, Window) { return 1; });
    all["XSendEvent"] =
        standIn<decltype(XSendEvent)>([](Display*, Window, Bool, long, XEvent*) -> Status { return 1; });
    all["XAllocSizeHints"] = standIn<decltype(XAllocSizeHints)>([] { return allocate<XSizeHints>(); });
    all["XAllocWMHints"] = standIn<decltype(XAllocWMHints)>([] { return allocate<XWMHints>(); });
    all["XStringListToTextProperty"] =
        standIn<decltype(XStringListToTextProperty)>([](char**, int, XTextProperty* property) -> Status {
            *property = {allocate<unsigned char>(), 0, 8, 0};
            return 1;
        });
    all["XSetWMProperties"] =
        standIn<decltype(XSetWMProperties)>([](Display*, Window, XTextProperty*, XTextProperty*, char**, int,
                                                XSizeHints*, XWMHints*, XClassHint*) {});
    all["XSetWMProtocols"] =
        standIn<decltype(XSetWMProtocols)>([](Display*, Window, Atom*, int) -> Status { return 1; });
}

} // namespace offscreenGl
