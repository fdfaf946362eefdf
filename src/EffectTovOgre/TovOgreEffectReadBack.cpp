// From the render texture into memory.
#define GL_GLEXT_PROTOTYPES
#include "EffectTovOgre/PixelFormats.h"
#include "EffectTovOgre/TovOgreEffectBase.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreRenderSystem.h>
#include <OgreRenderTexture.h>
#include <OgreRoot.h>

#include <cstring>

namespace {

void forgetErrors()
{
    while (glGetError() != GL_NO_ERROR) { }
}

} // namespace

void TovOgreEffectBase::setReadBackMode(ReadBackMode mode)
{
    readBackMode_ = mode;
    sizeChanged_ = true; // the buffer is made with the texture
}

void TovOgreEffectBase::resizePackBuffer()
{
    if (packBuffer_)
        glDeleteBuffers(1, &packBuffer_);
    packBuffer_ = 0;
    if (readBackMode_ != ReadBackMode::packBuffer)
        return;
    glGenBuffers(1, &packBuffer_);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, packBuffer_);
    glBufferData(GL_PIXEL_PACK_BUFFER, GLsizeiptr{width_} * height_ * 4, nullptr, GL_STREAM_READ);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

void TovOgreEffectBase::getPixels(KEXSDK::_ImageParam* record, u8* buffer, u32 channels)
{
    if (!record) {
        TovOgreBase::log("Error : Parameter is NULL!");
        return;
    }
    if (!renderTexture_) {
        TovOgreBase::log("Error: Render Texture is NULL!, Could not get pixels.");
        return;
    }
    // The record may be older than the texture's present size, or than this effect.
    if (!record->sharedBuffer || record->sharedBuffer != renderTexture_
        || record->width != renderTexture_->getWidth() || record->height != renderTexture_->getHeight())
        return;
    record->bytesPerPixel = channels;
    record->byteSize = record->width * record->height * 4;
    if (buffer && channels == 4)
        record->usePixels(buffer);
    else if (!record->pixels)
        record->allocatePixels();
    readPixels(*record);
}

void TovOgreEffectBase::readPixels(KEXSDK::_ImageParam& record)
{
    record.format = u32(KEXSDK::RecordFormat::A8R8G8B8);
    // Another effect may have been drawn since.
    environment_->root()->getRenderSystem()->_setRenderTarget(renderTexture_->getBuffer()->getRenderTarget());
    forgetErrors();
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    if (glGetError() != GL_NO_ERROR)
        return;
    glPixelStorei(GL_PACK_ROW_LENGTH, GLint(record.width));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (packBuffer_)
        readThroughPackBuffer(record.pixels, record.byteSize);
    else
        glReadPixels(
            0, 0, GLsizei(record.width), GLsizei(record.height), GL_BGRA, GL_UNSIGNED_BYTE, record.pixels);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    if (flip_)
        flipVertical(record.pixels, record.width, record.height);
}

void TovOgreEffectBase::readThroughPackBuffer(u8* pixels, std::size_t size)
{
    glBindBuffer(GL_PIXEL_PACK_BUFFER, packBuffer_);
    glReadPixels(0, 0, GLsizei(renderTexture_->getWidth()), GLsizei(renderTexture_->getHeight()), GL_BGRA,
        GL_UNSIGNED_BYTE, nullptr);
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
        std::memcpy(pixels, mapped, size);
    if (mapped)
        glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    if (arrived)
        return;
    const auto& buffer = renderTexture_->getBuffer();
    buffer->blitToMemory(
        Ogre::PixelBox(buffer->getWidth(), buffer->getHeight(), 1, Ogre::PF_A8R8G8B8, pixels));
}
