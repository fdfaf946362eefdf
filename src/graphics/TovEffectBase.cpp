// Inputs, output record and the other values that a GPU effect keeps between its renders.
#include "graphics/TovEffectBase.h"

#include "graphics/GraphicsService.h"

#include <algorithm>
#include <utility>

namespace KEXSDK {

TovEffectBase::TovEffectBase() = default;
TovEffectBase::~TovEffectBase() = default;

void TovEffectBase::setSize(u32 width, u32 height)
{
    if (width_ == width && height_ == height)
        return;
    width_ = width;
    height_ = height;
    sizeChanged_ = true;
}

bool TovEffectBase::loadPicture(const char* path, i32 index)
{
    if (!path) {
        graphics().log("Image path is NULL!");
        return false;
    }
    {
        const auto picture = graphics().loadResource(path);
        if (picture && picture->hasData()) {
            const auto bytes = picture->bytes();
            std::vector<u8>& loaded = loadedPictures_[index];
            loaded.assign(bytes.begin(), bytes.end());
            setInputData(loaded.data(), picture->width(), picture->height(), 1, index, picture->format());
            inputs_[index].constant = true;
            picture->freeMemory();
            return true;
        }
    }
    problem_ += (problem_.empty() ? "" : " ") + ("The picture " + std::string(path) + " cannot be loaded.");
    graphics().log("Pictrue path is not right or it did not been add to resource group.");
    return false;
}

void TovEffectBase::setInput(const _ImageParam* record, i32 index)
{
    if (record && record->sharedBuffer)
        setInputTexture(record->sharedBuffer, index);
    else if (record && record->pixels)
        setInputPixels(record->pixels, record->width, record->height, index, RecordFormat(record->format));
    else
        graphics().log("Input parameter is NULL!");
}

void TovEffectBase::setInputTexture(std::shared_ptr<Ogre::Texture> texture, i32 index)
{
    if (!texture)
        return;
    Input input;
    input.changed = false;
    input.texture = std::move(texture);
    inputs_[index] = std::move(input);
}

void TovEffectBase::setInputPixels(const u8* pixels, u32 width, u32 height, i32 index, RecordFormat format)
{
    setInputData(pixels, width, height, 1, index, format);
}

void TovEffectBase::setInputData(
    const u8* pixels, u32 width, u32 height, u32 depth, i32 index, RecordFormat format)
{
    Input input;
    input.pixels = pixels;
    input.format = format;
    input.width = width;
    input.height = height;
    input.depth = depth;
    inputs_[index] = std::move(input);
}

void TovEffectBase::removeInput(i32 index)
{
    if (inputs_.erase(index) > 0)
        removedInputs_.insert(index);
}

void TovEffectBase::setFlipVertical(bool flip) { flip_ = flip; }

bool TovEffectBase::isWindowClosed() { return windowClosed_; }

void TovEffectBase::setShaderParameters(const ShaderParameters& parameters)
{
    if (&parameters != &shaderParameters_)
        shaderParameters_ = parameters;
    if (shaderParameters_.empty())
        graphics().log("Filter shader parameters is null!");
}

u32 TovEffectBase::getId() { return id_; }

u32 TovEffectBase::setFrameIndex(u32 index)
{
    previousFrame_ = std::exchange(currentFrame_, index);
    return previousFrame_;
}

void TovEffectBase::setFrameRate(float framesPerSecond)
{
    if (framesPerSecond > 0)
        frameDuration_ = 1 / framesPerSecond;
}

void TovEffectBase::createOutputRecord(u32 width, u32 height)
{
    output_ = std::make_unique<_ImageParam>();
    output_->gpuOwner = this;
    output_->width = width;
    output_->height = height;
    output_->byteSize = width * height * output_->bytesPerPixel;
}

void TovEffectBase::copyOutput(_ImageParam** slot)
{
    if (!*slot)
        *slot = output_.get();
    _ImageParam& target = **slot;
    if (&target == output_.get())
        return;
    target.gpuOwner = output_->gpuOwner;
    target.sharedBuffer = output_->sharedBuffer;
    target.format = output_->format;
    target.width = output_->width;
    target.height = output_->height;
    target.byteSize = output_->byteSize;
    target.bytesPerPixel = output_->bytesPerPixel;
}

void TovEffectBase::flipVertical(u8* pixels, u32 width, u32 height)
{
    const std::size_t row = std::size_t{width} * 4;
    for (u32 y = 0; y < height / 2; ++y) {
        u8* const upper = pixels + y * row;
        std::swap_ranges(upper, upper + row, pixels + (height - 1 - y) * row);
    }
}

} // namespace KEXSDK
