// Reading a frame with OpenGL, straight or through a pixel-pack buffer.
#define GL_GLEXT_PROTOTYPES
#include "EffectTovOgre/ReadBack.h"

#include "EffectTovOgre/HostPixels.h"
#include "EffectTovOgre/TovOgreBase.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreRenderSystem.h>
#include <OgreRenderTexture.h>
#include <OgreRoot.h>
#include <OgreTexture.h>

#include <cstring>

namespace KEXSDK {

namespace {

void forgetErrors()
{
    while (glGetError() != GL_NO_ERROR) { }
}

} // namespace

void ReadBack::prepare(u32 width, u32 height)
{
    if (packBuffer_)
        glDeleteBuffers(1, &packBuffer_);
    packBuffer_ = 0;
    if (mode_ != ReadBackMode::packBuffer)
        return;
    glGenBuffers(1, &packBuffer_);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, packBuffer_);
    glBufferData(GL_PIXEL_PACK_BUFFER, GLsizeiptr{width} * height * 4, nullptr, GL_STREAM_READ);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

void ReadBack::release()
{
    mode_ = ReadBackMode::direct;
    prepare(0, 0);
}

bool ReadBack::read(Ogre::Texture& texture, u8* pixels) const
{
    // Another effect may have been drawn since.
    Ogre::Root::getSingleton().getRenderSystem()->_setRenderTarget(texture.getBuffer()->getRenderTarget());
    forgetErrors();
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    if (glGetError() != GL_NO_ERROR)
        return false;
    const auto width = GLsizei(texture.getWidth());
    glPixelStorei(GL_PACK_ROW_LENGTH, width);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (packBuffer_)
        readThroughBuffer(texture, pixels);
    else
        hostPixels::read(pixels, texture.getWidth(), texture.getHeight());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    return true;
}

void ReadBack::readThroughBuffer(Ogre::Texture& texture, u8* pixels) const
{
    const u32 width = texture.getWidth();
    const u32 height = texture.getHeight();
    glBindBuffer(GL_PIXEL_PACK_BUFFER, packBuffer_);
    glReadPixels(0, 0, GLsizei(width), GLsizei(height), GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    const void* mapped = nullptr;
    GLenum problem = glGetError();
    if (problem == GL_NO_ERROR) {
        mapped = glMapBuffer(GL_PIXEL_PACK_BUFFER, GL_READ_ONLY);
        problem = glGetError();
        if (!mapped || problem != GL_NO_ERROR)
            TovOgreBase::log("glMapBufferRangeEXT failed: " + std::to_string(problem));
    }
    const bool arrived = mapped && problem == GL_NO_ERROR;
    if (arrived)
        std::memcpy(pixels, mapped, std::size_t{width} * height * 4);
    if (mapped)
        glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    if (!arrived)
        texture.getBuffer()->blitToMemory(Ogre::PixelBox(width, height, 1, Ogre::PF_A8R8G8B8, pixels));
}

} // namespace KEXSDK
