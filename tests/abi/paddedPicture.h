/* Pictures in memory of their own, exactly as long as their rows need, with bytes behind each row that nobody
 * may touch: the address sanitizer reports who does; in other builds a pattern shows who wrote. For C and
 * C++. */
#ifndef PADDEDPICTURE_H
#define PADDEDPICTURE_H

#include <EffectEngine/EffectEngineHost.h>

#include <stdlib.h>
#include <string.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

typedef struct PaddedPicture {
    EffectHostPicture picture;
    unsigned char* memory;
    size_t rowBytes; /* of the pixels alone */
    size_t stride;   /* from a row to the next one in memory */
} PaddedPicture;

enum { PADDING_BYTE = 0xA5 };

static inline size_t bytesPerPixel(uint32_t format)
{
    return format == EFFECTHOST_BGR || format == EFFECTHOST_RGB ? 3 : 4;
}

/* The bytes of the row'th row in the order of the description. */
static inline unsigned char* rowOf(const PaddedPicture* padded, int row)
{
    return (unsigned char*)padded->picture.pixels + row * padded->picture.stride;
}

/* Says for all padding whether it may be touched. The last row has none: the memory ends with its pixels. */
static inline void guardPadding(const PaddedPicture* padded, int guarded)
{
    int row;
    for (row = 0; row + 1 < padded->picture.height; ++row) {
        unsigned char* const begin = padded->memory + (size_t)row * padded->stride + padded->rowBytes;
        if (guarded)
            ASAN_POISON_MEMORY_REGION(begin, padded->stride - padded->rowBytes);
        else
            ASAN_UNPOISON_MEMORY_REGION(begin, padded->stride - padded->rowBytes);
    }
}

/* @param padding    bytes behind each row but the last
 * @param backwards  1: rows run towards lower addresses, by a negative stride */
static inline PaddedPicture makePadded(
    int width, int height, uint32_t format, uint32_t flags, size_t padding, int backwards)
{
    PaddedPicture made;
    size_t total;
    made.rowBytes = (size_t)width * bytesPerPixel(format);
    made.stride = made.rowBytes + padding;
    total = made.stride * (size_t)(height - 1) + made.rowBytes;
    made.memory = (unsigned char*)malloc(total);
    if (!made.memory)
        abort();
    memset(made.memory, PADDING_BYTE, total);
    made.picture.pixels = made.memory + (backwards ? made.stride * (size_t)(height - 1) : 0);
    made.picture.stride = backwards ? -(ptrdiff_t)made.stride : (ptrdiff_t)made.stride;
    made.picture.width = width;
    made.picture.height = height;
    made.picture.format = format;
    made.picture.flags = flags;
    guardPadding(&made, 1);
    return made;
}

/* Frees the memory. @return 1 if somebody wrote to the padding */
static inline int endPadded(PaddedPicture* padded)
{
    int row;
    int broken = 0;
    size_t i;
    guardPadding(padded, 0);
    for (row = 0; row + 1 < padded->picture.height; ++row) {
        for (i = padded->rowBytes; i < padded->stride; ++i)
            broken |= padded->memory[(size_t)row * padded->stride + i] != PADDING_BYTE;
    }
    free(padded->memory);
    padded->memory = NULL;
    return broken;
}

/* The place of a pixel; x from the left, y from the top of what the picture shows. */
static inline unsigned char* pixelOf(const PaddedPicture* padded, int x, int y)
{
    const int row = padded->picture.flags & EFFECTHOST_BOTTOM_UP ? padded->picture.height - 1 - y : y;
    return rowOf(padded, row) + (size_t)x * bytesPerPixel(padded->picture.format);
}

/* Writes a colour of blue, green, red and alpha in the picture's order of bytes. X bytes get a wild value,
 * since they mean nothing. */
static inline void putPixel(const PaddedPicture* padded, int x, int y, const unsigned char bgra[4])
{
    unsigned char* const at = pixelOf(padded, x, y);
    const uint32_t format = padded->picture.format;
    const int redFirst = format == EFFECTHOST_RGBA || format == EFFECTHOST_RGBX || format == EFFECTHOST_RGB;
    at[0] = bgra[redFirst ? 2 : 0];
    at[1] = bgra[1];
    at[2] = bgra[redFirst ? 0 : 2];
    if (format == EFFECTHOST_BGRA || format == EFFECTHOST_RGBA)
        at[3] = bgra[3];
    else if (bytesPerPixel(format) == 4)
        at[3] = 77;
}

/* Reads a colour as blue, green, red and alpha; the fourth byte as it is, 255 where there is none. */
static inline void getPixel(const PaddedPicture* padded, int x, int y, unsigned char bgra[4])
{
    const unsigned char* const at = pixelOf(padded, x, y);
    const uint32_t format = padded->picture.format;
    const int redFirst = format == EFFECTHOST_RGBA || format == EFFECTHOST_RGBX || format == EFFECTHOST_RGB;
    bgra[0] = at[redFirst ? 2 : 0];
    bgra[1] = at[1];
    bgra[2] = at[redFirst ? 0 : 2];
    bgra[3] = bytesPerPixel(format) == 4 ? at[3] : 255;
}

#endif
