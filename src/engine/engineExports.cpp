// Exported functions that start and stop the engine and handle images.
#include "engine/CEffectEngine.h"
#include "engine/engineInstance.h"
#include "engine/guarded.h"
#include "model/CEffectImage.h"
#include "model/nodeMaker.h"

#include <new>

namespace {

KEXSDK::CEffectEngine* theEngine = nullptr;

const bool makesNodes = [] {
    KEXSDK::setNodeMaker([](const char* guid, u32 width, u32 height) {
        KEXSDK::CSimpleEffect* node = nullptr;
        if (theEngine && sizeInRange(width) && sizeInRange(height))
            theEngine->createEffectFromGUID(guid, width, height, &node);
        return std::unique_ptr<KEXSDK::CSimpleEffect>(node);
    });
    return true;
}();

} // namespace

KEXSDK::CEffectEngine* engineInstance() { return theEngine; }

unsigned int InitializeEngine(const char* resourceDir, const char* logDir)
{
    return guarded("InitializeEngine", [&]() -> unsigned int {
        if (theEngine)
            return EFFECTENGINE_ALREADY_INITIALIZED;
        if (!resourceDir)
            return EFFECTENGINE_BAD_ARGUMENT;
        theEngine = new KEXSDK::CEffectEngine;
        return theEngine->initialize(resourceDir, logDir) ? EFFECTENGINE_OK : EFFECTENGINE_INIT_FAILED;
    });
}

unsigned int UninitializeEngine()
{
    return guarded(
        "UninitializeEngine",
        []() -> unsigned int {
            KEXSDK::CEffectEngine* const engine = theEngine;
            theEngine = nullptr;
            if (engine) {
                engine->unInitialize();
                delete engine;
            }
            return EFFECTENGINE_OK;
        },
        EFFECTENGINE_OK);
}

unsigned int CreateImage(const ImageCreateInfo* info, CEffectImage** out)
{
    return guarded("CreateImage", [&]() -> unsigned int {
        if (!out || !info)
            return EFFECTENGINE_BAD_ARGUMENT;
        if (!sizeInRange(info->width) || !sizeInRange(info->height))
            return EFFECTENGINE_FAILED;
        *out = nullptr;
        try {
            *out = new CEffectImage(info->width, info->height, 0, 32, info->pixels);
        } catch (const std::bad_alloc&) {
            // Hosts tell this case by the null image.
        }
        return EFFECTENGINE_OK;
    });
}

unsigned int CreateImageFromFile(const char* path, const unsigned int size[2], CEffectImage** out)
{
    return guarded("CreateImageFromFile", [&]() -> unsigned int {
        if (!path || !out || !size || !sizeInRange(size[0]) || !sizeInRange(size[1]))
            return EFFECTENGINE_BAD_ARGUMENT;
        *out = nullptr;
        *out = CEffectImage::loadFromFile(path, size[0], size[1]).release();
        return EFFECTENGINE_OK;
    });
}

unsigned int GetImageWidth(CEffectImage* image, unsigned int* width)
{
    if (!image || !width)
        return EFFECTENGINE_BAD_ARGUMENT;
    *width = image->width();
    return EFFECTENGINE_OK;
}

unsigned int GetImageHeight(CEffectImage* image, unsigned int* height)
{
    if (!image || !height)
        return EFFECTENGINE_BAD_ARGUMENT;
    *height = image->height();
    return EFFECTENGINE_OK;
}

unsigned int KEXSDK::GetImageFormat(CEffectImage* image, unsigned int*)
{
    return image ? EFFECTENGINE_OK : EFFECTENGINE_BAD_ARGUMENT;
}

unsigned int LockImageData(CEffectImage* image, void** pixels)
{
    if (!image || !pixels)
        return EFFECTENGINE_BAD_ARGUMENT;
    *pixels = image->pixels();
    return *pixels ? EFFECTENGINE_OK : EFFECTENGINE_FAILED;
}

unsigned int UnlockImageData(CEffectImage* image)
{
    if (!image)
        return EFFECTENGINE_BAD_ARGUMENT;
    if (image->flipsOnUnlock())
        image->reverseRows();
    return EFFECTENGINE_OK;
}

unsigned int SaveImage(CEffectImage* image, const char* path)
{
    return guarded(
        "SaveImage",
        [&]() -> unsigned int {
            if (!image || !path)
                return EFFECTENGINE_BAD_ARGUMENT;
            image->saveToFile(path);
            return EFFECTENGINE_OK;
        },
        EFFECTENGINE_OK);
}

unsigned int ReleaseImage(CEffectImage* image)
{
    return guarded("ReleaseImage", [&]() -> unsigned int {
        if (!image)
            return EFFECTENGINE_BAD_ARGUMENT;
        delete image;
        return EFFECTENGINE_OK;
    });
}
