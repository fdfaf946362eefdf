// Exported functions for filters and their parameters.
#include "engine/CEffectEngine.h"
#include "engine/engineInstance.h"
#include "engine/guarded.h"
#include "engine/seededRandom.h"
#include "model/CSimpleEffect.h"

const char* const kEffectFrameRate = "u_frame_rate";
const char* const kEffectCurrentTime = KEXSDK::kGlobalTime.name;
const char* const kEffectTotalTime = KEXSDK::kTotalTime.name;
const char* const kEffectEnable = KEXSDK::kEnable.name;

namespace {

bool usable(const char* name) { return name && *name; }

constexpr unsigned int succeeded(bool done) { return done ? EFFECTENGINE_OK : EFFECTENGINE_FAILED; }

// Shared by the array setters: `values` is required even for an empty array.
template <class Store>
unsigned int storeArray(
    const char* function, CSimpleEffect* filter, const char* name, const void* values, int count, Store store)
{
    return guarded(function, [&]() -> unsigned int {
        if (!filter || !usable(name) || !values || count < 0)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(store());
    });
}

} // namespace

unsigned int GetFilter(const char* guid, int width, int height, CSimpleEffect** out)
{
    return guarded("GetFilter", [&]() -> unsigned int {
        if (!out || !guid)
            return EFFECTENGINE_BAD_ARGUMENT;
        if (!engineInstance() || !sizeInRange(u32(width)) || !sizeInRange(u32(height)))
            return EFFECTENGINE_FAILED;
        KEXSDK::seededRandom::nodeBegins();
        engineInstance()->createEffectFromGUID(guid, u32(width), u32(height), out);
        return succeeded(*out != nullptr);
    });
}

unsigned int GetFilterInputCount(CSimpleEffect* filter)
{
    return guarded(
        "GetFilterInputCount", [&] { return filter ? filter->getInputCount() : 0u; }, 0);
}

unsigned int GetFilterParam(CSimpleEffect* filter, CSimpleEffect** param)
{
    if (!filter || !param)
        return EFFECTENGINE_BAD_ARGUMENT;
    *param = filter;
    return EFFECTENGINE_OK;
}

unsigned int SetInputImage(CSimpleEffect* filter, CEffectImage* image, unsigned int index)
{
    return guarded("SetInputImage", [&]() -> unsigned int {
        if (!filter || !image)
            return EFFECTENGINE_BAD_ARGUMENT;
        filter->setInputImage(image, i32(index));
        return EFFECTENGINE_OK;
    });
}

unsigned int ConnectFilter(CSimpleEffect* upstream, CSimpleEffect* downstream, unsigned int index)
{
    return guarded("ConnectFilter", [&]() -> unsigned int {
        if (!downstream)
            return EFFECTENGINE_BAD_ARGUMENT;
        downstream->connect(upstream, i32(index));
        return EFFECTENGINE_OK;
    });
}

unsigned int DoFilterEx(CSimpleEffect* filter, CEffectImage* target)
{
    return guarded("DoFilterEx", [&]() -> unsigned int {
        if (!filter || !target)
            return EFFECTENGINE_BAD_ARGUMENT;
        KEXSDK::seededRandom::graphEnds();
        return succeeded(filter->evaluate(target));
    });
}

unsigned int DoFilter(CSimpleEffect* filter, CEffectImage** output)
{
    return guarded("DoFilter", [&]() -> unsigned int {
        if (!filter || !output)
            return EFFECTENGINE_BAD_ARGUMENT;
        KEXSDK::seededRandom::graphEnds();
        *output = filter->getOutputImage();
        const bool evaluated = filter->evaluate(nullptr);
        *output = filter->getOutputImage();
        return succeeded(evaluated);
    });
}

unsigned int ReleaseFilter(CSimpleEffect* filter)
{
    return guarded("ReleaseFilter", [&]() -> unsigned int {
        if (!filter)
            return EFFECTENGINE_BAD_ARGUMENT;
        KEXSDK::seededRandom::graphEnds();
        delete filter;
        return EFFECTENGINE_OK;
    });
}

unsigned int setParamIntValue(CSimpleEffect* filter, const char* name, int value)
{
    return guarded("setParamIntValue", [&]() -> unsigned int {
        if (!filter || !usable(name))
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->setParamIntValue(name, value));
    });
}

unsigned int setParamFloatValue(CSimpleEffect* filter, const char* name, float value)
{
    return guarded("setParamFloatValue", [&]() -> unsigned int {
        if (!filter || !usable(name))
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->setParamFloatValue(name, value));
    });
}

unsigned int setParamIntArrayValue(CSimpleEffect* filter, const char* name, const int* values, int count)
{
    return storeArray("setParamIntArrayValue", filter, name, values, count,
        [&] { return filter->setParamIntArrayValue(name, values, count); });
}

unsigned int setParamFloatArrayValue(CSimpleEffect* filter, const char* name, const float* values, int count)
{
    return storeArray("setParamFloatArrayValue", filter, name, values, count,
        [&] { return filter->setParamFloatArrayValue(name, values, count); });
}

unsigned int setParamFilePathValue(CSimpleEffect* filter, const char* name, const wchar_t* path)
{
    return guarded("setParamFilePathValue", [&]() -> unsigned int {
        if (!filter || !usable(name) || !path)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->setParamFilePathValue(name, path));
    });
}

namespace KEXSDK {

unsigned int GetParamCount(CSimpleEffect* filter, unsigned int* count)
{
    return guarded("KEXSDK::GetParamCount", [&]() -> unsigned int {
        if (!filter || !count)
            return EFFECTENGINE_BAD_ARGUMENT;
        *count = filter->GetParamCount();
        return EFFECTENGINE_OK;
    });
}

unsigned int enumParamName(CSimpleEffect* filter, unsigned int index, char* name)
{
    return guarded("KEXSDK::enumParamName", [&]() -> unsigned int {
        if (!filter || !name)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->enumParamName(index, name));
    });
}

unsigned int getParamType(CSimpleEffect* filter, const char* name, tagVIParamType* type)
{
    return guarded("KEXSDK::getParamType", [&]() -> unsigned int {
        if (!filter || !usable(name) || !type)
            return EFFECTENGINE_BAD_ARGUMENT;
        ParamVariant* stored = nullptr;
        if (filter->getParamVariant(name, &stored))
            *type = stored->type <= VIParamFilePath ? tagVIParamType(stored->type) : VIParamUnknown;
        return EFFECTENGINE_OK;
    });
}

unsigned int getParamIntValue(CSimpleEffect* filter, const char* name, int* value)
{
    return guarded("KEXSDK::getParamIntValue", [&]() -> unsigned int {
        if (!filter || !usable(name) || !value)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->getParamIntValue(name, value, 0));
    });
}

unsigned int getParamFloatValue(CSimpleEffect* filter, const char* name, float* value)
{
    return guarded("KEXSDK::getParamFloatValue", [&]() -> unsigned int {
        if (!filter || !usable(name) || !value)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->getParamFloatValue(name, value, 0.0f));
    });
}

unsigned int getParamIntArrayValue(CSimpleEffect* filter, const char* name, int* values, int* count)
{
    return guarded("KEXSDK::getParamIntArrayValue", [&]() -> unsigned int {
        if (!filter || !usable(name) || !values || !count)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->getParamIntArrayValue(name, values, count));
    });
}

unsigned int getParamFloatArrayValue(CSimpleEffect* filter, const char* name, float* values, int* count)
{
    return guarded("KEXSDK::getParamFloatArrayValue", [&]() -> unsigned int {
        if (!filter || !usable(name) || !values || !count)
            return EFFECTENGINE_BAD_ARGUMENT;
        return succeeded(filter->getParamFloatArrayValue(name, values, count));
    });
}

} // namespace KEXSDK
