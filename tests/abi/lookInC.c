/* A C host of the host library: its header compiles alone as C11; looks come from names, texts and files;
 * frames come out right in every layout of pictures; every failure has its code and its words. */
#include "check.h"
#include "paddedPicture.h"
#include <EffectEngine/EffectEngineHost.h>

#include <math.h>
#include <stdlib.h>
#include <string.h>

/* Whether a call failed with this code, and the words of the error hold this text in one line. */
static int failed(EffectHostResult result, EffectHostResult expected, const char* text)
{
    const char* const words = EffectHostLastError();
    if (result == expected && strstr(words, text) && !strchr(words, '\n'))
        return 1;
    fprintf(
        stderr, "code %d, wanted %d; said \"%s\", wanted \"%s\"\n", (int)result, (int)expected, words, text);
    return 0;
}

/* ---- The catalogue ---- */

static int parameterIsWhole(const EffectHostParameter* parameter)
{
    uint32_t i;
    CHECK(parameter->name[0] && parameter->title[0] && parameter->help && parameter->unit);
    CHECK(parameter->type >= EFFECTHOST_INTEGER && parameter->type <= EFFECTHOST_FILE);
    CHECK((parameter->elements == 0) == (parameter->type == EFFECTHOST_FILE));
    CHECK(parameter->low <= parameter->high);
    for (i = 0; i < parameter->elements; ++i)
        CHECK(isfinite(parameter->values[i]));
    for (i = 0; i < parameter->choiceCount; ++i)
        CHECK(parameter->choices[i].name[0]);
    return 0;
}

static int catalogueIsWhole(void)
{
    const EffectHostEffect* const* effects = NULL;
    size_t count = 0;
    size_t i;
    uint32_t p;
    CHECK(EffectHostGetEffects(&effects, &count) == EFFECTHOST_OK && count > 200);
    for (i = 0; i < count; ++i) {
        const EffectHostEffect* const effect = effects[i];
        const EffectHostEffect* found = NULL;
        CHECK(effect->name[0] && effect->title[0] && effect->summary[0] && effect->inputs >= 1);
        CHECK(effect->historyFrames >= EFFECTHOST_FROM_START && effect->alpha <= EFFECTHOST_ALPHA_LOOSE);
        CHECK(EffectHostFindEffect(effect->guid, &found) == EFFECTHOST_OK && found == effect);
        CHECK(EffectHostFindEffect(effect->name, &found) == EFFECTHOST_OK && found == effect);
        for (p = 0; p < effect->parameterCount; ++p)
            CHECK(parameterIsWhole(&effect->parameters[p]) == 0);
        if (i > 0) {
            const int families = strcmp(effects[i - 1]->family, effect->family);
            CHECK(families < 0 || (families == 0 && strcmp(effects[i - 1]->name, effect->name) < 0));
        }
    }
    return 0;
}

static int catalogueAnswers(void)
{
    const EffectHostEffect* effect = NULL;
    const char* all = NULL;
    const char* one = NULL;
    CHECK(catalogueIsWhole() == 0);
    CHECK(EffectHostFindEffect("HUE shift", &effect) == EFFECTHOST_OK && !strcmp(effect->name, "hue-shift"));
    CHECK(failed(EffectHostFindEffect("hue-shfit", &effect), EFFECTHOST_BAD_CONTENT, "hue-shift"));
    CHECK(failed(EffectHostFindEffect("a\nb", &effect), EFFECTHOST_BAD_CONTENT, "no effect"));
    CHECK(!strcmp(effect->name, "hue-shift")); /* failures leave it alone */
    CHECK(EffectHostGetCatalogue(NULL, &all) == EFFECTHOST_OK && strstr(all, effect->guid));
    CHECK(EffectHostGetCatalogue("hue-shift", &one) == EFFECTHOST_OK && strstr(one, effect->guid));
    CHECK(strlen(one) < strlen(all) / 50);
    return 0;
}

/* ---- Looks and their parameters ---- */

static const char* const kGraph =
    "{\"effectengine\": 1, \"title\": \"Warm words\", \"nodes\": ["
    "{\"id\": \"a\", \"effect\": \"hue-shift\", \"parameters\": {\"Hue\": 20}},"
    "{\"id\": \"b\", \"effect\": \"balance\", \"inputs\": [\"a\"]},"
    "{\"id\": \"lost\", \"effect\": \"blur\", \"inputs\": [\"source\"]},"
    "{\"id\": \"c\", \"effect\": \"fade\", \"inputs\": [\"b\", \"source-2\"]}]}";

static int looksAreDescribed(void)
{
    EffectHostLook* look = NULL;
    const EffectHostLookInfo* info = NULL;
    const EffectHostLookInfo* again = NULL;
    const char* json;
    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_JSON, kGraph, NULL, &look) == EFFECTHOST_OK);
    CHECK(EffectHostGetLookInfo(look, &info) == EFFECTHOST_OK);
    CHECK(!strcmp(info->title, "Warm words") && !strcmp(info->output, "c") && info->inputs == 2);
    CHECK(info->historyFrames == 0 && info->preRoll == 0 && !info->random && !info->needsGpu);
    CHECK(info->nodeCount == 4 && info->bandCount == 0 && info->fromStartCount == 0);
    CHECK(!strcmp(info->nodes[0].id, "a") && !strcmp(info->nodes[0].effect->name, "hue-shift"));
    CHECK(info->warningCount == 1 && strstr(info->warnings[0], "lost"));
    /* What was answered stays valid while the look is not changed. */
    json = info->json;
    CHECK(EffectHostGetLookInfo(look, &again) == EFFECTHOST_OK && again->json == json
        && strstr(json, "\"Hue\""));
    EffectHostReleaseLook(look);

    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_EMPTY, NULL, NULL, &look) == EFFECTHOST_OK);
    CHECK(failed(EffectHostGetLookInfo(look, &info), EFFECTHOST_BAD_CONTENT, "no effects"));
    CHECK(failed(EffectHostAssign(look, "Hue=20"), EFFECTHOST_BAD_CONTENT, "before any effect"));
    CHECK(EffectHostAppendEffect(look, "Hue Shift") == EFFECTHOST_OK);
    CHECK(EffectHostAssign(look, "hue=20") == EFFECTHOST_OK);
    CHECK(EffectHostAppendEffect(look, "blur") == EFFECTHOST_OK);
    CHECK(EffectHostGetLookInfo(look, &info) == EFFECTHOST_OK && info->nodeCount == 2 && info->inputs == 1);
    CHECK(EffectHostAppendEffect(look, "echo") == EFFECTHOST_OK); /* a look goes on after it was described */
    CHECK(EffectHostGetLookInfo(look, &info) == EFFECTHOST_OK && info->nodeCount == 3);
    CHECK(info->historyFrames != 0 && info->preRoll != 0);
    CHECK((info->preRoll == EFFECTHOST_FROM_START) == (info->fromStartCount > 0));
    EffectHostReleaseLook(look);
    EffectHostReleaseLook(NULL);
    return 0;
}

static int parametersAreSetAndRead(void)
{
    EffectHostLook* look = NULL;
    EffectHostRun* run = NULL;
    double numbers[4] = {-1, -1, -1, -1};
    size_t count = 4;
    const char* text = NULL;
    const double hue = 35;
    const double half = 0.5;
    const double colour[3] = {0.25, 0.5, 0.75};
    const double nothing = NAN;
    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, "hue-shift", NULL, &look) == EFFECTHOST_OK);
    CHECK(EffectHostAppendEffect(look, "highlight") == EFFECTHOST_OK);
    CHECK(EffectHostStartRun(look, 8, 6, &run) == EFFECTHOST_OK);
    EffectHostReleaseLook(look); /* runs do not need it */

    CHECK(EffectHostSetNumbers(run, "hue-shift", "Hue", &hue, 1) == EFFECTHOST_OK);
    CHECK(EffectHostGetNumbers(run, "hue-shift", "HUE", numbers, &count) == EFFECTHOST_OK);
    CHECK(count == 1 && numbers[0] == 35 && numbers[1] == -1);
    CHECK(EffectHostGetText(run, "hue-shift", "Hue", &text) == EFFECTHOST_OK && !strcmp(text, "35"));
    CHECK(EffectHostSetNumbers(run, NULL, "Color", colour, 3) == EFFECTHOST_OK);
    count = 2; /* less room than numbers */
    numbers[2] = -1;
    CHECK(EffectHostGetNumbers(run, NULL, "Color", numbers, &count) == EFFECTHOST_OK);
    CHECK(count == 3 && numbers[0] == 0.25 && numbers[1] == 0.5 && numbers[2] == -1);
    count = 0;
    CHECK(EffectHostGetNumbers(run, NULL, "Color", NULL, &count) == EFFECTHOST_OK && count == 3);
    CHECK(EffectHostSetText(run, NULL, "Color", "1,0,1") == EFFECTHOST_OK);
    CHECK(EffectHostGetText(run, NULL, "Color", &text) == EFFECTHOST_OK && !strcmp(text, "1,0,1"));
    CHECK(EffectHostSetNumbers(run, NULL, "mix", &half, 1) == EFFECTHOST_OK);
    count = 4;
    CHECK(EffectHostGetNumbers(run, NULL, "mix", numbers, &count) == EFFECTHOST_OK && count == 1
        && numbers[0] == 0.5);
    CHECK(EffectHostSetText(run, NULL, "mix", "0.25") == EFFECTHOST_OK);
    CHECK(EffectHostGetText(run, NULL, "mix", &text) == EFFECTHOST_OK && !strcmp(text, "0.25"));

    CHECK(failed(EffectHostSetNumbers(run, NULL, "Collor", colour, 3), EFFECTHOST_BAD_CONTENT, "Color"));
    CHECK(failed(EffectHostSetNumbers(run, "nobody", "Hue", &hue, 1), EFFECTHOST_BAD_CONTENT, "nobody"));
    CHECK(failed(EffectHostSetNumbers(run, NULL, "Color", colour, 2), EFFECTHOST_BAD_CONTENT, "Color"));
    CHECK(failed(EffectHostSetNumbers(run, "hue-shift", "Hue", &nothing, 1), EFFECTHOST_BAD_CONTENT, "Hue"));
    CHECK(failed(EffectHostSetText(run, "hue-shift", "Hue", "blue"), EFFECTHOST_BAD_CONTENT, "Hue"));
    CHECK(failed(EffectHostSetNumbers(run, NULL, "Hue", &hue, 0), EFFECTHOST_BAD_ARGUMENT, "values"));
    CHECK(EffectHostGetText(run, "hue-shift", "Hue", &text) == EFFECTHOST_OK && !strcmp(text, "35"));
    EffectHostReleaseRun(run);
    EffectHostReleaseRun(NULL);
    return 0;
}

/* ---- Frames ---- */

enum { WIDTH = 5, HEIGHT = 3 };

static EffectHostFrame frameOf(const EffectHostPicture* inputs, size_t count, EffectHostPicture output)
{
    EffectHostFrame frame;
    memset(&frame, 0, sizeof frame);
    frame.inputs = inputs;
    frame.inputCount = count;
    frame.output = output;
    frame.seconds = 1;
    frame.rate = 25;
    frame.duration = 5;
    return frame;
}

/* A colour of its own for each place, so that exchanged rows, columns and bytes show. Opaque for formats
 * without alpha; premultiplied ones are fully opaque or transparent, where both kinds of alpha agree. */
static void colourAt(int x, int y, const EffectHostPicture* picture, unsigned char bgra[4])
{
    bgra[0] = (unsigned char)(10 + 7 * x + 50 * y);
    bgra[1] = (unsigned char)(90 + 9 * x + 31 * y);
    bgra[2] = (unsigned char)(200 - 11 * x - 42 * y);
    bgra[3] = (unsigned char)(40 + 20 * x + 30 * y);
    if (picture->flags & EFFECTHOST_PREMULTIPLIED) {
        bgra[3] = (unsigned char)((x + y) % 2 ? 255 : 0);
        if (bgra[3] == 0)
            bgra[0] = bgra[1] = bgra[2] = 0;
    }
    if (picture->format != EFFECTHOST_BGRA && picture->format != EFFECTHOST_RGBA)
        bgra[3] = 255;
}

/* One frame that keeps the red channel, from one layout to another. The input's memory is gone when the next
 * frame is run: the library must not keep it. */
static int redChannelIn(EffectHostRun* run, PaddedPicture input, PaddedPicture output)
{
    EffectHostFrame frame = frameOf(&input.picture, 1, output.picture);
    unsigned char colour[4];
    unsigned char before[4];
    unsigned char after[4];
    int x;
    int y;
    const int alpha = output.picture.format == EFFECTHOST_BGRA || output.picture.format == EFFECTHOST_RGBA;
    for (y = 0; y < HEIGHT; ++y) {
        for (x = 0; x < WIDTH; ++x) {
            colourAt(x, y, &input.picture, colour);
            putPixel(&input, x, y, colour);
        }
    }
    CHECK(EffectHostRunFrame(run, &frame) == EFFECTHOST_OK);
    for (y = 0; y < HEIGHT; ++y) {
        for (x = 0; x < WIDTH; ++x) {
            colourAt(x, y, &input.picture, colour);
            getPixel(&input, x, y, before);
            CHECK(memcmp(before, colour, 3) == 0);
            getPixel(&output, x, y, after);
            if (output.picture.flags & EFFECTHOST_PREMULTIPLIED)
                colour[2] = (unsigned char)((colour[2] * colour[3] * 2 + 255) / 510);
            CHECK(after[0] == 0 && after[1] == 0 && after[2] == colour[2]
                && after[3] == (alpha ? colour[3] : 255));
        }
    }
    CHECK(endPadded(&input) == 0);
    CHECK(endPadded(&output) == 0);
    return 0;
}

/* Layouts are numbered: six formats, both orders of rows, both directions in memory, both kinds of alpha,
 * packed or padded. */
enum { LAYOUTS = 6 * 16 };

static PaddedPicture layout(int number)
{
    const uint32_t flags =
        (number / 6 & 1 ? EFFECTHOST_BOTTOM_UP : 0u) | (number / 12 & 1 ? EFFECTHOST_PREMULTIPLIED : 0u);
    return makePadded(
        WIDTH, HEIGHT, (uint32_t)(number % 6), flags, number / 24 & 1 ? 13u : 0u, number / 48 & 1);
}

static int framesInEveryLayout(void)
{
    EffectHostLook* look = NULL;
    EffectHostRun* run = NULL;
    int from;
    int to;
    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, "am-r-channel", NULL, &look) == EFFECTHOST_OK);
    CHECK(EffectHostStartRun(look, WIDTH, HEIGHT, &run) == EFFECTHOST_OK);
    EffectHostReleaseLook(look);
    for (from = 0; from < LAYOUTS; ++from) {
        for (to = 0; to < LAYOUTS; ++to) {
            if (redChannelIn(run, layout(from), layout(to))) {
                fprintf(stderr, "from layout %d to layout %d\n", from, to);
                return 1;
            }
        }
    }
    EffectHostReleaseRun(run);
    return 0;
}

/* A picture that cannot be is refused, as input and as output, and the run goes on. */
static int wrongPicturesAreRefused(void)
{
    EffectHostLook* look = NULL;
    EffectHostRun* run = NULL;
    unsigned char pixels[2][WIDTH * HEIGHT * 4] = {{0}};
    const EffectHostPicture good = {pixels[0], WIDTH * 4, WIDTH, HEIGHT, EFFECTHOST_BGRA, 0};
    EffectHostPicture wrong[12];
    EffectHostPicture output = good;
    EffectHostFrame frame;
    EffectHostPicture twice[2];
    size_t i;
    const size_t count = sizeof wrong / sizeof wrong[0];
    output.pixels = pixels[1];
    for (i = 0; i < count; ++i)
        wrong[i] = good;
    wrong[0].pixels = NULL;
    wrong[1].width = 0;
    wrong[2].width = INT32_MIN;
    wrong[3].height = -HEIGHT;
    wrong[4].height = INT32_MAX;
    wrong[5].width = WIDTH - 1; /* a possible picture of another size */
    wrong[6].stride = WIDTH * 4 - 1;
    wrong[7].stride = 0;
    wrong[8].format = EFFECTHOST_RGB + 1;
    wrong[9].format = UINT32_MAX;
    wrong[10].flags = 4;
    wrong[11].stride = -WIDTH * 4 + 1;

    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, "black-and-white", NULL, &look) == EFFECTHOST_OK);
    CHECK(failed(EffectHostStartRun(look, 0, HEIGHT, &run), EFFECTHOST_BAD_ARGUMENT, "size"));
    CHECK(failed(EffectHostStartRun(look, WIDTH, 4097, &run), EFFECTHOST_BAD_ARGUMENT, "size"));
    CHECK(EffectHostStartRun(look, WIDTH, HEIGHT, &run) == EFFECTHOST_OK);
    EffectHostReleaseLook(look);
    for (i = 0; i < count; ++i) {
        frame = frameOf(&wrong[i], 1, output);
        CHECK(failed(EffectHostRunFrame(run, &frame), EFFECTHOST_BAD_ARGUMENT, "picture"));
        frame = frameOf(&good, 1, wrong[i]);
        CHECK(failed(EffectHostRunFrame(run, &frame), EFFECTHOST_BAD_ARGUMENT, "picture"));
    }
    frame = frameOf(NULL, 0, output);
    CHECK(failed(EffectHostRunFrame(run, &frame), EFFECTHOST_BAD_ARGUMENT, "0 pictures"));
    twice[0] = twice[1] = good;
    frame = frameOf(twice, 2, output);
    CHECK(failed(EffectHostRunFrame(run, &frame), EFFECTHOST_BAD_ARGUMENT, "2 pictures"));
    frame = frameOf(&good, 1, output);
    frame.rate = 0;
    CHECK(failed(EffectHostRunFrame(run, &frame), EFFECTHOST_BAD_ARGUMENT, "rate"));
    frame.rate = 25;
    frame.seconds = NAN;
    CHECK(failed(EffectHostRunFrame(run, &frame), EFFECTHOST_BAD_ARGUMENT, "times"));
    frame.seconds = 0;
    CHECK(EffectHostRunFrame(run, &frame) == EFFECTHOST_OK);
    EffectHostReleaseRun(run);
    return 0;
}

/* Nodes that leave their input as it is are named when asked for. */
static int unchangedNodesAreNamed(void)
{
    EffectHostLook* look = NULL;
    EffectHostRun* run = NULL;
    unsigned char pixels[2][WIDTH * HEIGHT * 4];
    const EffectHostPicture input = {
        pixels[0], WIDTH * 4, WIDTH, HEIGHT, EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP};
    EffectHostPicture output = input;
    EffectHostFrame frame;
    size_t i;
    output.pixels = pixels[1];
    for (i = 0; i < sizeof pixels[0]; ++i)
        pixels[0][i] = (unsigned char)(i * 5);
    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, "am-r-channel", NULL, &look) == EFFECTHOST_OK);
    CHECK(EffectHostAppendEffect(look, "am-r-channel") == EFFECTHOST_OK); /* nothing is left to take away */
    CHECK(EffectHostStartRun(look, WIDTH, HEIGHT, &run) == EFFECTHOST_OK);
    frame = frameOf(&input, 1, output);
    frame.flags = EFFECTHOST_COMPARE;
    CHECK(EffectHostRunFrame(run, &frame) == EFFECTHOST_OK);
    CHECK(frame.unchanged && !strcmp(frame.unchanged, "am-r-channel#2"));
    CHECK(pixels[1][2] == pixels[0][2] && pixels[1][1] == 0);
    frame.flags = 0;
    frame.unchanged = "mine";
    CHECK(EffectHostRunFrame(run, &frame) == EFFECTHOST_OK && !strcmp(frame.unchanged, "mine"));
    EffectHostReleaseRun(run);
    EffectHostReleaseLook(look);
    return 0;
}

/* ---- Failures ---- */

static int writeFile(const char* path, const char* text)
{
    FILE* const file = fopen(path, "w");
    return file && fputs(text, file) >= 0 && fclose(file) == 0;
}

static int failuresHaveCodes(const char* directory)
{
    EffectHostLook* look = NULL;
    EffectHostRun* run = NULL;
    char path[1024];
    char words[1200];
    char longPath[6000];
    const char* const circle =
        "{\"effectengine\": 1, \"nodes\": [{\"id\": \"a\", \"effect\": \"blur\", \"inputs\": [\"b\"]},"
        "{\"id\": \"b\", \"effect\": \"blur\", \"inputs\": [\"a\"]}]}";
    CHECK(failed(
        EffectHostCreateLook((EffectHostLookSource)3, NULL, NULL, &look), EFFECTHOST_BAD_ARGUMENT, "null"));
    CHECK(failed(
        EffectHostCreateLook(EFFECTHOST_LOOK_JSON, circle, NULL, &look), EFFECTHOST_BAD_CONTENT, "circle"));
    CHECK(failed(
        EffectHostCreateLook(EFFECTHOST_LOOK_JSON, "{\"nodes\": 1", NULL, &look), EFFECTHOST_UNREADABLE, ""));
    CHECK(failed(
        EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, "", NULL, &look), EFFECTHOST_BAD_CONTENT, "effect"));
    snprintf(path, sizeof path, "%s/no-such-look.json", directory);
    CHECK(
        failed(EffectHostCreateLook(EFFECTHOST_LOOK_FILE, path, NULL, &look), EFFECTHOST_MISSING_FILE, path));
    CHECK(failed(EffectHostCreateLook(EFFECTHOST_LOOK_FILE, directory, NULL, &look), EFFECTHOST_UNREADABLE,
        directory));
    snprintf(path, sizeof path, "%s/lookInC.json", directory);
    CHECK(writeFile(path, "no JSON at all"));
    CHECK(failed(EffectHostCreateLook(EFFECTHOST_LOOK_FILE, path, NULL, &look), EFFECTHOST_UNREADABLE, path));
    CHECK(writeFile(path, kGraph));
    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_FILE, path, NULL, &look) == EFFECTHOST_OK);
    EffectHostReleaseLook(look);

    /* Files of parameters are opened when a run starts. */
    CHECK(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, "cube-lut", NULL, &look) == EFFECTHOST_OK);
    snprintf(words, sizeof words, "CubeLutFile=%s/no-such.cube", directory);
    CHECK(EffectHostAssign(look, words) == EFFECTHOST_OK);
    CHECK(failed(EffectHostStartRun(look, 4, 4, &run), EFFECTHOST_MISSING_FILE, "no-such.cube"));
    snprintf(words, sizeof words, "CubeLutFile=%s", path);
    CHECK(EffectHostAssign(look, words) == EFFECTHOST_OK);
    CHECK(failed(EffectHostStartRun(look, 4, 4, &run), EFFECTHOST_EFFECT_FAILED, "refuses"));
    memset(longPath, 'n', sizeof longPath - 1);
    memcpy(longPath, "CubeLutFile=/", strlen("CubeLutFile=/"));
    longPath[sizeof longPath - 1] = 0;
    CHECK(EffectHostAssign(look, longPath) == EFFECTHOST_OK);
    CHECK(failed(EffectHostStartRun(look, 4, 4, &run), EFFECTHOST_UNREADABLE, "too long"));
    EffectHostReleaseLook(look);
    CHECK(run == NULL);
    remove(path);
    return 0;
}

static int nullPointersAreRefused(void)
{
    const EffectHostEffect* const* effects = NULL;
    size_t count = 0;
    EffectHostLook* look = NULL;
    EffectHostFrame frame;
    memset(&frame, 0, sizeof frame);
    CHECK(failed(EffectHostGetEffects(NULL, &count), EFFECTHOST_BAD_ARGUMENT, "EffectHostGetEffects"));
    CHECK(failed(EffectHostGetEffects(&effects, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostGetEffects"));
    CHECK(failed(EffectHostFindEffect(NULL, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostFindEffect"));
    CHECK(failed(EffectHostGetCatalogue(NULL, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostGetCatalogue"));
    CHECK(failed(EffectHostCreateLook(EFFECTHOST_LOOK_EMPTY, NULL, NULL, NULL), EFFECTHOST_BAD_ARGUMENT,
        "CreateLook"));
    CHECK(failed(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, NULL, NULL, &look), EFFECTHOST_BAD_ARGUMENT,
        "CreateLook"));
    CHECK(failed(EffectHostAppendEffect(NULL, "blur"), EFFECTHOST_BAD_ARGUMENT, "EffectHostAppendEffect"));
    CHECK(failed(EffectHostAssign(NULL, "a=b"), EFFECTHOST_BAD_ARGUMENT, "EffectHostAssign"));
    CHECK(failed(EffectHostGetLookInfo(NULL, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostGetLookInfo"));
    CHECK(failed(EffectHostStartRun(NULL, 1, 1, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostStartRun"));
    CHECK(failed(
        EffectHostSetNumbers(NULL, NULL, NULL, NULL, 0), EFFECTHOST_BAD_ARGUMENT, "EffectHostSetNumbers"));
    CHECK(failed(EffectHostSetText(NULL, NULL, NULL, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostSetText"));
    CHECK(failed(
        EffectHostGetNumbers(NULL, NULL, NULL, NULL, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostGetNumbers"));
    CHECK(failed(EffectHostGetText(NULL, NULL, NULL, NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostGetText"));
    CHECK(failed(EffectHostSetCurve(NULL, NULL, NULL, 0, 1), EFFECTHOST_BAD_ARGUMENT, "EffectHostSetCurve"));
    CHECK(failed(EffectHostRunFrame(NULL, &frame), EFFECTHOST_BAD_ARGUMENT, "EffectHostRunFrame"));
    CHECK(failed(EffectHostResetRun(NULL), EFFECTHOST_BAD_ARGUMENT, "EffectHostResetRun"));
    return 0;
}

static int openedOrNot(const char* resources, const char* logs)
{
    const EffectHostEffect* effect = NULL;
    EffectHostLook* look = NULL;
    CHECK(failed(EffectHostFindEffect("blur", &effect), EFFECTHOST_NO_ENGINE, "not open"));
    CHECK(failed(
        EffectHostCreateLook(EFFECTHOST_LOOK_EMPTY, NULL, NULL, &look), EFFECTHOST_NO_ENGINE, "not open"));
    CHECK(failed(EffectHostOpen("/no/such/place", logs), EFFECTHOST_MISSING_FILE, "/no/such/place"));
    CHECK(EffectHostOpen(resources, logs) == EFFECTHOST_OK);
    CHECK(EffectHostOpen(NULL, NULL) == EFFECTHOST_OK && EffectHostOpen(resources, NULL) == EFFECTHOST_OK);
    CHECK(failed(EffectHostOpen(logs, NULL), EFFECTHOST_BAD_ARGUMENT, "open with the resource directory"));
    EffectHostClose();
    EffectHostClose();
    CHECK(EffectHostFindEffect("blur", &effect) == EFFECTHOST_OK); /* opened three times, closed twice */
    return 0;
}

int main(int argc, char** argv)
{
    const EffectHostEffect* effect = NULL;
    int round;
    CHECK(argc == 3);
    CHECK(EffectHostLastError() && !*EffectHostLastError());
    EffectHostClose(); /* which nothing opened */
    for (round = 0; round < 2; ++round) {
        if (openedOrNot(argv[1], argv[2]) || catalogueAnswers() || looksAreDescribed()
            || parametersAreSetAndRead() || framesInEveryLayout() || wrongPicturesAreRefused()
            || unchangedNodesAreNamed() || failuresHaveCodes(argv[2]) || nullPointersAreRefused())
            return 1;
        EffectHostClose();
        CHECK(failed(EffectHostFindEffect("blur", &effect), EFFECTHOST_NO_ENGINE, "not open"));
    }
    return 0;
}
