// Sharpening, blurring, edges and pencil drawings: a pixel's new colour follows from the 3x3 pixels around
// it.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/local/pencilQuotients.h"
#include "effects/am/loops/pencil.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/byteQuotient.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::Border;
using pixels::Neighbours;
using pixels::RowsAround;
using pixels::Scratch;

constexpr int corners(const Neighbours& n) { return n.belowLeft + n.belowRight + n.aboveLeft + n.aboveRight; }
constexpr int sides(const Neighbours& n) { return n.below + n.left + n.right + n.above; }

// Sobel's two gradients; each counts up to 255.
constexpr int edge(const Neighbours& n)
{
    const int up = n.aboveLeft + 2 * n.above + n.aboveRight - n.belowLeft - 2 * n.below - n.belowRight;
    const int across = n.belowRight + 2 * n.right + n.aboveRight - n.belowLeft - 2 * n.left - n.aboveLeft;
    const int vertical = std::min(up < 0 ? -up : up, 255);
    const int horizontal = std::min(across < 0 ? -across : across, 255);
    return std::min(vertical + horizontal, 255);
}

i32 sharp(const Frame& f)
{
    pixels::stencilRows(f.src, f.dst, Border::kept,
        [&](int y, RowsAround around) { pixels::sharpenRow(around, f.dst.row(y).data(), f.dst.width()); });
    return kAmOk;
}

i32 blur(const Frame& f)
{
    pixels::stencil(f.src, f.dst, Border::kept,
        [](Neighbours n) { return (4 * n.centre + 2 * sides(n) + corners(n)) >> 4; });
    return kAmOk;
}

// Sketch, and the effects after it, calculate what the library defines as tables; they clear the table's mark
// all the same, as callers expect.
i32 sketch(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    const int width = f.dst.width();
    const int ground = percentOf(f.block);
    pixels::stencilRows(f.src, f.dst, Border::kept, GreyMaker{f.src}, [&](int y, RowsAround greys) {
        const Scratch<u8> lines{std::size_t(width)};
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), drawn = lines.data()] {
            pixels::mapNeighbours<1>(
                greys, drawn, width, [=](Neighbours n) { return 255 - ((edge(n) + ground) >> 1); });
            pixels::mapColumns(
                from, to, 1, width - 1, [=](int x, Bgra p) { return pixels::grey(p, drawn[x]); });
        });
    });
    return kAmOk;
}

i32 neon(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    pixels::stencil(f.src, f.dst, Border::black,
        [least = percentOf(f.block)](Neighbours n) { return std::max(edge(n), least); });
    return kAmOk;
}

// Entry k is 2^24 / k; entry 0 is 0.
constexpr auto kReciprocals = [] {
    std::array<u32, 256> values{};
    for (u32 k = 1; k < values.size(); ++k)
        values[k] = (1u << 24) / k;
    return values;
}();

// A colour dodge against the brightest neighbour.
i32 pencil(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::kept, GreyMaker{f.src}, [&](int y, RowsAround greys) {
        const Scratch<u8> largest{std::size_t(width)};
        pixels::largestOfNine(greys, 1, largest.data(), width);
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), most = largest.data(),
                           reciprocals = kReciprocals.data()] {
            pixels::mapColumns(from, to, 1, width - 1, [=](int x, Bgra p) {
                const u32 dodged = std::min(reciprocals[most[x]] * greys.row[x] >> 16, 255u);
                return pixels::grey(p, most[x] == 0 ? u8(255) : u8(dodged));
            });
        });
    });
    return kAmOk;
}

// For each byte of a row, the largest of the nine around it in its own channel.
class LargestAround {
public:
    LargestAround(RowsAround around, int width) : largest_(std::size_t(width))
    {
        pixels::largestOfNine(around, 4, reinterpret_cast<u8*>(largest_.data()), 4 * width);
    }
    const Bgra* row() const { return largest_.data(); }

private:
    Scratch<Bgra> largest_;
};

// The pencil's colour dodge in each channel, a little darker.
i32 colourPencil(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::black, [&](int y, RowsAround around) {
        const LargestAround largest(around, width);
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), brightest = largest.row()] {
            pixels::mapColumns(from, to, 1, width - 1, [=](int x, Bgra p) -> Bgra {
                const Bgra most = pixels::load(brightest + x);
                const auto inverse =
                    pixels::inversesOf(float(most.b + 8), float(most.g + 8), float(most.r + 8));
                return {dodged(p.b, most.b, inverse.first), dodged(p.g, most.g, inverse.second),
                    dodged(p.r, most.r, inverse.third), p.a};
            });
        });
    });
    return kAmOk;
}

// Entry c is 2 + 2 j, where j is trunc(sqrt(c + 1)).
constexpr pixels::ByteTable kTwiceRootAndOne = pixels::tableOf([](int c) {
    int root = 1;
    while ((root + 1) * (root + 1) <= c + 1)
        ++root;
    return u8(2 + 2 * root);
});

// Bytes move towards white, the less the darker they are and the more their brightest neighbour exceeds them:
// by lightening() of 256 parts of the way.
i32 colourSketch(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    const int width = f.dst.width();
    pixels::stencilRows(f.src, f.dst, Border::blackSides, [&](int y, RowsAround around) {
        const LargestAround largest(around, width);
        const SpareRow roots(width);
        pixels::mapTables(
            f.src.rows(y, y + 1), roots.view(), {kTwiceRootAndOne, kTwiceRootAndOne, kTwiceRootAndOne});
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), most = largest.row(),
                           twice = roots.view().row(0).data()] {
            pixels::mapColumns(from, to, 1, width - 1, [=](int x, Bgra p) {
                // No byte borrows from the next: none is larger than the largest.
                const Bgra excess =
                    pixels::fromWord(pixels::toWord(pixels::load(most + x)) - pixels::toWord(p));
                const Bgra root = pixels::load(twice + x);
                const auto inverse = pixels::inversesOf(
                    float(excess.b + root.b), float(excess.g + root.g), float(excess.r + root.r));
                const auto lightened = [](u32 c, u32 parts) { return c + ((255 - c) * parts >> 8); };
                // As one word, without a step through bytes: vectors keep their 32-bit lanes.
                return pixels::fromWord(lightened(p.b, lightening(root.b, inverse.first))
                    | lightened(p.g, lightening(root.g, inverse.second)) << 8
                    | lightened(p.r, lightening(root.r, inverse.third)) << 16 | u32(p.a) << 24);
            });
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1026,
        .entry = {.place = 92, .name = "Sharp", .guid = "6D784E7B-8337-4578-BCAB-DA6C4B4E6BE3"},
        .shown = {.title = "Sharpen", .summary = "Sharpens with the eight neighbours."},
        .apply = sharp},
    {.id = 1027,
        .entry = {.place = 93, .name = "Blur2", .guid = "1FF3A847-984D-4239-95A5-3874F722C46E"},
        .shown = {.title = "Slight Blur", .summary = "Blurs with the eight neighbours."},
        .apply = blur},
    {.id = 1028,
        .entry = {.place = 95, .name = "Sketch", .guid = "49BBB715-2B1E-4cf3-9A35-3C35ADFE0382"},
        .shown = {.title = "Edge Sketch", .summary = "Dark edges on a light ground."},
        .reads = {.percent = {"Ground Darkness", "darkness of the ground"}},
        .defaults = {.usageMask = 1},
        .apply = sketch},
    {.id = 1029,
        .entry = {.place = 94, .name = "Neon", .guid = "F338F0FA-9820-4b05-B118-72353D92B889"},
        .shown = {.title = "Neon", .summary = "Bright coloured edges on black."},
        .reads = {.percent = {"Least Brightness", "least brightness of every channel"}},
        .defaults = {.usageMask = 1},
        .apply = neon},
    {.id = 1038,
        .entry = {.place = 105, .name = "SketchB", .guid = "04E1E803-CB09-49cf-91C9-071B1BF67315"},
        .shown = {.title = "Pencil", .summary = "Grey pencil lines on white."},
        .apply = pencil},
    {.id = 1039,
        .entry = {.place = 106, .name = "ColorSketchB", .guid = "374A5455-21B3-46a0-85AB-46791911E835"},
        .shown = {.title = "Coloured Pencil", .summary = "Coloured pencil lines on white."},
        .apply = colourPencil},
    {.id = 1040,
        .entry = {.place = 107, .name = "ColorSketch", .guid = "2D0FCDC7-956B-469f-8E05-7B36CC2933FF"},
        .shown = {.title = "Colour Sketch", .summary = "Light colours with darker outlines."},
        .apply = colourSketch},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
