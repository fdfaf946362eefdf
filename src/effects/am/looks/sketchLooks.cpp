// Looks that see a pixel with its eight neighbours: pencil sketches, outlines, sharpened colours.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/loops/pencil.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::Border;
using pixels::ByteTable;
using pixels::Point;
using pixels::RowsAround;
using pixels::Scratch;
namespace rows = pixels::rows;

void placeSketch(AmEffectParams& b)
{
    b.work1 = 25, b.work2 = 35, b.work3 = 85, b.work4 = 65;
    b.work5 = 25, b.work6 = 75, b.work7 = 55, b.work8 = 10;
    b.workF = 245.0;
}

// A line of the plane: value() is positive on one side, negative on the other.
struct Edge {
    Point from;
    Point to;

    constexpr int value(int x, int y) const
    {
        return (x - to.x) * (from.y - to.y) - (from.x - to.x) * (y - to.y);
    }
};

// A triangle of the plane, its edges included.
struct Triangle {
    Edge edges[3];

    constexpr Triangle(Point a, Point b, Point c) : edges{{a, b}, {b, c}, {c, a}} { }
    constexpr bool contains(int x, int y) const
    {
        bool below = false;
        bool above = false;
        for (const Edge& edge : edges) {
            const int value = edge.value(x, y);
            below |= value < 0;
            above |= value > 0;
        }
        return !(below && above);
    }
};

// The four corners that the block gives in percent of the picture, as pixels and turned about the first
// pixel.
struct Quadrilateral {
    Point corners[4];

    Quadrilateral(const AmEffectParams& b, pixels::Extent size)
    {
        const int percentX[] = {b.work1, b.work2, b.work3, b.work4};
        const int percentY[] = {b.work5, b.work6, b.work7, b.work8};
        const double cosine = std::cos(b.workF);
        const double sine = std::sin(b.workF);
        for (std::size_t i = 0; i < 4; ++i) {
            const int x = percentX[i] * size.width / 100;
            const int y = percentY[i] * size.height / 100;
            corners[i] = {pixels::truncated(x * cosine + y * sine), pixels::truncated(y * cosine - x * sine)};
        }
    }
};

i32 photoWithSketch(const Frame& f)
{
    const u32* const reciprocals = dodgeReciprocals(f.block);
    if (!reciprocals)
        return kAmNoMemory;
    const int width = f.dst.width();
    const int height = f.dst.height();
    const auto [a, b, c, d] = Quadrilateral(f.block, f.dst.extent()).corners;
    const auto [left, right] = std::minmax({a.x, b.x, c.x, d.x});
    const auto [bottom, top] = std::minmax({a.y, b.y, c.y, d.y});
    const int first = std::max(left, 1);
    const int end = std::min(right + 1, width - 1);
    const auto inside = [one = Triangle(a, b, c), two = Triangle(a, c, d)](
                            int x, int y) { return one.contains(x, y) || two.contains(x, y); };

    rows::anyOrderRuns(f.dst.extent(), [&, bottom = bottom, top = top](int firstRow, int endRow) {
        copyRows(f, firstRow, endRow);
        firstRow = std::max({firstRow, bottom, 1});
        endRow = std::min({endRow, top + 1, height - 1});
        pixels::eachMadeRow(firstRow, endRow, width, GreyMaker{f.src}, [&](int y, RowsAround greys) {
            const Scratch<u8> sketch{std::size_t(width)};
            drawWithPencil(greys, reciprocals, sketch.data(), width);
            pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), drawn = sketch.data()] {
                pixels::mapColumns(from, to, first, end,
                    [=](int x, Bgra p) { return inside(x, y) ? pixels::grey(p, drawn[x]) : p; });
            });
        });
    });
    return kAmOk;
}

// The grey picture with a pencil drawing of it as an overlay.
i32 shadow(const Frame& f)
{
    const u32* const reciprocals = dodgeReciprocals(f.block);
    if (!reciprocals)
        return kAmNoMemory;
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::kept, GreyMaker{f.src}, [&](int y, RowsAround greys) {
        const Scratch<u8> sketch{std::size_t(width)};
        drawWithPencil(greys, reciprocals, sketch.data(), width);
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), drawn = sketch.data()] {
            pixels::mapColumns(from, to, 1, width - 1, [=](int x, Bgra p) {
                const int v = drawn[x];
                const int g = greys.row[x];
                const int light = 255 - ((255 - v) * (255 - g) >> 7);
                return pixels::grey(p, u8(v >= 129 ? light : v * g >> 7));
            });
        });
    });
    return kAmOk;
}

// to[x] = 255 less the steepness of the greys around x, not below 0, for 1 <= x < width - 1.
void outline(RowsAround greys, u8* to, int width)
{
    const Scratch<i16> smoothed{std::size_t(width)};
    const Scratch<i16> sloped{std::size_t(width)};
    pixels::widest([=, smooth = smoothed.data(), slope = sloped.data()] {
        pixels::eachIndex(0, width, [=](int x) {
            smooth[x] = i16(greys.below[x] + 2 * greys.row[x] + greys.above[x]);
            slope[x] = i16(greys.above[x] - greys.below[x]);
        });
        pixels::eachIndex(1, width - 1, [=](int x) {
            const int dx = smooth[x + 1] - smooth[x - 1];
            const int dy = slope[x - 1] + 2 * slope[x] + slope[x + 1];
            const int steepness = int(std::sqrt(float(dx * dx + dy * dy)));
            to[x] = u8(255 - std::min(steepness, 255));
        });
    });
}

// The picture twice as bright, darkened where its greys are steep.
i32 wash(const Frame& f)
{
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::kept, GreyMaker{f.src}, [&](int y, RowsAround greys) {
        const Scratch<u8> lightness{std::size_t(width)};
        outline(greys, lightness.data(), width);
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), k = lightness.data()] {
            pixels::mapColumns(from, to, 1, width - 1, [=](int x, Bgra p) -> Bgra {
                const auto washed = [light = k[x]](
                                        int c) { return u8((std::min(2 * c, 255) * light + 255) >> 8); };
                return {washed(p.b), washed(p.g), washed(p.r), p.a};
            });
        });
    });
    return kAmOk;
}

constexpr ByteTable kComic = [] {
    constexpr ByteTable first = curveThrough({0, 21, 118, 255, 255});
    constexpr ByteTable second = curveThrough({0, 162, 188, 212, 225});
    return pixels::tableOf([=](int i) { return second[first[std::size_t(i)]]; });
}();

i32 comic(const Frame& f)
{
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::kept, [&](int y, RowsAround around) {
        const pixels::View row = f.dst.rows(y, y + 1);
        pixels::sharpenRow(around, row.row(0).data(), width);
        pixels::mapTables(row, row, {kComic, kComic, kComic}, 1, width - 1);
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 66,
        .entry = {.place = 64, .name = "PhotoWithSkecth", .guid = "FC9825B7-ADE7-41ba-8B83-B6C8085E2E39"},
        .shown = {.title = "Photo with Sketch",
            .summary = "A pencil sketch in a tilted frame inside the photo."},
        .prepare = placeSketch,
        .needsCopy = true,
        .apply = photoWithSketch},
    {.id = 83,
        .entry = {.place = 109, .name = "Shadow", .guid = "D4A1FDF7-FD14-490e-8D29-177AEC4DED39"},
        .shown = {.title = "Shadow", .summary = "A pencil sketch laid over the grey picture."},
        .needsCopy = true,
        .apply = shadow},
    {.id = 84,
        .entry = {.place = 110, .name = "Wash", .guid = "647304F8-B2DC-4200-B8B2-E8FF95020A44"},
        .shown = {.title = "Wash", .summary = "Bright colours with dark outlines."},
        .needsCopy = true,
        .apply = wash},
    {.id = 85,
        .entry = {.place = 111, .name = "Comic", .guid = "BAC37FE1-0A77-4dca-9C45-2FDFE66F3D46"},
        .shown = {.title = "Comic", .summary = "Sharpened and brightened like a printed comic."},
        .needsCopy = true,
        .apply = comic},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
