// Sharpening, blurring, edges and pencil drawings: a pixel's new colour follows from the 3x3 pixels around
// it.
#include "effects/am/amFilters.h"
#include "effects/am/neighbours.h"
#include "pixels/numbers.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::clampByte;

constexpr int corners(const Neighbours& n) { return n.belowLeft + n.belowRight + n.aboveLeft + n.aboveRight; }
constexpr int sides(const Neighbours& n) { return n.below + n.left + n.right + n.above; }

constexpr int largest(const Neighbours& n)
{
    const int below = std::max(std::max(n.belowLeft, n.below), n.belowRight);
    const int here = std::max(std::max(n.left, n.centre), n.right);
    const int above = std::max(std::max(n.aboveLeft, n.above), n.aboveRight);
    return std::max(std::max(below, here), above);
}

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
    eachByteFromNeighbours(
        f, Border::kept, [](Neighbours n) { return clampByte(9 * n.centre - sides(n) - corners(n)); });
    return kAmOk;
}

i32 blur(const Frame& f)
{
    eachByteFromNeighbours(
        f, Border::kept, [](Neighbours n) { return (4 * n.centre + 2 * sides(n) + corners(n)) >> 4; });
    return kAmOk;
}

i32 sketch(const Frame& f)
{
    eachGreyFromNeighbours(
        f, [ground = percentOf(f.block)](Neighbours n) { return 255 - ((edge(n) + ground) >> 1); });
    return kAmOk;
}

i32 neon(const Frame& f)
{
    eachByteFromNeighbours(
        f, Border::black, [least = percentOf(f.block)](Neighbours n) { return std::max(edge(n), least); });
    return kAmOk;
}

// 2^24 / d for 0 < d < 512. The nearest single-precision quotient never rounds up to an integer: what is
// missing to the next one is at least 1 / d of it, more than half of the last place.
inline u32 reciprocal(int d) { return u32(int(16777216.0f / float(d))); }

// A colour dodge against the brightest neighbour.
i32 pencil(const Frame& f)
{
    eachGreyFromNeighbours(f, [](Neighbours n) {
        const int most = largest(n);
        const u32 dodged = reciprocal(std::max(most, 1)) * u32(n.centre) >> 16;
        return most == 0 ? 255 : int(std::min(dodged, 255u));
    });
    return kAmOk;
}

// The same for each channel, a little darker; a byte among zeros is zero, and so is its product.
i32 colourPencil(const Frame& f)
{
    eachByteFromNeighbours(
        f, Border::black, [](Neighbours n) { return int(reciprocal(largest(n) + 8) * u32(n.centre) >> 16); });
    return kAmOk;
}

// Bytes move towards white, the less the darker they are and the more their brightest neighbour exceeds
// them. Both roundings downwards are exact in single precision: no quotient or root comes that close to the
// integer above it.
i32 colourSketch(const Frame& f)
{
    eachByteFromNeighbours(f, Border::blackSides, [](Neighbours n) {
        const int c = n.centre;
        const int excess = largest(n) - c;
        const int root = int(std::sqrt(float(c + 1)));
        const int weight = int(float(3584 * (root + 1)) / float(10 * (excess + 2 + 2 * root)));
        return c + ((255 - c) * weight >> 8);
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {1026, sharp},
    {1027, blur},
    {1028, sketch},
    {1029, neon},
    {1038, pencil},
    {1039, colourPencil},
    {1040, colourSketch},
};
static_assert(idsAscend(kRows));

} // namespace

std::span<const EffectRow> stencilFilters() { return kRows; }

} // namespace KEXSDK::am
