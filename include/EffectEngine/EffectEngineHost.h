/* The host library of EffectEngine, for C (C11) and C++ (C++20): looks (an effect, a chain or a graph of
 * effects with their parameters over time) that run on the caller's pictures, and the facts of every effect.
 * It stands on the public interface of libEffectEngine.so (EffectEngine.h) and on the catalogue effects.json
 * that is installed beside it.
 *
 * Calling order: EffectHostOpen; looks; runs of looks; EffectHostRunFrame once per frame; release runs, then
 * looks; EffectHostClose.
 *
 * Every function but the releasing ones, which take null as well, answers a code of EffectHostResult. It
 * throws nothing and writes nothing to the standard streams; EffectHostLastError has the words. Output
 * arguments are written only on success. Texts are UTF-8.
 *
 * Threads: every function may be called from any thread. A run belongs to one thread at a time, and a look
 * must not be changed while another thread uses it; different runs work at the same time, those of one look
 * as well. Threads that call need a stack of 256 KiB at least. Random effects repeat only in runs that were
 * made and are run on one thread.
 */
#ifndef EFFECTENGINE_EFFECTENGINEHOST_H
#define EFFECTENGINE_EFFECTENGINEHOST_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define EFFECTHOST_API __attribute__((visibility("default")))
#else
#define EFFECTHOST_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef enum EffectHostResult {
    EFFECTHOST_OK = 0,
    EFFECTHOST_BAD_ARGUMENT = 1,  /* a null pointer, a picture that cannot be, a function out of its turn */
    EFFECTHOST_BAD_CONTENT = 2,   /* unknown effect or parameter, wrong type, circle, unconnected input */
    EFFECTHOST_MISSING_FILE = 3,  /* a graph file, or a file that a parameter names, does not exist */
    EFFECTHOST_UNREADABLE = 4,    /* a file cannot be read, or is not what it should be */
    EFFECTHOST_EFFECT_FAILED = 5, /* an effect is not available here, refuses a value, or does not run */
    EFFECTHOST_NO_ENGINE = 6,     /* the library is not open, or the engine does not start */
    EFFECTHOST_NO_MEMORY = 7,
    EFFECTHOST_INTERNAL = 8
} EffectHostResult;

/* ---- The library ---- */

/* Reads the catalogue, and with it the descriptors of the resource directory. Calls are counted: the first
 * one counts, others must name the same directory or null. The engine itself starts with the first run; an
 * engine that the program has started is used, and not ended. Where the library starts it, effects with two
 * forms take the one of the processor on machines without a GPU, unless the environment's EFFECTENGINE_PATH
 * says otherwise, and the graphics system starts with the first run that needs it, unless its
 * EFFECTENGINE_GRAPHICS does.
 * @param resourceDirectory  null: EFFECTENGINE_RESOURCES of the environment, or the pack installed with this
 * library; without either the effects that it describes are missing, and no run starts
 * @param logDirectory       for the engine's logs; null: none. That of the first call counts */
EFFECTHOST_API EffectHostResult EffectHostOpen(const char* resourceDirectory, const char* logDirectory);

/* Ends what the first EffectHostOpen began when it is called as often as that. Looks and runs must be
 * released. */
EFFECTHOST_API void EffectHostClose(void);

/* One line about the last call of this thread that did not succeed, without control characters; valid until
 * its next one. Never null. */
EFFECTHOST_API const char* EffectHostLastError(void);

/* ---- The catalogue ---- */

enum { EFFECTHOST_FROM_START = -1 }; /* a history that goes back to the first frame */

typedef enum EffectHostType {
    EFFECTHOST_INTEGER = 1,
    EFFECTHOST_FLOAT = 2,
    EFFECTHOST_INTEGERS = 3,
    EFFECTHOST_FLOATS = 4,
    EFFECTHOST_FILE = 5
} EffectHostType;

typedef enum EffectHostAlpha {
    EFFECTHOST_ALPHA_KEPT = 0,     /* the first picture's at the same place */
    EFFECTHOST_ALPHA_OPAQUE = 1,   /* 255 */
    EFFECTHOST_ALPHA_COMPUTED = 2, /* opaque pictures become transparent where the effect means it */
    EFFECTHOST_ALPHA_LOOSE = 3     /* as above; runs make it opaque where all inputs are */
} EffectHostAlpha;

typedef struct EffectHostChoice {
    int32_t value;
    const char* name;
} EffectHostChoice;

/* Facts of a parameter. */
typedef struct EffectHostParameter {
    const char* name;
    const char* title; /* for people */
    const char* help;
    const char* unit; /* "percent", "pixels"...; empty for a plain number */
    EffectHostType type;
    uint32_t elements;    /* how many numbers it holds; 0 for a file */
    int32_t declared;     /* 1: effects begin with `values`; 0: nothing is set, and `values` are an example */
    const double* values; /* `elements` numbers */
    double low, high;     /* advised range; low == high when there is none */
    const double* hostDefault; /* what looks set unless they say otherwise; null for nothing */
    uint32_t choiceCount;      /* 0: any number goes */
    const EffectHostChoice* choices;
    const char* packFolder;  /* files: where the resource pack has some that go by their names; else empty */
    const char* packExample; /* one of those names */
} EffectHostParameter;

/* Facts of an effect. New members come at the end. */
typedef struct EffectHostEffect {
    const char* guid;
    const char* name;  /* lower case with hyphens */
    const char* title; /* for people */
    const char* family;
    const char* summary; /* one sentence */
    uint32_t inputs;
    int32_t historyFrames; /* how many earlier frames a frame depends on, or EFFECTHOST_FROM_START */
    int32_t random;
    int32_t shared; /* 1: nodes of one process share state */
    int32_t needsGpu;
    EffectHostAlpha alpha;
    uint32_t parameterCount;
    const EffectHostParameter* parameters;
    const char*
        descriptor; /* its file, from the resource directory on; empty for effects of the library itself */
} EffectHostEffect;

/* All effects, sorted by family and name. They and all that they point to stay valid for the life of the
 * process. */
EFFECTHOST_API EffectHostResult EffectHostGetEffects(const EffectHostEffect* const** effects, size_t* count);

/* The effect with this GUID, or with this name or title in any spelling. EFFECTHOST_BAD_CONTENT when there is
 * none, with the nearest one in the words, and when the word can mean several. */
EFFECTHOST_API EffectHostResult EffectHostFindEffect(const char* word, const EffectHostEffect** effect);

/* The catalogue as JSON text, or one effect's part of it. Valid as above.
 * @param effect  as EffectHostFindEffect takes it; null for all */
EFFECTHOST_API EffectHostResult EffectHostGetCatalogue(const char* effect, const char** json);

/* ---- Looks ---- */

/* Effects, what feeds them, and their parameters. */
typedef struct EffectHostLook EffectHostLook;

typedef enum EffectHostLookSource {
    EFFECTHOST_LOOK_EMPTY = 0,  /* without effects */
    EFFECTHOST_LOOK_EFFECT = 1, /* one effect, as EffectHostFindEffect takes it */
    EFFECTHOST_LOOK_FILE = 2,   /* the path of a graph or preset file */
    EFFECTHOST_LOOK_JSON = 3    /* the text of such a file */
} EffectHostLookSource;

/* @param text       by the source; null for EFFECTHOST_LOOK_EMPTY
 * @param directory  where paths in JSON text count from; null: the working directory */
EFFECTHOST_API EffectHostResult EffectHostCreateLook(
    EffectHostLookSource source, const char* text, const char* directory, EffectHostLook** look);

EFFECTHOST_API void EffectHostReleaseLook(EffectHostLook* look);

/* Adds an effect that takes the output so far, or the first picture, as its first input, and becomes the
 * output. */
EFFECTHOST_API EffectHostResult EffectHostAppendEffect(EffectHostLook* look, const char* effect);

/* Sets a parameter of the output's effect as people type it: "NAME=VALUE", with a number, numbers with commas
 * between, the name of a mode's value, or a path. */
EFFECTHOST_API EffectHostResult EffectHostAssign(EffectHostLook* look, const char* assignment);

typedef struct EffectHostNode {
    const char* id;
    const EffectHostEffect* effect;
} EffectHostNode;

/* A band of sound that parameters of the look follow. */
typedef struct EffectHostBand {
    const char* name; /* "bass", "mid", "treble", "all", or "200-400 Hz": what EffectHostSetCurve takes */
    double lowHertz, highHertz; /* the latter may be infinite */
} EffectHostBand;

/* What a host must know of a look. New members come at the end. */
typedef struct EffectHostLookInfo {
    const char* title;
    const char* output;    /* id of the node whose picture is the result */
    uint32_t inputs;       /* how many pictures a frame needs */
    int32_t historyFrames; /* how many earlier frames the output depends on, or EFFECTHOST_FROM_START */
    int32_t preRoll; /* frames to run before a wanted one for the same bytes, or EFFECTHOST_FROM_START */
    int32_t random;
    int32_t needsGpu;
    size_t nodeCount; /* in order of evaluation */
    const EffectHostNode* nodes;
    size_t bandCount;
    const EffectHostBand* bands;
    size_t warningCount; /* values outside advised ranges, nodes that lead nowhere */
    const char* const* warnings;
    size_t fromStartCount; /* why every frame from the first one on must be run, if so */
    const char* const* fromStart;
    const char* json; /* the look as a graph file; paths are absolute */
} EffectHostLookInfo;

/* Checks the look and describes it. Valid until the look is changed or released. */
EFFECTHOST_API EffectHostResult EffectHostGetLookInfo(EffectHostLook* look, const EffectHostLookInfo** info);

/* ---- Runs ---- */

typedef enum EffectHostFormat { /* the order of bytes in memory; X bytes are ignored, and written as 255 */
    EFFECTHOST_BGRA = 0,
    EFFECTHOST_RGBA = 1,
    EFFECTHOST_BGRX = 2,
    EFFECTHOST_RGBX = 3,
    EFFECTHOST_BGR = 4,
    EFFECTHOST_RGB = 5
} EffectHostFormat;

enum { EFFECTHOST_BOTTOM_UP = 1, EFFECTHOST_PREMULTIPLIED = 2 };

/* Pixels of the caller. BGRA, bottom-up, straight, with rows packed is used where it lies; every other form
 * is converted once, on all processors. Bytes behind the pixels of a row are neither read nor written. */
typedef struct EffectHostPicture {
    void* pixels;     /* the first row: the top one, or the bottom one with EFFECTHOST_BOTTOM_UP */
    ptrdiff_t stride; /* bytes from a row to the next, may be negative */
    int32_t width;    /* 1..4096 */
    int32_t height;
    uint32_t format; /* EffectHostFormat */
    uint32_t flags;  /* EFFECTHOST_BOTTOM_UP, EFFECTHOST_PREMULTIPLIED */
} EffectHostPicture;

/* A look at work on pictures of one size. */
typedef struct EffectHostRun EffectHostRun;

/* Starts the engine if need be, and makes the look's effects. The look may be changed or released afterwards.
 */
EFFECTHOST_API EffectHostResult EffectHostStartRun(
    EffectHostLook* look, uint32_t width, uint32_t height, EffectHostRun** run);

EFFECTHOST_API void EffectHostReleaseRun(EffectHostRun* run);

/* Sets a parameter from the next frame on, in place of its keyframes.
 * @param node       an id; null: the output's node
 * @param parameter  name or title in any spelling, or "mix" */
EFFECTHOST_API EffectHostResult EffectHostSetNumbers(
    EffectHostRun* run, const char* node, const char* parameter, const double* values, size_t count);
/* As people type it: see EffectHostAssign. */
EFFECTHOST_API EffectHostResult EffectHostSetText(
    EffectHostRun* run, const char* node, const char* parameter, const char* value);

/* The numbers that the parameter has at the last frame's time. @param count  the room; receives how many
 * there are */
EFFECTHOST_API EffectHostResult EffectHostGetNumbers(
    EffectHostRun* run, const char* node, const char* parameter, double* values, size_t* count);
/* The value as people type it, valid until the next call for this run. */
EFFECTHOST_API EffectHostResult EffectHostGetText(
    EffectHostRun* run, const char* node, const char* parameter, const char** value);

/* Gives the loudness of a band: samples of 0..1, the first one at second 0. Without a curve a band is silent.
 * @param rate  samples a second */
EFFECTHOST_API EffectHostResult EffectHostSetCurve(
    EffectHostRun* run, const char* band, const float* samples, size_t count, double rate);

enum { EFFECTHOST_COMPARE = 1 };

typedef struct EffectHostFrame {
    const EffectHostPicture* inputs; /* never written to */
    size_t inputCount;
    EffectHostPicture output;
    double seconds;  /* from the clip's start */
    double rate;     /* frames a second */
    double duration; /* of the clip, in seconds */
    /* EFFECTHOST_COMPARE: note the nodes that gave the bytes of their first input, which costs time. */
    uint32_t flags;
    /* With that flag receives their ids, one a line; valid until the next frame. Others leave it alone. */
    const char* unchanged;
} EffectHostFrame;

/* Runs the look once. On a failure the output is undefined. The output may not overlap the inputs. */
EFFECTHOST_API EffectHostResult EffectHostRunFrame(EffectHostRun* run, EffectHostFrame* frame);

/* Forgets earlier frames, as after a seek. Parameters that were set, and curves, stay. */
EFFECTHOST_API EffectHostResult EffectHostResetRun(EffectHostRun* run);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
