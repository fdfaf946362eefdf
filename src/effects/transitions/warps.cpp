// Pictures resampled: blocks, zoom, twirl and turn.
#include "effects/transitions/families.h"

#include <cmath>
#include <limits>

namespace transitions {

namespace {

constexpr double kPi = std::numbers::pi;

static_assert(
    pixels::kLargestSide <= std::numeric_limits<i16>::max(), "tables of columns and rows hold 16 bits");

// The centre of the block around a position; the last column and row of a picture are never asked for.
int blockCentre(int position, int block, int side)
{
    return std::clamp(position / block * block + block / 2, 0, std::max(side - 2, 0));
}

// Draws a row whose blocks show their centre.
void spreadBlocks(const Bgra* row, Bgra* out, int width, int block)
{
    for (int x = 0; x < width; x += block) {
        const Bgra centre = row[blockCentre(x, block, width)];
        const int end = std::min(x + block, width);
#pragma GCC ivdep
        for (int i = x; i < end; ++i)
            pixels::store(out + i, centre);
    }
}

void drawBlocks(const Canvas& c, pixels::ConstView picture, int block)
{
    const int width = std::max(block, 1);
    const int height = std::max(block * c.height / c.width, 1);
    drawRows(c, [=, rows = c.height](const Line& line) {
        const Bgra* const row = picture.pictureRow(blockCentre(line.v, height, rows)).data();
        spreadBlocks(row, line.dst, line.width, width);
    });
}

// A row of both pictures after resampling; over() gives a line with these in the place of its own.
struct Gathered {
    explicit Gathered(int width) : from(width), to(width) { }

    Scratch<Bgra> from;
    Scratch<Bgra> to;

    Line over(const Line& line) const { return {line.v, line.width, line.dst, from.data(), to.data()}; }
};

// For each position along a side, the one of the picture that shows there once it is scaled about its middle;
// -1 where it does not reach.
void findScaledPlaces(const Scratch<i16>& places, double scale)
{
    const int side = int(places.size());
    const int size = pixels::truncated(side * scale);
    const int edge = (side - size) >> 1;
    for (int i = 0; i < side; ++i) {
        const bool inside = i > edge && i < edge + size;
        places[std::size_t(i)] = i16(inside ? std::min(pixels::truncated((i - edge) / scale), side - 1) : -1);
    }
}

// A picture scaled and then turned, both about its middle; black around it, with the alpha that is there.
struct TurnedPicture {
    pixels::ConstView picture;
    const i16* columns; ///< as findScaledPlaces gives them
    const i16* rows;
    double cosine;
    double sine;

    void drawRow(const Line& line) const
    {
        const int height = picture.height();
        const int j = line.v - (height >> 1);
        const int alongColumns = int(j * sine + line.width / 2);
        const int alongRows = int(j * cosine);
        const Scratch<u16> turnedColumns(line.width);
        const Scratch<u16> turnedRows(line.width);
        // The loop reads the members' values from variables: the compiler must assume that stores change
        // members.
        const double across = cosine;
        const double down = sine;
#pragma GCC ivdep
        for (int x = 0; x < line.width; ++x) {
            // The sums are no larger than a few picture sides, so int holds them.
            const int i = x - (line.width >> 1);
            const int column = int(i * across + alongColumns);
            const int row = int(alongRows - i * down + height / 2);
            turnedColumns[std::size_t(x)] = u16(std::clamp(column, 0, line.width - 1));
            turnedRows[std::size_t(x)] = u16(std::clamp(row, 0, height - 1));
        }
        const i16* const columnAt = columns;
        const i16* const rowAt = rows;
        const pixels::ConstView shown = picture;
        Bgra* const to = line.dst;
        for (int x = 0; x < line.width; ++x) {
            const int column = columnAt[turnedColumns[std::size_t(x)]];
            const int row = rowAt[turnedRows[std::size_t(x)]];
            if (column >= 0 && row >= 0)
                to[x] = shown.pictureRow(row)[std::size_t(column)];
            else
                to[x] = {0, 0, 0, to[x].a};
        }
    }
};

} // namespace

void pixelate(const Canvas& c, const Progress& p)
{
    const int growing = pixels::truncated(p.linear() / 0.6 * 30);
    const int shrinking = pixels::truncated((1 - (p.linear() - 0.4) / 0.6) * 30);
    if (p.linear() < 0.4)
        return drawBlocks(c, c.from, growing);
    if (p.linear() >= 0.6)
        return drawBlocks(c, c.to, shrinking);
    const int a = 255 - pixels::truncated((0.6 - p.linear()) * 255 / 0.2);
    drawRows(c, [=](const Line& line) {
        const Gathered rows(line.width);
        spreadBlocks(c.from.pictureRow(blockCentre(line.v, growing, c.height)).data(), rows.from.data(),
            line.width, growing);
        spreadBlocks(c.to.pictureRow(blockCentre(line.v, shrinking, c.height)).data(), rows.to.data(),
            line.width, shrinking);
        rows.over(line).mixColours(
            0, line.width, [a](Bgra f, Bgra t, int) { return coloursOf<pixels::divisionBlend>(f, t, a); });
    });
}

void zoom(const Canvas& c, const Progress& p)
{
    if (p.atEnd()) {
        return drawRows(
            c, [](const Line& line) { line.mixColours(0, line.width, [](Bgra, Bgra t, int) { return t; }); });
    }
    const double grown = p.linear();
    const float zoomed = float(20 * grown + 1);
    const double opacity = std::min(3 * grown, 1.0);
    const int insetWidth = pixels::truncated(c.width * grown);
    const int insetHeight = pixels::truncated(c.height * grown);
    const auto behind = [=](int position, int side) {
        const float source = float(position - side / 2) / zoomed + float(side / 2);
        return std::clamp(pixels::truncated(source), 0, side - 1);
    };
    const auto inset = [=](int position, int side) {
        const double source = (position - side / 2) / grown + side / 2;
        return std::clamp(pixels::truncated(source), 0, side - 1);
    };
    const int centre = c.width / 2;
    const int reach = insetWidth > 5 ? std::max(insetWidth / 2, 1) : 1;
    const int first = centre - reach + 1;
    const int last = std::max(first, insetWidth > 5 ? centre + reach : first);
    const Scratch<u16> behindColumns(c.width);
    const Scratch<u16> insetColumns(c.width);
    for (int x = 0; x < c.width; ++x)
        behindColumns[std::size_t(x)] = u16(behind(x, c.width));
    for (int x = first; x < last; ++x)
        insetColumns[std::size_t(x)] = u16(inset(x, c.width));

    drawRows(c, [=, fromColumns = behindColumns.data(), toColumns = insetColumns.data()](const Line& line) {
        const Gathered rows(line.width);
        const Bgra* const from = c.from.pictureRow(behind(line.v, c.height)).data();
        for (int x = 0; x < line.width; ++x)
            rows.from[std::size_t(x)] = from[fromColumns[x]];
        const Line gathered = rows.over(line);
        const auto plain = [](Bgra f, Bgra, int) { return f; };
        if (std::abs(line.v - c.height / 2) >= insetHeight / 2)
            return gathered.mixColours(0, line.width, plain);
        const Bgra* const to = c.to.pictureRow(inset(line.v, c.height)).data();
        for (int x = first; x < last; ++x)
            rows.to[std::size_t(x)] = to[toColumns[x]];
        gathered.mixColours(0, first, plain);
        gathered.mixColours(first, last, [opacity](Bgra f, Bgra t, int) {
            const auto byte = [=](int b, int i) { return u8(int(i * opacity + b * (1 - opacity))); };
            return Bgra{byte(f.b, t.b), byte(f.g, t.g), byte(f.r, t.r), 0};
        });
        gathered.mixColours(last, line.width, plain);
    });
}

void twrl(const Canvas& c, const Progress& p)
{
    const double half = p.total() / 2.0;
    if (p.atEnd() || p.time() == half) {
        const u32 shown = p.atEnd() ? kColourBytes : 0;
        return drawRows(c, [=](const Line& line) {
            line.mixColours(
                0, line.width, [=](Bgra, Bgra t, int) { return pixels::fromWord(toWord(t) & shown); });
        });
    }
    const bool growing = p.time() > half;
    const double passed = growing ? p.time() - half : p.time();
    const double angle = passed / half * 2 * kPi;
    const double scale = (growing ? passed : half - passed) * 0.95 / half + 0.05;
    const Scratch<i16> columns(c.width);
    const Scratch<i16> rows(c.height);
    findScaledPlaces(columns, scale);
    findScaledPlaces(rows, scale);
    drawRows(c,
        [turned = TurnedPicture{growing ? c.to : c.from, columns.data(), rows.data(), std::cos(angle),
             std::sin(angle)}](const Line& line) { turned.drawRow(line); });
}

void turn(const Canvas& c, const Progress& p)
{
    const double s = p.smoothed();
    if (s < 0.01 || s > 0.99)
        return pixels::rows::copy(s < 0.01 ? c.from : c.to, c.dst);
    const bool facing = s >= 0.5;
    const pixels::ConstView picture = facing ? c.to : c.from;
    const double cosine = std::cos((facing ? 1 - s : s) * kPi);
    const int low = pixels::roundHalfUp((1 - cosine) * c.height / 2);
    const int high = pixels::truncated((cosine + 1) * c.height / 2 - 0.5);
    const int tilt = facing ? c.height / 2 - low : high - c.height / 2;
    const int narrow = c.width / 2 + tilt * (c.width - c.width / 2) / c.height * 2;

    drawRows(c, [=](const Line& line) {
        const int r = c.height - 1 - line.v;
        int first = line.width;
        int last = line.width;
        if (r >= low && r < high) {
            const int i = r - low;
            const int fromNarrow = facing ? i : high - low - i;
            const double wide = fromNarrow * (2.0 * (line.width - narrow)) / (high - low) + narrow;
            const int edge = pixels::truncated((line.width - wide) * 0.5);
            const int span = line.width - 2 * edge;
            const Bgra* const source =
                picture.row(std::min(pixels::truncated(i / cosine + 0.5), c.height - 1)).data();
            first = std::max(edge, 0);
            last = std::max(first, std::min(line.width - edge, line.width));
            // column = (x - edge) * width / span without a division per pixel
            int column = span > 0 ? (first - edge) * line.width / span : 0;
            int rest = span > 0 ? (first - edge) * line.width % span : 0;
            for (int x = first; x < last; ++x) {
                line.dst[x] = source[column];
                column += line.width / span;
                rest += line.width % span;
                if (rest >= span) {
                    rest -= span;
                    ++column;
                }
            }
        }
        std::fill(line.dst, line.dst + std::min(first, line.width), Bgra{});
        std::fill(line.dst + last, line.dst + line.width, Bgra{});
    });
}

} // namespace transitions
