/* A host that links neither library: it opens the host library by its path, runs a frame, and closes it,
 * twice. */
#include "check.h"
#include <EffectEngine/EffectEngineHost.h>

#include <dlfcn.h>
#include <string.h>

/* Fills a pointer to a function; C has no cast for that. */
static int resolve(void* library, const char* name, void* pointer)
{
    void* const address = dlsym(library, name);
    memcpy(pointer, &address, sizeof address);
    return address != NULL;
}

static int runOnce(const char* path, const char* resources, const char* logs)
{
    EffectHostResult (*open)(const char*, const char*);
    void (*close)(void);
    EffectHostResult (*createLook)(EffectHostLookSource, const char*, const char*, EffectHostLook**);
    void (*releaseLook)(EffectHostLook*);
    EffectHostResult (*startRun)(EffectHostLook*, uint32_t, uint32_t, EffectHostRun**);
    EffectHostResult (*runFrame)(EffectHostRun*, EffectHostFrame*);
    void (*releaseRun)(EffectHostRun*);
    EffectHostLook* look = NULL;
    EffectHostRun* run = NULL;
    unsigned char from[2 * 4] = {1, 2, 3, 200, 30, 60, 90, 0};
    unsigned char to[2 * 4] = {0};
    const unsigned char grey[2 * 4] = {2, 2, 2, 200, 60, 60, 60, 0};
    const EffectHostPicture input = {from, 2 * 4, 2, 1, EFFECTHOST_BGRA, 0};
    EffectHostFrame frame;
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        fprintf(stderr, "%s\n", dlerror());
    CHECK(library);
    CHECK(resolve(library, "EffectHostOpen", &open) && resolve(library, "EffectHostClose", &close));
    CHECK(resolve(library, "EffectHostCreateLook", &createLook));
    CHECK(resolve(library, "EffectHostReleaseLook", &releaseLook));
    CHECK(resolve(library, "EffectHostStartRun", &startRun)
        && resolve(library, "EffectHostRunFrame", &runFrame));
    CHECK(resolve(library, "EffectHostReleaseRun", &releaseRun));

    CHECK(open(resources, logs) == EFFECTHOST_OK);
    CHECK(createLook(EFFECTHOST_LOOK_EFFECT, "black-and-white", NULL, &look) == EFFECTHOST_OK);
    CHECK(startRun(look, 2, 1, &run) == EFFECTHOST_OK);
    memset(&frame, 0, sizeof frame);
    frame.inputs = &input;
    frame.inputCount = 1;
    frame.output = input;
    frame.output.pixels = to;
    frame.rate = 25;
    frame.duration = 5;
    CHECK(runFrame(run, &frame) == EFFECTHOST_OK);
    CHECK(memcmp(to, grey, sizeof grey) == 0);
    releaseRun(run);
    releaseLook(look);
    close();
    CHECK(dlclose(library) == 0);
    return 0;
}

int main(int argc, char** argv)
{
    CHECK(argc == 4);
    return runOnce(argv[3], argv[1], argv[2]) || runOnce(argv[3], argv[1], argv[2]);
}
