// A C++ host against the shared library: the decorated functions link, a picture saves and loads upright, and
// the library can be unloaded and used again.
#include "check.h"
#include <EffectEngine/EffectEngine.h>

#include <dlfcn.h>

#include <cstring>
#include <string>

namespace {

int picturesKeepTheirOrientation(const std::string& directory)
{
    unsigned char pixels[1 * 2 * 4] = {10, 20, 30, 255, 200, 150, 100, 255};
    const ImageCreateInfo info{1, 2, {}, pixels};
    CEffectImage* image = nullptr;
    CHECK(CreateImage(&info, &image) == 0);
    const std::string file = directory + "/upright.png";
    CHECK(SaveImage(image, file.c_str()) == 0);
    const unsigned size[2] = {1, 2};
    CEffectImage* loaded = nullptr;
    CHECK(CreateImageFromFile(file.c_str(), size, &loaded) == 0);
    CHECK(loaded);
    void* bytes = nullptr;
    CHECK(LockImageData(loaded, &bytes) == 0);
    CHECK(std::memcmp(bytes, pixels, sizeof pixels) == 0);
    CHECK(UnlockImageData(loaded) == 0);
    CHECK(std::memcmp(bytes, pixels + 4, 4) == 0);
    ReleaseImage(loaded);
    ReleaseImage(image);
    return 0;
}

int decoratedFunctionsLink()
{
    CSimpleEffect* filter = nullptr;
    CHECK(GetFilter("12E5BC38-3508-44b0-AD1A-D0B37D19289F", 4, 4, &filter) == 0);
    unsigned count = 0;
    CHECK(KEXSDK::GetParamCount(filter, &count) == 0 && count == 4);
    char name[64];
    CHECK(KEXSDK::enumParamName(filter, 0, name) == 0 && !std::strcmp(name, "Hue"));
    KEXSDK::tagVIParamType type{};
    CHECK(KEXSDK::getParamType(filter, name, &type) == 0 && type == KEXSDK::VIParamInt);
    int hue = 0;
    CHECK(KEXSDK::getParamIntValue(filter, name, &hue) == 0 && hue == 95);
    float time = 1;
    CHECK(KEXSDK::getParamFloatValue(filter, kEffectTotalTime, &time) == 0 && time == 5.0f);
    CHECK(KEXSDK::getParamIntArrayValue(filter, name, &hue, &hue) == 1);
    CHECK(KEXSDK::getParamFloatArrayValue(filter, name, &time, &hue) == 1);
    ReleaseFilter(filter);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    CHECK(argc == 4);
    for (int round = 0; round < 2; ++round) {
        CHECK(InitializeEngine(argv[1], argv[2]) == 0);
        if (picturesKeepTheirOrientation(argv[2]) || decoratedFunctionsLink())
            return 1;
        CHECK(UninitializeEngine() == 0);
        void* const again = dlopen(argv[3], RTLD_NOW);
        CHECK(again);
        dlclose(again);
    }
    return 0;
}
