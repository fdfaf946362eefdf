// The picture on paper: faded on canvas, drawn with a pencil, as an old print.
#include "effects/am/blends/blendKernels.h"
#include "effects/am/blends/oldPhoto.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/loops/pencil.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::Border;
using pixels::RowsAround;
using pixels::Scratch;

// The most that the canvas's mask lets the picture through, of 256.
constexpr u8 kMostPicture = 240;

// Columns and rows of the middle, and the radii between which the picture fades out.
struct CanvasCircle {
    int x;
    int y;
    int inner;
    int outer;

    explicit CanvasCircle(pixels::Extent size) : x(size.width / 2), y(size.height / 2)
    {
        const int right = size.width - x - 1;
        const int top = size.height - y - 1;
        const int farthest = root(std::max(x * x + y * y, right * right + top * top));
        inner = pixels::truncated(0.2 * farthest);
        outer = inner + pixels::truncated(0.5 * farthest);
    }

    int distance(int column, int row) const
    {
        return root((column - x) * (column - x) + (row - y) * (row - y));
    }

private:
    static int root(int square) { return pixels::truncated(std::sqrt(double(square))); }
};

// Fills a ramp of `count` entries that rises from 0 to 2^20 as half a turn of a sine does.
void fillRamp(i32* ramp, int count)
{
    for (int i = 0; i < count; ++i)
        ramp[i] = pixels::truncated((std::sin((double(i) / count - 0.5) * 3.1415925) + 1) * 0.5 * 1048576);
}

u8 maskAt(int distance, const CanvasCircle& circle, const i32* ramp)
{
    if (distance >= circle.outer)
        return 0;
    return distance > circle.inner ? u8((ramp[circle.outer - distance] * kMostPicture) >> 20) : kMostPicture;
}

// Keeps the mask in scratch B, in the first byte of every pixel; the ramp is needed only while it is built. A
// new buffer is always filled, whatever the marks say.
i32 keepCanvasMask(const Frame& f)
{
    AmEffectParams& block = f.block;
    const pixels::Extent size = f.dst.extent();
    const i64 bytes = i64(size.width) * size.height * 4;
    if (block.scratchBCapacity < bytes)
        block.dirty |= kAmDirtySize;
    if (!ensureScratchB(block, bytes))
        return kAmNoMemory;
    if (!(block.dirty & kAmDirtySize))
        return kAmOk;
    const CanvasCircle circle(size);
    const int rampLength = circle.outer - circle.inner;
    if (!ensureScratchC(block, i64(rampLength) * i64(sizeof(i32)), kAmDirtySize))
        return kAmNoMemory;
    i32* const ramp = static_cast<i32*>(block.scratchC);
    fillRamp(ramp, rampLength);
    const pixels::View mask(static_cast<u8*>(block.scratchB), size);
    pixels::rows::anyOrder(size, [&](int y) {
        Bgra* const row = mask.row(y).data();
        for (int x = 0; x < size.width; ++x)
            row[x] = {maskAt(circle.distance(x, y), circle, ramp), kMostPicture, kMostPicture, kMostPicture};
    });
    takeDirty(block, kAmDirtySize);
    return kAmOk;
}

// The texture screened with the picture's darkness, as far as the mask says.
constexpr Bgra onCanvas(Bgra p, Bgra texture, int share)
{
    const int dark = 255 - y8(p);
    const auto drawn = [&](int t) {
        const int screen = 255 - (((255 - t) * dark) >> 8);
        return u8(t + (((screen - t) * share) >> 8));
    };
    return {drawn(texture.b), drawn(texture.g), drawn(texture.r), p.a};
}

i32 canvas(const Frame& f)
{
    if (const i32 result = keepCanvasMask(f); result != kAmOk)
        return result;
    const pixels::ConstView mask(static_cast<const u8*>(f.block.scratchB), f.dst.extent());
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([src = f.src, second = f.second, dst = f.dst, mask, top, end] {
            const int w = dst.width();
            for (int y = top; y < end; ++y) {
                const Bgra* const from = src.row(y).data();
                const Bgra* const texture = second.row(y).data();
                const Bgra* const share = mask.row(y).data();
                Bgra* const to = dst.row(y).data();
#pragma GCC ivdep
                for (int x = 0; x < w; ++x)
                    store(to + x, onCanvas(load(from + x), load(texture + x), load(share + x).b));
            }
        });
    });
    return kAmOk;
}

// Soft light of a grey, 0..255, with the paper's grain.
inline int onGrain(int grey, int grain)
{
    const int root = int(__builtin_sqrtf(float(grey)));
    const int light = ((root * 16 - grey) * (grain - 128) + grey * 128) >> 7;
    const int dark = (((grain - 128) * (255 - grey) + 32768) * grey) >> 15;
    return grain >= 128 ? light : dark;
}

// Each grey against the brightest one around it gives pencil lines; the picture's frame stays white paper.
i32 classic(const Frame& f)
{
    const int w = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::white, GreyMaker{f.src}, [&](int y, RowsAround greys) {
        const Scratch<u8> brightest{std::size_t(w)};
        pixels::largestOfNine(greys, 1, brightest.data(), w);
        pixels::widest([=, from = f.src.row(y).data(), texture = f.second.row(y).data(),
                           to = f.dst.row(y).data(), largest = brightest.data()] {
            pixels::mapColumns(from, to, 1, w - 1, [=](int x, Bgra p) {
                const int line = (onGrain(greys.row[x], load(texture + x).b) & 255) * 256;
                const int most = largest[x];
                return pixels::grey(p, u8(most > 0 ? quotientByte(line, most > 0 ? most : 1) : 255));
            });
        });
    });
    return kAmOk;
}

// Lays the texture over p, but where it is white, `drawing` shows.
constexpr Bgra underTexture(Bgra p, Bgra drawing, Bgra texture)
{
    constexpr u32 kWhite = 0x00FFFFFF;
    const bool open = (pixels::toWord(texture) & kWhite) == kWhite && texture.a > 0;
    const auto over = [&](int c, int t) { return u8(c + (((t - c) * texture.a) >> 8)); };
    return open ? drawing : Bgra{over(p.b, texture.b), over(p.g, texture.g), over(p.r, texture.r), p.a};
}

constexpr Bgra photoUnderTexture(Bgra p, Bgra texture) { return underTexture(p, p, texture); }

// A pencil sketch of the picture, but for its frame of one pixel, under the texture.
i32 sketchUnderTexture(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    blendRows<photoUnderTexture>(f.src, f.second, f.dst);
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::untouched, GreyMaker{f.src}, [&](int y, RowsAround greys) {
        const Scratch<u8> sketch{std::size_t(width)};
        drawWithPencil(greys, kDodgeReciprocals.data(), sketch.data(), width);
        pixels::widest([=, from = f.src.row(y).data(), texture = f.second.row(y).data(),
                           to = f.dst.row(y).data(), drawn = sketch.data()] {
            pixels::mapColumns(from, to, 1, width - 1,
                [=](int x, Bgra p) { return underTexture(p, pixels::grey(p, drawn[x]), load(texture + x)); });
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 2203,
        .entry = {.place = 143, .name = "RQ_OLD_PHOTO", .guid = "43E461FF-BEB3-4ef1-974A-93812CB8D210"},
        .shown = {.title = "Old Photo", .summary = "A blurred photo under the picture of an old print."},
        .texture = "oldtime.png",
        .alpha = Alpha::computed,
        .needsCopy = true,
        .apply = oldPhoto},
    {.id = 2204,
        .entry = {.place = 144, .name = "Canvas", .guid = "B23034C1-24C4-4504-9776-6805CFBD7F02"},
        .shown = {.title = "Canvas", .summary = "The grey photo on canvas, fading towards the corners."},
        .texture = "sketch.png",
        .apply = canvas},
    {.id = 2205,
        .entry = {.place = 145, .name = "Classic", .guid = "49D37319-8F37-4593-BBAF-9FF0A6307C01"},
        .shown = {.title = "Classic Sketch", .summary = "Pencil lines on grained paper."},
        .texture = "sketch.png",
        .needsCopy = true,
        .apply = classic},
    {.id = 2206, .needsCopy = true, .apply = sketchUnderTexture},
};
static_assert(isSound(kRows));

const Registered registered{Family::texture, kRows};

} // namespace

} // namespace KEXSDK::am
