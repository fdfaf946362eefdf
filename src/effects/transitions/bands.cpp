// Whisks, splits, merges and rectangles: hard edges along rows and columns.
#include "effects/transitions/families.h"

namespace transitions {

namespace {

constexpr int kBand = 10;

bool inEvenBand(int position) { return position % (2 * kBand) < kBand; }

// Copies the first n pixels of a row from `to` in even bands of rows, the last n in odd ones; answers the
// columns left over.
std::pair<int, int> whiskRow(const Line& line, int n)
{
    const bool even = inEvenBand(line.v);
    line.copy(line.to, even ? 0 : line.width - n, even ? n : line.width);
    return even ? std::pair{n, line.width} : std::pair{0, line.width - n};
}

void columnBands(const Scratch<u32>& even, const Scratch<u32>& odd)
{
    for (std::size_t x = 0; x < even.size(); ++x) {
        even[x] = inEvenBand(int(x)) ? kWholePixel : 0;
        odd[x] = ~even[x];
    }
}

// Draws the colours of `to` outside the columns [first, last), and `from` inside.
void colourAround(const Line& line, int first, int last)
{
    first = std::clamp(first, 0, line.width);
    last = std::clamp(last, first, line.width);
    line.colour(0, first);
    line.copy(line.from, first, last);
    line.colour(last, line.width);
}

} // namespace

void rowWhisk(const Canvas& c, const Progress& p)
{
    const int n = p.smoothedAmount(c.width);
    drawRows(c, [=](const Line& line) {
        const auto [first, last] = whiskRow(line, n);
        line.copy(line.from, first, last);
    });
}

void colWhisk(const Canvas& c, const Progress& p)
{
    const int n = p.smoothedAmount(c.height);
    const Scratch<u32> even(c.width);
    const Scratch<u32> odd(c.width);
    columnBands(even, odd);
    drawRows(c, [=, evenBands = even.data(), oddBands = odd.data(), height = c.height](const Line& line) {
        const bool fromTop = line.v < n;
        const bool fromBottom = line.v >= height - n;
        if (fromTop == fromBottom)
            line.copy(fromTop ? line.to : line.from, 0, line.width);
        else
            line.pick(fromTop ? evenBands : oddBands, 0, line.width);
    });
}

void crossWhisk(const Canvas& c, const Progress& p)
{
    const int columns = p.smoothedAmount(c.width);
    const int rows = p.smoothedAmount(c.height);
    const Scratch<u32> even(c.width);
    const Scratch<u32> odd(c.width);
    columnBands(even, odd);
    drawRows(c, [=, evenBands = even.data(), oddBands = odd.data(), height = c.height](const Line& line) {
        const bool fromTop = line.v < rows;
        const bool fromBottom = line.v >= height - rows;
        const auto [first, last] = whiskRow(line, columns);
        if (fromTop == fromBottom)
            line.copy(fromTop ? line.to : line.from, first, last);
        else
            line.pick(fromTop ? evenBands : oddBands, first, last);
    });
}

void rowSplit(const Canvas& c, const Progress& p)
{
    const int half = p.smoothedAmount(c.height) / 2;
    drawRows(c, [=, middle = c.height / 2](const Line& line) {
        if (half > 0 && std::abs(middle - line.v) <= half)
            line.colour(0, line.width);
        else
            line.copy(line.from, 0, line.width);
    });
}

void colSplit(const Canvas& c, const Progress& p)
{
    const int half = p.smoothedAmount(c.width) / 2;
    const int middle = c.width / 2;
    const int first = middle - half;
    const int last = half > 0 ? middle + half + 1 : first;
    drawRows(c, [=](const Line& line) { line.colourBand(first, last); });
}

void rowMerge(const Canvas& c, const Progress& p)
{
    const int half = p.smoothedRestAmount(c.height) / 2;
    drawRows(c, [=, middle = c.height / 2](const Line& line) {
        const bool showsFrom = line.v >= middle - half && line.v < middle + half;
        line.copy(showsFrom ? line.from : line.to, 0, line.width);
    });
}

void colMerge(const Canvas& c, const Progress& p)
{
    const int half = p.smoothedRestAmount(c.width) / 2;
    drawRows(c, [=, middle = c.width / 2](const Line& line) {
        colourAround(line, middle - half + 1, middle + half);
    });
}

void crossSplit(const Canvas& c, const Progress& p)
{
    const int halfWidth = p.smoothedAmount(c.width) / 2;
    const int halfHeight = p.smoothedAmount(c.height) / 2;
    drawRows(c, [=, height = c.height](const Line& line) {
        const int middle = line.width / 2;
        // The level bar is centred on a row counted in memory order.
        if (std::abs(height - 1 - line.v - height / 2) < halfHeight)
            return line.copy(line.to, 0, line.width);
        line.copy(line.from, 0, middle - halfWidth);
        line.copy(line.to, middle - halfWidth, middle + halfWidth);
        line.copy(line.from, middle + halfWidth, line.width);
    });
}

void crossMerge(const Canvas& c, const Progress& p)
{
    const int halfHeight = pixels::roundHalfUp(c.height * p.linearRest()) / 2;
    const int halfWidth = pixels::roundHalfUp(c.width * p.linearRest()) / 2;
    const int middleRow = roundedHalf(c.height);
    const int middleColumn = roundedHalf(c.width);
    drawRows(c, [=](const Line& line) {
        if (std::abs(middleRow - line.v) >= halfHeight)
            colourAround(line, middleColumn - halfWidth + 1, middleColumn + halfWidth);
        else
            line.copy(line.from, 0, line.width);
    });
}

void rectZoomIn(const Canvas& c, const Progress& p)
{
    const int halfHeight = pixels::roundHalfUp(c.height * p.linearRest()) / 2;
    const int halfWidth = pixels::roundHalfUp(c.width * p.linearRest()) / 2;
    const int middleRow = roundedHalf(c.height);
    const int middleColumn = roundedHalf(c.width);
    drawRows(c, [=](const Line& line) {
        const auto outside = [&line](int first, int last) {
            line.mix(
                first, last, [](Bgra f, Bgra t, int) { return coloursOf<pixels::shiftBlend>(f, t, 255); });
        };
        const bool crossed = std::abs(middleRow - line.v) < halfHeight;
        const int first = crossed ? middleColumn - halfWidth + 1 : line.width;
        const int last = crossed ? middleColumn + halfWidth : line.width;
        outside(0, first);
        line.copy(line.from, first, last);
        outside(last, line.width);
    });
}

void rectZoomOut(const Canvas& c, const Progress& p)
{
    const int halfHeight = p.linearAmount(c.height) / 2;
    const int halfWidth = p.linearAmount(c.width) / 2;
    drawRows(c, [=, middleRow = c.height / 2](const Line& line) {
        const int middle = line.width / 2;
        if (std::abs(middleRow - line.v) < halfHeight)
            line.colourBand(middle - halfWidth + 1, middle + halfWidth);
        else
            line.copy(line.from, 0, line.width);
    });
}

} // namespace transitions
