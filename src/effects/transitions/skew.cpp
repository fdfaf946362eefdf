// Soft bands along a diagonal: their weight depends on the level distance to the diagonal alone.
#include "effects/transitions/families.h"

namespace transitions {

namespace {

constexpr int kSoft = 80;

// Weights by distance; pixels at distances in [first, last) are drawn, the others are `from`.
struct Profile {
    template <class Weight> Profile(int from, int end, Weight weight) : weights(end), first(from), last(end)
    {
        for (int d = first; d < last; ++d)
            weights[std::size_t(d)] = u8(weight(d));
    }

    Scratch<u8> weights;
    int first;
    int last;
};

// The weight at distance d while opening, once n exceeds the width: the soft edge ends at the picture's far
// side and becomes narrower until nothing is left of it.
int wideWeight(int d, int width, int n)
{
    const int left = width - n + kSoft;
    return width - d < left ? (width - d) * 255 / left : 255;
}

Profile leftOpening(int width, int n)
{
    const auto weight = [=](int d) {
        return n > width ? wideWeight(d, width, n) : n - d < kSoft + 1 ? (n - d) * 255 / kSoft : 255;
    };
    return {0, std::min(n, width), weight};
}

Profile rightOpening(int width, int n)
{
    const auto weight = [=](int d) {
        const int e = n - kSoft - d;
        return n > width ? wideWeight(d, width, n) : e < kSoft + 1 ? e * 255 / kSoft : 255;
    };
    return {0, n <= width ? std::max(n - kSoft, 0) : width, weight};
}

Profile closing(int width, int m)
{
    const auto weight = [=](int d) {
        const int e = d - m + kSoft;
        return m >= kSoft ? (e < kSoft + 1 ? e * 255 / kSoft : 255) : d < m ? d * 255 / m : 255;
    };
    return {std::clamp(m - kSoft, 0, width), width, weight};
}

enum class Diagonal { fromTopLeft, fromTopRight };

// Draws the columns at distances [first, last) to the right (step 1) or to the left (step -1) of `centre`.
template <PixelBlend blend>
void drawSide(const Line& line, int centre, int step, int first, int last, const u8* weights)
{
    const int low = step > 0 ? centre + first : centre - last + 1;
    const int high = step > 0 ? centre + last : centre - first + 1;
    line.mix(low, high, [=](Bgra f, Bgra t, int x) { return blend(f, t, weights[(x - centre) * step]); });
}

template <PixelBlend blend> void drawProfile(const Canvas& c, const Profile& profile, Diagonal diagonal)
{
    const u8* const weights = profile.weights.data();
    drawRows(c, [=, first = profile.first, last = profile.last, height = c.height](const Line& line) {
        const int along = pixels::truncated(float(line.v) * float(line.width) / float(height));
        const int centre = diagonal == Diagonal::fromTopLeft ? along : line.width - 1 - along;
        line.copy(line.from, 0, centre - last + 1);
        drawSide<blend>(line, centre, -1, std::max(first, 1), last, weights);
        line.copy(line.from, centre - first + 1, centre + first);
        drawSide<blend>(line, centre, 1, first, last, weights);
        line.copy(line.from, centre + last, line.width);
    });
}

constexpr PixelBlend kColours = coloursOf<pixels::shiftBlend>;
constexpr PixelBlend kAllBytes = pixels::shiftBlend;

} // namespace

void skewLeftSplit(const Canvas& c, const Progress& p)
{
    drawProfile<kColours>(c, leftOpening(c.width, p.smoothedAmount(c.width + kSoft)), Diagonal::fromTopLeft);
}

void skewRightSplit(const Canvas& c, const Progress& p)
{
    drawProfile<kAllBytes>(
        c, rightOpening(c.width, p.smoothedAmount(c.width + kSoft)), Diagonal::fromTopRight);
}

void skewLeftMerge(const Canvas& c, const Progress& p)
{
    drawProfile<kColours>(c, closing(c.width, p.smoothedRestAmount(c.width + kSoft)), Diagonal::fromTopLeft);
}

void skewRightMerge(const Canvas& c, const Progress& p)
{
    drawProfile<kColours>(c, closing(c.width, p.smoothedRestAmount(c.width + kSoft)), Diagonal::fromTopRight);
}

} // namespace transitions
