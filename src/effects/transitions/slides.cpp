// Whole rows or parts of rows moved: wipes, bars, pushes, drops and blinds with hard edges.
#include "effects/transitions/families.h"

#include <cmath>

namespace transitions {

namespace {

// Draws a row whose first `n` pixels are `to` and the rest `from`.
void wipeRow(const Line& line, int n)
{
    line.copy(line.to, 0, n);
    line.copy(line.from, n, line.width);
}

// A whole row of a picture, counted from the top.
struct SourceRow {
    pixels::ConstView picture;
    int v;
};
// Draws every row as a copy: source(v) gives the SourceRow for row v from the top.
template <class Source> void moveRows(const Canvas& c, Source source)
{
    drawRows(c, [=](const Line& line) {
        const SourceRow from = source(line.v);
        line.copy(from.picture.pictureRow(from.v).data(), 0, line.width);
    });
}

// Copies `count` pixels of `source`, from column `at` on, to the row from column x on.
void shift(const Line& line, const Bgra* source, int at, int x, int count)
{
    std::memcpy(line.dst + x, source + at, std::size_t(count) * 4);
}

// The front of the cosine whisk and slide: how far `to` has come in a row from the top.
struct CosineFront {
    int rows;
    int columns;

    CosineFront(const Canvas& c, const Progress& p)
        : rows(pixels::truncated(p.smoothedPart(c.height) * 2)),
          columns(pixels::truncated(p.smoothedPart(c.width) * 2))
    {
    }

    int reach(int v) const
    {
        if (v >= rows)
            return 0;
        return pixels::truncated((std::cos(double(v) / rows * 3.1415926535) + 1) * columns * 0.5);
    }

    static bool fromLeft(int v) { return v % 8 < 4; }
};

} // namespace

void eraseSlide(const Canvas& c, const Progress& p)
{
    const int n = p.smoothedAmount(c.width);
    drawRows(c, [=](const Line& line) { wipeRow(line, n); });
}

void bar(const Canvas& c, const Progress& p)
{
    constexpr int kStep = 32;
    const int n = p.linearAmount(((c.height + 31) / kStep + (c.width + 31) / kStep) * kStep);
    drawRows(
        c, [=](const Line& line) { wipeRow(line, std::clamp(n - kStep * (line.v / kStep), 0, line.width)); });
}

void push(const Canvas& c, const Progress& p)
{
    const int n = p.linearAmount(c.width);
    drawRows(c, [=](const Line& line) {
        shift(line, line.to, line.width - n, 0, n);
        shift(line, line.from, 0, n, line.width - n);
    });
}

void rowCosWhisk(const Canvas& c, const Progress& p)
{
    const CosineFront front(c, p);
    drawRows(c, [=](const Line& line) {
        const int reach = std::min(front.reach(line.v), line.width);
        if (front.fromLeft(line.v))
            line.colourBand(0, reach);
        else
            line.colourBand(line.width - reach, line.width);
    });
}

void rowCosSlide(const Canvas& c, const Progress& p)
{
    const CosineFront front(c, p);
    drawRows(c, [=](const Line& line) {
        const int reach = std::min(front.reach(line.v), line.width);
        if (front.fromLeft(line.v)) {
            shift(line, line.to, line.width - reach, 0, reach);
            line.copy(line.from, reach, line.width);
        } else {
            line.copy(line.from, 0, line.width - reach);
            shift(line, line.to, 0, line.width - reach, reach);
        }
    });
}

void topple(const Canvas& c, const Progress& p)
{
    const int n = pixels::truncated(p.smoothedTime() / p.total() * float(c.height));
    const int squeezed = c.height - n;
    moveRows(c, [=](int v) -> SourceRow {
        const int r = c.height - 1 - v;
        if (r >= squeezed)
            return {c.to, v + squeezed};
        return {c.from, c.height - 1 - r * c.height / squeezed};
    });
}

void drop(const Canvas& c, const Progress& p)
{
    constexpr int kBand = 32;
    const int fallen = p.linearAmount(2.0 * c.height);
    // Bands fall one after the other, the lowest first, each kBand rows of travel after the one below: fallen
    // bands lie two heights apart.
    const int untouched = kBand * ((c.height + kBand - 1) / kBand - 1);
    moveRows(c, [=](int v) -> SourceRow {
        if (fallen - untouched + v / kBand * kBand <= 0)
            return {c.from, v};
        const int place = v - fallen + untouched;
        const int band = place / (2 * kBand);
        const int row = band * kBand + place % (2 * kBand);
        const bool falling = place >= 0 && place % (2 * kBand) < kBand && row < c.height
            && fallen - untouched + band * kBand > 0;
        return falling ? SourceRow{c.from, row} : SourceRow{c.to, v};
    });
}

void dropBounce(const Canvas& c, const Progress& p)
{
    const double t = p.time();
    const double total = p.total();
    double height = t;
    if (t <= 0.4 * total) {
        height = 6.25 * t * t / total;
    } else if (t <= 0.8 * total) {
        const double u = t - 0.4 * total;
        height = total - 1.25 * u + 3.125 * u * u / total;
    } else if (t < total - 0.01) {
        const double u = t - 0.8 * total;
        height = total - 0.625 * u + 3.125 * u * u / total;
    }
    const float fallen = float(c.height) * float(height) / p.total();
    const int n = std::clamp(pixels::roundHalfUp(fallen), 0, c.height);
    moveRows(c, [=](int v) -> SourceRow {
        return v < n ? SourceRow{c.to, c.height - n + v} : SourceRow{c.from, v};
    });
}

void depositUp(const Canvas& c, const Progress& p)
{
    int layer = pixels::truncated(c.height * 0.1);
    layer += layer % 2;
    if (layer == 0)
        return pixels::rows::copy(c.from, c.dst);
    const int h = c.height;
    const int layers = h / layer;
    const int travel = (layers + 1) * h - (layers + 1) * layers / 2 * layer + h % layer;
    const int n = p.smoothedAmount(travel);
    int landed = 0;
    while (landed < layers
        && pixels::roundHalfUp((landed + 1.0) * h - (landed + 1.0) * landed * layer * 0.5) < n)
        ++landed;
    const int top = n - (landed * h - (landed - 1) * landed / 2 * layer);
    drawRows(c, [=](const Line& line) {
        const int r = h - 1 - line.v;
        if (r >= h - landed * layer || (r >= top - layer && r < top))
            line.colour(0, line.width);
        else
            line.copy(line.from, 0, line.width);
    });
}

void blind(const Canvas& c, const Progress& p)
{
    const double percent = p.smoothed() * 100;
    if (percent > 99.999)
        return pixels::rows::copy(c.to, c.dst);
    const double rest = 100 - percent;
    const int slat = pixels::truncated(c.height * rest / 100);
    const int fromRows = pixels::truncated(slat * rest / 100);
    if (slat < 1)
        return;
    drawRows(c, [=, last = c.height - 1](const Line& line) {
        // Slats are counted from the bottom. The row at the top shows the end of the slat that reaches it,
        // and is not drawn at all when a slat would start there.
        if (line.v == 0 && last % slat == 0)
            return;
        const int place = line.v == 0 ? slat - 1 : (last - line.v) % slat;
        line.copy(place < fromRows ? line.from : line.to, 0, line.width);
    });
}

} // namespace transitions
