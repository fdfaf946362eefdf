// Circles and diamonds about the centre.
#include "effects/transitions/families.h"

#include <cmath>

namespace transitions {

namespace {

constexpr int kSoft = 100;

constexpr Bgra floatBlend(Bgra from, Bgra to, int a)
{
    const auto byte = [a](u8 f, u8 t) { return pixels::floatBlend(f, t, a); };
    return {byte(from.b, to.b), byte(from.g, to.g), byte(from.r, to.r), from.a};
}

// Largest r with r * r <= n; -1 for negative n.
int wholeRoot(i64 n) { return n < 0 ? -1 : pixels::truncated(std::sqrt(double(n))); }

// The circle as one row sees it: the columns of the disc, and those of its inner part of full weight.
struct Chord {
    int first, last;
    int innerFirst, innerLast;
};

Chord chordOf(int radius, int centre, int dy)
{
    const i64 dy2 = i64(dy) * dy;
    const int half = wholeRoot(i64(radius) * radius - dy2);
    // The weight is full while the truncated distance is at most radius - kSoft.
    const i64 inner = radius - kSoft + 1;
    const int innerHalf = inner > 0 ? wholeRoot(inner * inner - 1 - dy2) : -1;
    return {centre - half, centre + half + 1, centre - innerHalf, centre + innerHalf + 1};
}

// Draws columns [first, last) of the soft edge: full weight kSoft pixels inside the circle, none on it.
template <PixelBlend blend>
void drawEdge(const Line& line, int first, int last, int radius, int centre, int dy)
{
    const int dy2 = dy * dy;
    line.mix(first, last, [=](Bgra f, Bgra t, int x) {
        // Single precision is exact here: it holds these squares, and no root just below an integer rounds up
        // to it.
        const int distance = int(std::sqrt(float((x - centre) * (x - centre) + dy2)));
        return coloursOf<blend>(f, t, std::clamp((radius - distance) * 255 / kSoft, 0, 255));
    });
}

// Half the width of the diamond in the row that lies `need` rows from its level axis: the columns whose
// half height reaches that far.
int diamondHalfWidth(int n, int need, int cx, int cy)
{
    int w = pixels::truncated((need - 0.5) * cx / cy) - 1;
    while (pixels::roundHalfUp(double(w) * cy / cx) < need)
        ++w;
    return n - w;
}

// Draws a circle of `to` with a soft edge, whose radius is `part` of the one at which it covers the picture.
template <PixelBlend blend> void drawDisc(const Canvas& c, double part)
{
    const double full =
        std::sqrt(double(c.width) * c.width + double(c.height) * c.height) * 0.5 + 0.5 + kSoft;
    const int radius = pixels::truncated(full * part);
    const int centre = roundedHalf(c.width);
    const int middle = roundedHalf(c.height);
    drawRows(c, [=](const Line& line) {
        const int dy = line.v - middle;
        const Chord chord = chordOf(radius, centre, dy);
        line.copy(line.from, 0, chord.first);
        drawEdge<blend>(line, chord.first, chord.innerFirst, radius, centre, dy);
        line.colour(chord.innerFirst, chord.innerLast);
        drawEdge<blend>(line, std::max(chord.innerFirst, chord.innerLast), chord.last, radius, centre, dy);
        line.copy(line.from, chord.last, line.width);
    });
}

// Draws a diamond of `to` that reaches n columns from the centre.
void drawDiamond(const Canvas& c, int n)
{
    if (n >= c.width || n == 0)
        return pixels::rows::copy(n == 0 ? c.from : c.to, c.dst);
    const int cx = roundedHalf(c.width);
    const int cy = roundedHalf(c.height);
    drawRows(c, [=, height = c.height](const Line& line) {
        const int r = height - 1 - line.v;
        const int half = diamondHalfWidth(n, std::max(cy - r, r - cy + 1), cx, cy);
        const int first = half < 0 ? line.width : cx - half;
        const int last = half < 0 ? line.width : cx + half + 1;
        line.copy(line.from, 0, first);
        line.copy(line.to, first, last);
        line.copy(line.from, last, line.width);
    });
}

// The pictures exchanged: with them, a closing shape is an opening one.
Canvas exchanged(const Canvas& c) { return {c.dst, c.to, c.from, c.width, c.height}; }

} // namespace

void roundZoomOut(const Canvas& c, const Progress& p) { drawDisc<floatBlend>(c, p.linear()); }

void roundZoomIn(const Canvas& c, const Progress& p)
{
    drawDisc<pixels::divisionBlend>(exchanged(c), p.linearRest());
}

void diamondZoomOut(const Canvas& c, const Progress& p) { drawDiamond(c, p.smoothedAmount(c.width)); }

void diamondZoomIn(const Canvas& c, const Progress& p)
{
    drawDiamond(exchanged(c), p.smoothedRestAmount(c.width));
}

} // namespace transitions
