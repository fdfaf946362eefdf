// Desktop OpenGL through EGL without a display server.
#pragma once

// EGL's headers would otherwise bring Xlib's macros along.
#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <optional>

namespace platform {

/// EGL as far as drawing off-screen needs it: one display, one configuration (8 bits per colour and alpha, 24
/// bits depth, 8 bits stencil). It stays initialised for the life of the process, because another user of EGL
/// may hold the same display, and terminating it would end his contexts as well.
class EglContext {
public:
    /// The process's only object; null without an EGL library that gives desktop OpenGL off-screen.
    static const EglContext* get();

    /// A context; with attributes as EGL takes them, or null for what the driver likes best.
    EGLContext create(EGLContext shared, const EGLint* attributes) const;
    void destroy(EGLContext context) const;
    EGLSurface createSurface(EGLint width, EGLint height) const;
    void destroySurface(EGLSurface surface) const;

    /// Binds a context and a surface to the calling thread; both null for none.
    bool makeCurrent(EGLSurface surface, EGLContext context) const;
    EGLContext current() const;
    EGLSurface currentSurface() const;
    /// Frees what EGL holds for the calling thread.
    void releaseThread() const;

    using Function = void (*)();
    Function function(const char* name) const;

private:
    EglContext() = default;
    static std::optional<EglContext> open();
    bool openDisplay(EGLenum platform, void* device);
    bool works() const;

    decltype(&eglGetProcAddress) getProcAddress_ = nullptr;
    decltype(&eglInitialize) initialize_ = nullptr;
    decltype(&eglBindAPI) bindApi_ = nullptr;
    decltype(&eglChooseConfig) chooseConfig_ = nullptr;
    decltype(&eglCreateContext) createContext_ = nullptr;
    decltype(&eglDestroyContext) destroyContext_ = nullptr;
    decltype(&eglCreatePbufferSurface) createPbufferSurface_ = nullptr;
    decltype(&eglDestroySurface) destroySurface_ = nullptr;
    decltype(&eglMakeCurrent) makeCurrent_ = nullptr;
    decltype(&eglGetCurrentContext) getCurrentContext_ = nullptr;
    decltype(&eglGetCurrentSurface) getCurrentSurface_ = nullptr;
    decltype(&eglReleaseThread) releaseThread_ = nullptr;
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLConfig config_ = nullptr;
};

} // namespace platform
