/* The public interface of EffectEngine, for C (C11) and C++ (C++20).
 *
 * Calling order: InitializeEngine; images and filters; per frame set kEffectCurrentTime, then DoFilter on
 * the last node; release filters, then images; UninitializeEngine.
 *
 * Pixels are 4 bytes in memory order blue, green, red, alpha. Rows are packed (width x 4 bytes); the first
 * row in memory is the bottom row of the picture. Widths and heights lie in 1..EFFECTENGINE_LARGEST_SIDE.
 *
 * One thread at a time works on a graph of filters and its images; nothing is locked. Every function
 * returns when its work is complete, and none throws. Unless said otherwise an output argument is written
 * only on success. Threads that call need a stack of 128 KiB at least.
 */
#ifndef EFFECTENGINE_EFFECTENGINE_H
#define EFFECTENGINE_EFFECTENGINE_H

#include <stdint.h>
#include <wchar.h>

#if defined(__GNUC__)
#define EFFECTENGINE_API __attribute__((visibility("default")))
#else
#define EFFECTENGINE_API
#endif

#ifdef __cplusplus
namespace KEXSDK {
class CEffectImage;
class CSimpleEffect;
enum tagVIParamType : unsigned int;
} // namespace KEXSDK
using KEXSDK::CEffectImage;
using KEXSDK::CSimpleEffect;
extern "C" {
#else
typedef struct CEffectImage CEffectImage;
typedef struct CSimpleEffect CSimpleEffect;
#endif

/* Results of all functions but GetFilterInputCount. */
enum {
    EFFECTENGINE_OK = 0,
    EFFECTENGINE_FAILED = 1,       /* also: engine missing, size out of range, unknown GUID, no memory */
    EFFECTENGINE_BAD_ARGUMENT = 2, /* a null pointer, an empty name, a negative count */
    EFFECTENGINE_INIT_FAILED = 3,  /* InitializeEngine only */
    EFFECTENGINE_ALREADY_INITIALIZED = 4 /* InitializeEngine only */
};

/* The largest width and height of images and filters, in pixels. */
enum { EFFECTENGINE_LARGEST_SIDE = 4096 };

/* ---- Engine ---- */

/* Starts the one engine of the process. resourceDir ends with a separator; logDir may be null (no log
 * file). A missing GPU is no failure: CPU effects work, GPU effects are unknown GUIDs then.
 *
 * Three environment variables are read here. An empty one counts as not set, and so does any other value
 * than those named, with a warning in the log:
 * EFFECTENGINE_SEED, a whole number of 64 bits in decimal, makes random effects repeatable. It stands for
 * the clock that random tables are seeded from, and the first GetFilter of a thread after DoFilter,
 * DoFilterEx or ReleaseFilter lets the thread's random numbers, and the count of rain, start anew: a graph
 * that is made and run on one thread gives the same pictures whatever was made before it.
 * EFFECTENGINE_PATH: which form effects take that have one for the GPU and one for the CPU. "gpu", which
 * holds where it is not set: the GPU's where there is one; "cpu": the CPU's; "auto": the CPU's where the
 * renderer is software, unless a parameter asks for what only the GPU's form does.
 * EFFECTENGINE_GRAPHICS: when the graphics system starts, which takes longer than a picture through most
 * effects of the CPU. "at-start", which holds where it is not set: here; "when-needed": with the first node
 * that draws, or asks which form it is to take, and with the first picture that an effect loads. */
EFFECTENGINE_API unsigned int InitializeEngine(const char* resourceDir, const char* logDir);

/* Ends the engine and its render thread. Always 0, also without an engine. */
EFFECTENGINE_API unsigned int UninitializeEngine(void);

/* ---- Images ---- */

typedef struct ImageCreateInfo {
    uint32_t width;
    uint32_t height;
    uint8_t reserved[8];
    void* pixels; /* width x height x 4 bytes that outlive the image, or null: zeroed memory of its own */
} ImageCreateInfo;

/* A size out of range gives 1. Null arguments give 2. Out of memory gives 0 and a null image. */
EFFECTENGINE_API unsigned int CreateImage(const ImageCreateInfo* info, CEffectImage** out);

/* Decodes a picture file and scales it to size[0] x size[1]. A size out of range gives 2. A file that
 * cannot be read or decoded gives 0 and a null image. */
EFFECTENGINE_API unsigned int CreateImageFromFile(
    const char* path, const unsigned int size[2], CEffectImage** out);

EFFECTENGINE_API unsigned int GetImageWidth(CEffectImage* image, unsigned int* width);
EFFECTENGINE_API unsigned int GetImageHeight(CEffectImage* image, unsigned int* height);

/* Hands out the address of the pixels; valid as long as the image. 1 when there are none. */
EFFECTENGINE_API unsigned int LockImageData(CEffectImage* image, void** pixels);

/* Reverses the rows of images made by CreateImageFromFile, on every call; others stay as they are. */
EFFECTENGINE_API unsigned int UnlockImageData(CEffectImage* image);

/* Writes a PNG, JPEG, BMP or TGA file by the extension. 0 whether or not the file could be written. */
EFFECTENGINE_API unsigned int SaveImage(CEffectImage* image, const char* path);

/* Frees the image; memory that the host gave as its pixels stays. */
EFFECTENGINE_API unsigned int ReleaseImage(CEffectImage* image);

/* ---- Filters ---- */

/* Makes the effect registered under the GUID (exact, case-sensitive) for pictures of width x height.
 * 1 with a null filter when no effect has the GUID. */
EFFECTENGINE_API unsigned int GetFilter(const char* guid, int width, int height, CSimpleEffect** out);

/* The number of inputs, not a result code; 0 for null. */
EFFECTENGINE_API unsigned int GetFilterInputCount(CSimpleEffect* filter);

/* The handle for the parameter functions: the filter itself. */
EFFECTENGINE_API unsigned int GetFilterParam(CSimpleEffect* filter, CSimpleEffect** param);

/* Sets input `index`. The image stays the host's and must live as long as the filter runs with it. */
EFFECTENGINE_API unsigned int SetInputImage(CSimpleEffect* filter, CEffectImage* image, unsigned int index);

/* Feeds input `index` of downstream from upstream's output; a null upstream removes the connection. */
EFFECTENGINE_API unsigned int ConnectFilter(
    CSimpleEffect* upstream, CSimpleEffect* downstream, unsigned int index);

/* Evaluates the graph that ends in filter. `target` becomes the output of the filter and of every node
 * before it that is enabled and has its size. 1 when the filter has no input or the target has another size;
 * nothing is written then. A target may be released as soon as the call has returned, provided that these
 * filters are run with DoFilterEx from then on: it touches its own target alone. DoFilter goes on writing to
 * the last one, which must live as long. */
EFFECTENGINE_API unsigned int DoFilterEx(CSimpleEffect* filter, CEffectImage* target);

/* Evaluates the graph that ends in filter. *output receives the filter's image even on failure (1); it
 * belongs to the filter and lives as long. */
EFFECTENGINE_API unsigned int DoFilter(CSimpleEffect* filter, CEffectImage** output);

/* Frees the filter and the image of its own; inputs and connected filters stay. */
EFFECTENGINE_API unsigned int ReleaseFilter(CSimpleEffect* filter);

/* ---- Parameters ---- */

/* Each setter stores a value under a name and copies what it is given. 1 when the value is refused: its
 * type differs from the stored one, or the effect cannot use it (a table file that does not load). */
EFFECTENGINE_API unsigned int setParamIntValue(CSimpleEffect* filter, const char* name, int value);
EFFECTENGINE_API unsigned int setParamFloatValue(CSimpleEffect* filter, const char* name, float value);
EFFECTENGINE_API unsigned int setParamIntArrayValue(
    CSimpleEffect* filter, const char* name, const int* values, int count);
EFFECTENGINE_API unsigned int setParamFloatArrayValue(
    CSimpleEffect* filter, const char* name, const float* values, int count);
EFFECTENGINE_API unsigned int setParamFilePathValue(
    CSimpleEffect* filter, const char* name, const wchar_t* path);

EFFECTENGINE_API extern const char* const kEffectFrameRate;   /* float, frames per second */
EFFECTENGINE_API extern const char* const kEffectCurrentTime; /* float, time within the effect */
EFFECTENGINE_API extern const char* const kEffectTotalTime;   /* float, duration, same unit; 5.0 at first */
EFFECTENGINE_API extern const char* const kEffectEnable;      /* integer, 0 passes input 0 through */

#ifdef __cplusplus
} // extern "C"

static_assert(sizeof(ImageCreateInfo) == 24);

namespace KEXSDK {

enum tagVIParamType : unsigned int {
    VIParamUnknown = 0,
    VIParamInt = 1,
    VIParamFloat = 2,
    VIParamIntArray = 3,
    VIParamFloatArray = 4,
    VIParamFilePath = 5
};

/// Answers 0 and writes nothing: images have one format.
EFFECTENGINE_API unsigned int GetImageFormat(CEffectImage* image, unsigned int* format);

EFFECTENGINE_API unsigned int GetParamCount(CSimpleEffect* filter, unsigned int* count);

/// Copies the name at `index`, in byte order of the names, with its NUL; `name` has room for the longest.
/// 1 when index >= count.
EFFECTENGINE_API unsigned int enumParamName(CSimpleEffect* filter, unsigned int index, char* name);

/// Answers 0 also for a name that is not stored: *type then stays as it was.
EFFECTENGINE_API unsigned int getParamType(CSimpleEffect* filter, const char* name, tagVIParamType* type);

/// 1 when the value is missing or of another type; *value is 0 then.
EFFECTENGINE_API unsigned int getParamIntValue(CSimpleEffect* filter, const char* name, int* value);
EFFECTENGINE_API unsigned int getParamFloatValue(CSimpleEffect* filter, const char* name, float* value);

/// *count: on entry the room in `values` in elements, on return the stored count; min(room, stored)
/// elements are copied. 1 when the array is missing or of another type.
EFFECTENGINE_API unsigned int getParamIntArrayValue(
    CSimpleEffect* filter, const char* name, int* values, int* count);
EFFECTENGINE_API unsigned int getParamFloatArrayValue(
    CSimpleEffect* filter, const char* name, float* values, int* count);

} // namespace KEXSDK
#endif

#endif
