// Uploads in the order of the driver, the samplers' exchange of red and blue, and its counterpart for frames.
#define GL_GLEXT_PROTOTYPES
#include "EffectTovOgre/HostPixels.h"

#include "pixels/rows.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <OgreTexture.h>

namespace KEXSDK::hostPixels {

namespace {

/// While it lives, a texture is bound to the active unit. Then the one before is again, because the rendering
/// library believes that bindings never change.
class BoundTexture {
public:
    explicit BoundTexture(Ogre::Texture& texture)
    {
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &before_);
        GLuint name = 0;
        texture.getCustomAttribute("GLID", &name);
        glBindTexture(GL_TEXTURE_2D, name);
    }
    BoundTexture(const BoundTexture&) = delete;
    BoundTexture& operator=(const BoundTexture&) = delete;
    ~BoundTexture() { glBindTexture(GL_TEXTURE_2D, GLuint(before_)); }

private:
    GLint before_ = 0;
};

/// Whether the driver keeps 8 bits a colour with red first, and samplers can exchange colours.
bool keepsRedFirst()
{
    GLint major = 0;
    GLint minor = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    if (major * 10 + minor < 43)
        return false;
    GLint format = 0;
    glGetInternalformativ(GL_TEXTURE_2D, GL_RGBA8, GL_TEXTURE_IMAGE_FORMAT, 1, &format);
    return format == GL_RGBA;
}

void set(GLenum parameter, GLint value)
{
    GLint present = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, parameter, &present);
    if (present != value) // the driver would prepare the texture anew
        glTexParameteri(GL_TEXTURE_2D, parameter, value);
}

} // namespace

bool upload(Ogre::Texture& texture, const u8* pixels, u32 width, u32 height)
{
    if (texture.getTextureType() != Ogre::TEX_TYPE_2D || texture.getFormat() != Ogre::PF_A8R8G8B8
        || texture.getWidth() != width || texture.getHeight() != height || !keepsRedFirst())
        return false;
    const BoundTexture bound(texture);
    set(GL_TEXTURE_SWIZZLE_R, GL_BLUE);
    set(GL_TEXTURE_SWIZZLE_B, GL_RED);
    glTexSubImage2D(
        GL_TEXTURE_2D, 0, 0, 0, GLsizei(width), GLsizei(height), GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    return true;
}

void showAsStored(Ogre::Texture& texture)
{
    if (texture.getTextureType() != Ogre::TEX_TYPE_2D || !keepsRedFirst())
        return;
    const BoundTexture bound(texture);
    set(GL_TEXTURE_SWIZZLE_R, GL_RED);
    set(GL_TEXTURE_SWIZZLE_B, GL_BLUE);
}

void read(u8* frame, u32 width, u32 height)
{
    GLint format = GL_BGRA;
    GLint type = GL_UNSIGNED_BYTE;
    glGetIntegerv(GL_IMPLEMENTATION_COLOR_READ_FORMAT, &format);
    glGetIntegerv(GL_IMPLEMENTATION_COLOR_READ_TYPE, &type);
    const bool redFirst = format == GL_RGBA && type == GL_UNSIGNED_BYTE;
    glReadPixels(
        0, 0, GLsizei(width), GLsizei(height), redFirst ? GL_RGBA : GL_BGRA, GL_UNSIGNED_BYTE, frame);
    if (!redFirst)
        return;
    const pixels::View all{frame, pixels::Extent{int(width), int(height)}};
    pixels::rows::map(all, all, [](pixels::Bgra p) { return pixels::Bgra{p.r, p.g, p.b, p.a}; });
}

} // namespace KEXSDK::hostPixels
