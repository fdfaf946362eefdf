/* Puts an effect on a picture file:
 *     picture RESOURCES IN WIDTH HEIGHT OUT
 * RESOURCES is the installed directory with its trailing slash: /usr/share/effectengine/ */
#include <EffectEngine/EffectEngine.h>

#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

static const char* const kHueShift = "12E5BC38-3508-44b0-AD1A-D0B37D19289F";

/* Results but 0 end the work; the caller's pointers tell what is to be released. */
static int process(
    const char* in, const unsigned size[2], const char* out, CEffectImage** picture, CSimpleEffect** filter)
{
    CEffectImage* result = NULL;
    struct stat status;

    if (CreateImageFromFile(in, size, picture) != EFFECTENGINE_OK)
        return fprintf(stderr, "%ux%u is no size for a picture\n", size[0], size[1]);
    if (!*picture)
        return fprintf(stderr, "cannot read %s\n", in);
    if (GetFilter(kHueShift, (int)size[0], (int)size[1], filter) != EFFECTENGINE_OK)
        return fprintf(stderr, "the effect is not available\n");
    if (setParamIntValue(*filter, "Hue", 20) != EFFECTENGINE_OK)
        return fprintf(stderr, "the effect refuses the value\n");
    SetInputImage(*filter, *picture, 0);
    if (DoFilter(*filter, &result) != EFFECTENGINE_OK)
        return fprintf(stderr, "the effect could not be run\n");
    /* `result` belongs to the filter. SaveImage answers 0 in any case; the file itself tells. */
    remove(out);
    SaveImage(result, out);
    if (stat(out, &status) != 0)
        return fprintf(stderr, "cannot write %s\n", out);
    return 0;
}

int main(int argc, char** argv)
{
    CEffectImage* picture = NULL;
    CSimpleEffect* filter = NULL;
    unsigned size[2];
    int failed;

    if (argc != 6)
        return fprintf(stderr, "usage: picture RESOURCES IN WIDTH HEIGHT OUT\n"), 2;
    size[0] = (unsigned)strtoul(argv[3], NULL, 10);
    size[1] = (unsigned)strtoul(argv[4], NULL, 10);
    if (InitializeEngine(argv[1], NULL) != EFFECTENGINE_OK)
        return fprintf(stderr, "the engine did not start\n"), 1;
    failed = process(argv[2], size, argv[5], &picture, &filter) != 0;
    if (filter)
        ReleaseFilter(filter);
    if (picture)
        ReleaseImage(picture);
    UninitializeEngine();
    return failed;
}
