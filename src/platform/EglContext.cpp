// Finds an EGL display that needs no display server.
#include "platform/EglContext.h"

#include <dlfcn.h>

#include <array>

namespace platform {

const EglContext* EglContext::get()
{
    static std::optional<EglContext> opened;
    if (!opened)
        opened = open(); // tried again after a failure: a driver may come up later
    return opened ? &*opened : nullptr;
}

std::optional<EglContext> EglContext::open()
{
    // Opened by name, so that the engine loads on machines without EGL too. Never closed, like the display.
    void* const library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return std::nullopt;
    bool complete = true;
    const auto load = [&](auto& function, const char* name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
        complete = complete && function;
    };
    EglContext egl;
    load(egl.getProcAddress_, "eglGetProcAddress");
    load(egl.initialize_, "eglInitialize");
    load(egl.bindApi_, "eglBindAPI");
    load(egl.chooseConfig_, "eglChooseConfig");
    load(egl.createContext_, "eglCreateContext");
    load(egl.destroyContext_, "eglDestroyContext");
    load(egl.createPbufferSurface_, "eglCreatePbufferSurface");
    load(egl.destroySurface_, "eglDestroySurface");
    load(egl.makeCurrent_, "eglMakeCurrent");
    load(egl.getCurrentContext_, "eglGetCurrentContext");
    load(egl.getCurrentSurface_, "eglGetCurrentSurface");
    load(egl.releaseThread_, "eglReleaseThread");
    if (!complete)
        return std::nullopt;

    if (egl.openDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY))
        return egl;
    const auto queryDevices =
        reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(egl.getProcAddress_("eglQueryDevicesEXT"));
    std::array<EGLDeviceEXT, 16> devices{};
    EGLint count = 0;
    if (queryDevices && queryDevices(EGLint(devices.size()), devices.data(), &count))
        for (EGLint i = 0; i < count; ++i)
            if (egl.openDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i]))
                return egl;
    return std::nullopt;
}

bool EglContext::openDisplay(EGLenum platform, void* device)
{
    const auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(getProcAddress_("eglGetPlatformDisplayEXT"));
    if (!getPlatformDisplay)
        return false;
    display_ = getPlatformDisplay(platform, device, nullptr);
    if (display_ == EGL_NO_DISPLAY || !initialize_(display_, nullptr, nullptr))
        return false;
    constexpr EGLint kWanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
        EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_ALPHA_SIZE, 8, EGL_DEPTH_SIZE, 24,
        EGL_STENCIL_SIZE, 8, EGL_NONE};
    EGLint count = 0;
    return chooseConfig_(display_, kWanted, &config_, 1, &count) && count == 1 && works();
}

/// Whether a context can be made and bound: a display may offer a configuration and yet refuse that.
bool EglContext::works() const
{
    const EGLContext context = create(EGL_NO_CONTEXT, nullptr);
    if (context == EGL_NO_CONTEXT)
        return false;
    const EGLSurface surface = createSurface(1, 1);
    const bool bound = surface != EGL_NO_SURFACE && makeCurrent(surface, context);
    if (bound)
        makeCurrent(EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (surface != EGL_NO_SURFACE)
        destroySurface(surface);
    destroy(context);
    return bound;
}

// Each thread has a current API (OpenGL or OpenGL ES), so every call that depends on it sets it first.

EGLContext EglContext::create(EGLContext shared, const EGLint* attributes) const
{
    bindApi_(EGL_OPENGL_API);
    return createContext_(display_, config_, shared, attributes);
}

void EglContext::destroy(EGLContext context) const { destroyContext_(display_, context); }

EGLSurface EglContext::createSurface(EGLint width, EGLint height) const
{
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    return createPbufferSurface_(display_, config_, size);
}

void EglContext::destroySurface(EGLSurface surface) const { destroySurface_(display_, surface); }

bool EglContext::makeCurrent(EGLSurface surface, EGLContext context) const
{
    bindApi_(EGL_OPENGL_API);
    return makeCurrent_(display_, surface, surface, context);
}

EGLContext EglContext::current() const
{
    bindApi_(EGL_OPENGL_API);
    return getCurrentContext_();
}

EGLSurface EglContext::currentSurface() const
{
    bindApi_(EGL_OPENGL_API);
    return getCurrentSurface_(EGL_DRAW);
}

void EglContext::releaseThread() const { releaseThread_(); }

EglContext::Function EglContext::function(const char* name) const { return getProcAddress_(name); }

} // namespace platform
