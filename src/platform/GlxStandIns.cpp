// Stand-ins for GLX functions: one configuration, with contexts and surfaces of EGL.
#include "platform/FakeWindowSystem.h"

#include <GL/glx.h>
#include <GL/glxext.h>
#include <X11/Xutil.h>

namespace offscreenGl {

namespace {

GLXFBConfig onlyConfig() { return reinterpret_cast<GLXFBConfig>(&windowSystem().visual); }

GLXFBConfig* configList(int* count)
{
    auto* const list = allocate<GLXFBConfig>();
    if (list)
        *list = onlyConfig();
    *count = list ? 1 : 0;
    return list;
}

int configAttribute(int attribute, int* value)
{
    switch (attribute) {
    case GLX_FBCONFIG_ID:
    case GLX_VISUAL_ID:
    case GLX_DOUBLEBUFFER:
    case GLX_X_RENDERABLE:
        *value = 1;
        break;
    case GLX_RED_SIZE:
    case GLX_GREEN_SIZE:
    case GLX_BLUE_SIZE:
    case GLX_ALPHA_SIZE:
    case GLX_STENCIL_SIZE:
        *value = 8;
        break;
    case GLX_DEPTH_SIZE:
        *value = 24;
        break;
    case GLX_BUFFER_SIZE:
        *value = 32;
        break;
    case GLX_RENDER_TYPE:
        *value = GLX_RGBA_BIT;
        break;
    case GLX_DRAWABLE_TYPE:
        *value = GLX_WINDOW_BIT | GLX_PBUFFER_BIT;
        break;
    case GLX_CONFIG_CAVEAT:
        *value = GLX_NONE;
        break;
    case GLX_X_VISUAL_TYPE:
        *value = GLX_TRUE_COLOR;
        break;
    case GLX_MAX_PBUFFER_WIDTH:
    case GLX_MAX_PBUFFER_HEIGHT:
        *value = 4096;
        break;
    default: // multisampling, accumulation, levels, sRGB: none
        *value = 0;
        break;
    }
    return Success;
}

GLXContext createContextAttributes(
    Display*, GLXFBConfig, GLXContext shared, Bool /*direct*/, const int* attributes)
{
    EGLint wanted[16];
    int used = 0;
    for (; attributes && *attributes && used + 2 < 16; attributes += 2)
        switch (attributes[0]) {
        case GLX_CONTEXT_MAJOR_VERSION_ARB:
            wanted[used++] = EGL_CONTEXT_MAJOR_VERSION;
            wanted[used++] = attributes[1];
            break;
        case GLX_CONTEXT_MINOR_VERSION_ARB:
            wanted[used++] = EGL_CONTEXT_MINOR_VERSION;
            wanted[used++] = attributes[1];
            break;
        case GLX_CONTEXT_PROFILE_MASK_ARB: // the bits mean the same
            wanted[used++] = EGL_CONTEXT_OPENGL_PROFILE_MASK;
            wanted[used++] = attributes[1];
            break;
        default:
            break;
        }
    wanted[used] = EGL_NONE;
    return static_cast<GLXContext>(platform::EglContext::get()->create(shared, wanted));
}

Bool makeCurrent(Display*, GLXDrawable drawable, GLXContext context)
{
    const OffscreenSurface* const target = windowSystem().find(drawable);
    return context && target ? platform::EglContext::get()->makeCurrent(target->surface, context)
                             : platform::EglContext::get()->makeCurrent(EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

XVisualInfo* visualInfo()
{
    auto* const info = allocate<XVisualInfo>();
    if (info) {
        info->visual = &windowSystem().visual;
        info->visualid = info->visual->visualid;
        info->depth = 24;
        info->c_class = TrueColor;
        info->colormap_size = 256;
        info->bits_per_rgb = 8;
    }
    return info;
}

GLXPbuffer createPbuffer(Display*, GLXFBConfig, const int* attributes)
{
    int width = 1, height = 1;
    for (; attributes && *attributes; attributes += 2) {
        if (attributes[0] == GLX_PBUFFER_WIDTH)
            width = attributes[1];
        if (attributes[0] == GLX_PBUFFER_HEIGHT)
            height = attributes[1];
    }
    return windowSystem().create(0, 0, width, height, width, height);
}

platform::EglContext::Function procAddress(const GLubyte* name)
{
    const std::string_view wanted = reinterpret_cast<const char*>(name);
    const auto as = [](auto* function) { return reinterpret_cast<platform::EglContext::Function>(function); };
    if (wanted == "glXCreateContextAttribsARB")
        return as(&createContextAttributes);
    if (wanted == "glXSwapIntervalEXT")
        return as(+[](Display*, GLXDrawable, int) {});
    if (wanted == "glXSwapIntervalMESA")
        return as(+[](unsigned) { return 0; });
    if (wanted == "glXSwapIntervalSGI")
        return as(+[](int) { return 0; });
    return wanted.starts_with("glX") ? nullptr : platform::EglContext::get()->function(wanted.data());
}

} // namespace

void addGlxStandIns(StandIns& all)
{
    all["glXQueryVersion"] = standIn<decltype(glXQueryVersion)>([](Display*, int* major, int* minor) -> Bool {
        *major = 1;
        *minor = 4;
        return True;
    });
    all["glXGetClientString"] = standIn<decltype(glXGetClientString)>(
        [](Display*, int name) { return name == GLX_VERSION ? "1.4" : ""; });
    all["glXGetProcAddressARB"] = standIn<decltype(glXGetProcAddressARB)>(procAddress);
    all["glXChooseFBConfig"] = standIn<decltype(glXChooseFBConfig)>(
        [](Display*, int, const int*, int* count) { return configList(count); });
    all["glXGetFBConfigs"] =
        standIn<decltype(glXGetFBConfigs)>([](Display*, int, int* count) { return configList(count); });
    all["glXGetFBConfigAttrib"] = standIn<decltype(glXGetFBConfigAttrib)>(
        [](Display*, GLXFBConfig, int attribute, int* value) { return configAttribute(attribute, value); });
    all["glXGetVisualFromFBConfig"] =
        standIn<decltype(glXGetVisualFromFBConfig)>([](Display*, GLXFBConfig) { return visualInfo(); });
    all["glXCreateNewContext"] =
        standIn<decltype(glXCreateNewContext)>([](Display*, GLXFBConfig, int, GLXContext shared, Bool) {
            return static_cast<GLXContext>(platform::EglContext::get()->create(shared, nullptr));
        });
    all["glXDestroyContext"] = standIn<decltype(glXDestroyContext)>(
        [](Display*, GLXContext context) { platform::EglContext::get()->destroy(context); });
    all["glXMakeCurrent"] = standIn<decltype(glXMakeCurrent)>(makeCurrent);
    all["glXGetCurrentContext"] = standIn<decltype(glXGetCurrentContext)>(
        [] { return static_cast<GLXContext>(platform::EglContext::get()->current()); });
    all["glXGetCurrentDisplay"] = standIn<decltype(glXGetCurrentDisplay)>(
        [] { return platform::EglContext::get()->current() ? windowSystem().display : nullptr; });
    all["glXGetCurrentDrawable"] = standIn<decltype(glXGetCurrentDrawable)>([]() -> GLXDrawable {
        const EGLSurface surface = platform::EglContext::get()->currentSurface();
        for (const auto& [id, drawable] : windowSystem().drawables)
            if (drawable.surface == surface)
                return id;
        return 0;
    });
    all["glXCreatePbuffer"] = standIn<decltype(glXCreatePbuffer)>(createPbuffer);
    all["glXDestroyPbuffer"] = standIn<decltype(glXDestroyPbuffer)>(
        [](Display*, GLXPbuffer pbuffer) { windowSystem().destroy(pbuffer); });
    all["glXQueryContext"] = standIn<decltype(glXQueryContext)>(
        [](Display*, GLXContext, int attribute, int* value) { return configAttribute(attribute, value); });
    all["glXQueryDrawable"] = standIn<decltype(glXQueryDrawable)>(
        [](Display*, GLXDrawable drawable, int attribute, unsigned* value) {
            const OffscreenSurface* const found = windowSystem().find(drawable);
            *value = attribute == GLX_FBCONFIG_ID  ? 1
                : found && attribute == GLX_WIDTH  ? unsigned(found->width)
                : found && attribute == GLX_HEIGHT ? unsigned(found->height)
                                                   : 0;
        });
    all["glXSwapBuffers"] = standIn<decltype(glXSwapBuffers)>([](Display*, GLXDrawable) {});
}

} // namespace offscreenGl
