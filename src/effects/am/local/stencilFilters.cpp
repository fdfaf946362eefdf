// Sharpening, blurring, edges and pencil drawings: a pixel's new colour follows from the 3x3 pixels around
// it.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/loops/neighbours.h"
#include "effects/am/loops/pencil.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/byteQuotient.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;

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
    eachInnerRow(f, Border::kept,
        [&](int y) { sharpenRow(rowsAround(f.src, y), f.dst.row(y).data(), f.dst.width()); });
    return kAmOk;
}

i32 blur(const Frame& f)
{
    eachByteFromNeighbours(
        f, Border::kept, [](Neighbours n) { return (4 * n.centre + 2 * sides(n) + corners(n)) >> 4; });
    return kAmOk;
}

// Tables that the library keeps for what follows are calculated here; callers see their mark cleared.
i32 sketch(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    eachGreyFromNeighbours(
        f, [ground = percentOf(f.block)](Neighbours n) { return 255 - ((edge(n) + ground) >> 1); });
    return kAmOk;
}

i32 neon(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    eachByteFromNeighbours(
        f, Border::black, [least = percentOf(f.block)](Neighbours n) { return std::max(edge(n), least); });
    return kAmOk;
}

// 2^24 / k; nothing is divided by 0.
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
    eachGreyRowInside(f, [&](int y, GreyRows greys) {
        GreyRow largest;
        largestOfNine<1>(greys, largest.data(), width);
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

// The same for each channel, a little darker: (2^24 / d) * c >> 16 for d = largest + 8, both quotients
// rounded downwards. That is 256 c / d, rounded downwards, but a whole 256 c / d with a remainder in 2^24 / d
// comes out one lower. So the numerator is taken a little less there, and a little more where there is no
// remainder; both are far more than single precision errs.
i32 colourPencil(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    eachPixelByLargest(f, Border::black, [](Bgra p, Bgra largest) -> Bgra {
        const auto inverse =
            pixels::inversesOf(float(largest.b + 8), float(largest.g + 8), float(largest.r + 8));
        const auto dodged = [](int c, int most, float inverse) {
            const int d = most + 8;
            const float trace = (d & (d - 1)) == 0 ? 0.25f : -0.5f;
            return u8(int((float(256 * c) + trace) * inverse));
        };
        return {dodged(p.b, largest.b, inverse.first), dodged(p.g, largest.g, inverse.second),
            dodged(p.r, largest.r, inverse.third), p.a};
    });
    return kAmOk;
}

// 2 + 2 j of each byte c, j being its root: trunc(sqrt(c + 1)).
constexpr pixels::ByteTable kTwiceRootAndOne = pixels::tableOf([](int c) {
    int root = 1;
    while ((root + 1) * (root + 1) <= c + 1)
        ++root;
    return u8(2 + 2 * root);
});

// Bytes move towards white, the less the darker they are and the more their brightest neighbour exceeds
// them: (3584 (j + 1) / (excess + 2 + 2 j)) / 10 of 256, rounded downwards.
i32 colourSketch(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    eachInnerRow(f, Border::blackSides, [&](int y) {
        const int width = f.dst.width();
        ByteRow largest;
        SpareRow spare;
        const pixels::View roots = spare.view(width);
        largestOfNine<4>(rowsAround(f.src, y), largest.data(), 4 * width);
        pixels::mapTables(
            f.src.rows(y, y + 1), roots, {kTwiceRootAndOne, kTwiceRootAndOne, kTwiceRootAndOne});
        pixels::widest(
            [=, from = f.src.row(y).data(), to = f.dst.row(y).data(),
                most = reinterpret_cast<const Bgra*>(largest.data()), roots = roots.row(0).data()] {
                pixels::mapColumns(from, to, 1, width - 1, [=](int x, Bgra p) {
                    // No byte borrows from the next: none is larger than the largest.
                    const Bgra excess =
                        pixels::fromWord(pixels::toWord(pixels::load(most + x)) - pixels::toWord(p));
                    const Bgra root = pixels::load(roots + x);
                    const auto inverse = pixels::inversesOf(
                        float(excess.b + root.b), float(excess.g + root.g), float(excess.r + root.r));
                    const auto lightened = [](u32 c, int root, float inverse) {
                        // 1792 (j + 1) / 5, and a little more: than single precision errs, but less than it
                        // would take to the next integer.
                        const u32 weight = u32(int((float(root) * 179.2f + 0.05f) * inverse));
                        return c + ((255 - c) * weight >> 8);
                    };
                    // As one word, without a step through bytes: vectors keep their 32-bit lanes.
                    return pixels::fromWord(lightened(p.b, root.b, inverse.first)
                        | lightened(p.g, root.g, inverse.second) << 8
                        | lightened(p.r, root.r, inverse.third) << 16 | u32(p.a) << 24);
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
