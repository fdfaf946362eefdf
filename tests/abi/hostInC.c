/* A C host against the shared library: the header compiles alone as C11, and a frame comes out right. */
#include "check.h"
#include <EffectEngine/EffectEngine.h>

#include <string.h>

int main(int argc, char** argv)
{
    unsigned char pixels[2 * 1 * 4] = {1, 2, 4, 200, 30, 60, 90, 0};
    const unsigned char grey[2 * 1 * 4] = {2, 2, 2, 200, 60, 60, 60, 0};
    ImageCreateInfo info = {2, 1, {0}, pixels};
    CEffectImage* input = NULL;
    CEffectImage* output = NULL;
    CSimpleEffect* filter = NULL;
    void* result = NULL;

    CHECK(argc >= 3);
    CHECK(InitializeEngine(argv[1], argv[2]) == 0);
    CHECK(CreateImage(&info, &input) == 0 && input);
    CHECK(GetFilter("DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A", 2, 1, &filter) == 0);
    CHECK(SetInputImage(filter, input, 0) == 0);
    CHECK(setParamFloatValue(filter, kEffectCurrentTime, 0.5f) == 0);
    CHECK(DoFilter(filter, &output) == 0);
    CHECK(LockImageData(output, &result) == 0);
    CHECK(memcmp(result, grey, sizeof grey) == 0);
    CHECK(ReleaseFilter(filter) == 0);
    CHECK(ReleaseImage(input) == 0);
    CHECK(UninitializeEngine() == 0);
    return 0;
}
