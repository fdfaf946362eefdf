/* Puts a look on raw frames, three bytes a pixel in the order red, green, blue, top row first:
 *     look LOOK WIDTH HEIGHT FRAMES_PER_SECOND SECONDS <in.rgb >out.rgb
 * LOOK is an effect's name, or a graph file, which ends in ".json". SECONDS is the clip's duration. The
 * resources are those installed with the library, or those that EFFECTENGINE_RESOURCES names. */
#include <EffectEngine/EffectEngineHost.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int complain(const char* what)
{
    fprintf(stderr, "%s: %s\n", what, EffectHostLastError());
    return 1;
}

static EffectHostPicture rgbPicture(unsigned char* pixels, int width, int height)
{
    EffectHostPicture picture;
    picture.pixels = pixels;
    picture.stride = (ptrdiff_t)width * 3;
    picture.width = width;
    picture.height = height;
    picture.format = EFFECTHOST_RGB;
    picture.flags = 0; /* the top row first */
    return picture;
}

static EffectHostResult startRun(const char* name, unsigned width, unsigned height, EffectHostRun** run)
{
    const size_t length = strlen(name);
    const int isFile = length > 5 && strcmp(name + length - 5, ".json") == 0;
    EffectHostLook* look = NULL;
    EffectHostResult result;

    result = EffectHostCreateLook(isFile ? EFFECTHOST_LOOK_FILE : EFFECTHOST_LOOK_EFFECT, name, NULL, &look);
    if (result == EFFECTHOST_OK)
        result = EffectHostStartRun(look, width, height, run);
    EffectHostReleaseLook(look); /* a run does not need its look any more */
    return result;
}

static int process(
    EffectHostRun* run, unsigned char* pixels, int width, int height, double rate, double seconds)
{
    const size_t size = (size_t)width * (size_t)height * 3;
    const EffectHostPicture input = rgbPicture(pixels, width, height);
    EffectHostFrame frame;
    long number;

    memset(&frame, 0, sizeof frame);
    frame.inputs = &input;
    frame.inputCount = 1;
    frame.output = rgbPicture(pixels + size, width, height);
    frame.rate = rate;
    frame.duration = seconds;
    for (number = 0; fread(pixels, 1, size, stdin) == size; ++number) {
        frame.seconds = (double)number / rate;
        if (EffectHostRunFrame(run, &frame) != EFFECTHOST_OK)
            return complain("a frame");
        if (fwrite(pixels + size, 1, size, stdout) != size)
            return fprintf(stderr, "cannot write a frame\n"), 1;
    }
    if (fflush(stdout) != 0)
        return fprintf(stderr, "cannot write the last frames\n"), 1;
    return 0;
}

int main(int argc, char** argv)
{
    EffectHostRun* run = NULL;
    unsigned char* pixels;
    unsigned width;
    unsigned height;
    int failed;

    if (argc != 6)
        return fprintf(stderr, "usage: look LOOK WIDTH HEIGHT FRAMES_PER_SECOND SECONDS\n"), 2;
    width = (unsigned)strtoul(argv[2], NULL, 10);
    height = (unsigned)strtoul(argv[3], NULL, 10);
    if (EffectHostOpen(NULL, NULL) != EFFECTHOST_OK)
        return complain("the library");
    failed = startRun(argv[1], width, height, &run) != EFFECTHOST_OK;
    if (failed) {
        complain(argv[1]);
    } else {
        pixels = (unsigned char*)malloc((size_t)width * height * 3 * 2); /* one frame in, one frame out */
        failed = pixels
            ? process(run, pixels, (int)width, (int)height, strtod(argv[4], NULL), strtod(argv[5], NULL))
            : 1;
        free(pixels);
    }
    EffectHostReleaseRun(run);
    EffectHostClose();
    return failed;
}
