// Flips, mirrors and mosaic cells: whole pixels move, with their alpha.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"

#include <cstring>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ConstView;
using pixels::View;
namespace rows = pixels::rows;

// Exchanging a pair reads both ends before it writes either, so these work within one picture and from one
// to another alike.

struct Straight {
    static int at(int x, int) { return x; }
};
struct Reversed {
    static int at(int x, int width) { return width - 1 - x; }
};

template <class Order>
void exchange(const Bgra* srcA, const Bgra* srcB, Bgra* dstA, Bgra* dstB, int count, int width)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x) {
        const int partner = Order::at(x, width);
        u32 a;
        u32 b;
        std::memcpy(&a, srcA + x, 4);
        std::memcpy(&b, srcB + partner, 4);
        std::memcpy(dstA + x, &b, 4);
        std::memcpy(dstB + partner, &a, 4);
    }
}

// Reverses a row; the pixel in the middle of an odd width is its own partner.
void reverseRow(ConstView src, View dst, int y)
{
    const Bgra* const from = src.row(y).data();
    Bgra* const to = dst.row(y).data();
    exchange<Reversed>(from, from, to, to, (src.width() + 1) / 2, src.width());
}

i32 flipLR(const Frame& f)
{
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y)
                reverseRow(src, dst, y);
        });
    });
    return kAmOk;
}

// Exchanges the rows of the two halves, straight or reversed.
template <class Order> i32 flipRows(const Frame& f)
{
    const int height = f.dst.height();
    rows::anyOrderRuns({f.dst.width(), height / 2}, [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y) {
                const int mirrored = height - 1 - y;
                exchange<Order>(src.row(y).data(), src.row(mirrored).data(), dst.row(y).data(),
                    dst.row(mirrored).data(), src.width(), src.width());
            }
        });
    });
    return kAmOk;
}

i32 flipTB(const Frame& f)
{
    const int middle = f.dst.height() / 2;
    if (f.dst.height() % 2 && !f.inPlace())
        std::ranges::copy(f.src.row(middle), f.dst.row(middle).begin());
    return flipRows<Straight>(f);
}

i32 flipAll(const Frame& f)
{
    if (f.dst.height() % 2)
        reverseRow(f.src, f.dst, f.dst.height() / 2);
    return flipRows<Reversed>(f);
}

void mirrorRow(const Bgra* from, Bgra* to, int width)
{
#pragma GCC ivdep
    for (int x = 0; x < (width + 1) / 2; ++x) {
        u32 word;
        std::memcpy(&word, from + x, 4);
        std::memcpy(to + x, &word, 4);
        std::memcpy(to + (width - 1 - x), &word, 4);
    }
}

i32 mirrorLR(const Frame& f)
{
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y)
                mirrorRow(src.row(y).data(), dst.row(y).data(), src.width());
        });
    });
    return kAmOk;
}

void copyRow(std::span<const Bgra> from, std::span<Bgra> to)
{
    if (from.data() != to.data())
        std::memcpy(to.data(), from.data(), from.size_bytes());
}

i32 mirrorTB(const Frame& f)
{
    rows::anyOrder({f.dst.width(), (f.dst.height() + 1) / 2}, [&](int y) {
        const auto from = f.src.row(y);
        copyRow(from, f.dst.row(y));
        copyRow(from, f.dst.pictureRow(y));
    });
    return kAmOk;
}

// Columns and rows that do not fill a cell form narrower cells; a single one is left as it is.
class Mosaic {
public:
    Mosaic(const Frame& f, int cell)
        : src_(f.src),
          dst_(f.dst),
          cell_(cell),
          restX_(f.dst.width() % cell),
          restY_(f.dst.height() % cell)
    {
    }

    // A band's first row is drawn, the others are its copies.
    void drawBands() const
    {
        const int bands = dst_.height() / cell_;
        rows::anyOrder({dst_.width() * cell_, bands}, [&](int band) {
            const int y = band * cell_;
            drawRow(y + (cell_ >> 1), cell_ >> 1, y);
            repeatRow(y, cell_);
        });
        const int y = bands * cell_;
        if (restY_ > 1) {
            drawRow(y, 0, y);
            repeatRow(y, restY_);
        } else if (restY_ == 1) {
            copyRow(src_.row(y), dst_.row(y));
        }
    }

private:
    int cellsEnd() const { return dst_.width() - restX_; }

    // Row y of dst from one row of src: the pixel at `offset` inside each cell fills the cell's columns.
    void drawRow(int sourceRow, int offset, int y) const
    {
        const auto from = src_.row(sourceRow);
        const auto to = dst_.row(y);
        for (int x = 0; x < cellsEnd(); x += cell_)
            std::fill_n(to.begin() + x, cell_, from[std::size_t(x + offset)]);
        if (restX_ > 1)
            std::fill_n(to.begin() + cellsEnd(), restX_, Bgra(src_.row(y)[std::size_t(cellsEnd())]));
        else if (restX_ == 1)
            to.back() = src_.row(y).back();
    }

    void repeatRow(int y, int count) const
    {
        const int drawn = restX_ == 1 ? dst_.width() - 1 : dst_.width();
        for (int i = 1; i < count; ++i) {
            std::memcpy(dst_.row(y + i).data(), dst_.row(y).data(), std::size_t(drawn) * 4);
            if (restX_ == 1)
                dst_.row(y + i).back() = src_.row(y + i).back();
        }
    }

    ConstView src_;
    View dst_;
    int cell_;
    int restX_;
    int restY_;
};

i32 mosaic(const Frame& f)
{
    Mosaic(f, (std::clamp(f.block.percent, 1, 100) + 7) >> 3).drawBands();
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 2,
        .entry = {.place = 2, .name = "AmMosaic", .guid = "AEA88997-7954-4974-8E58-457073A0BC99"},
        .shown = {.title = "Mosaic Cells", .summary = "Square cells of one colour."},
        .reads = {.percent = {"Cell Size", "cell size, 100 for 13 pixels"}},
        .defaults = {.usageMask = 1},
        .alpha = Alpha::computed,
        .apply = mosaic},
    {.id = 19,
        .entry = {.place = 19, .name = "FlipLR", .guid = "CD9DCD75-DC0E-4f7a-8484-52778D9FB202"},
        .shown = {.title = "Flip Left and Right", .summary = "Swaps left and right."},
        .alpha = Alpha::computed,
        .apply = flipLR},
    {.id = 20,
        .entry = {.place = 20, .name = "FlipTB", .guid = "7ADBCFB3-ACCF-4c5c-B188-A7537AED400D"},
        .shown = {.title = "Flip Top and Bottom", .summary = "Swaps top and bottom."},
        .alpha = Alpha::computed,
        .apply = flipTB},
    {.id = 21,
        .entry = {.place = 21, .name = "FlipAll", .guid = "9B6A315E-2CEA-42b0-ABB2-A20FB790A433"},
        .shown = {.title = "Half Turn", .summary = "Turns the picture by 180 degrees."},
        .alpha = Alpha::computed,
        .apply = flipAll},
    {.id = 22,
        .entry = {.place = 22, .name = "MirrorLR", .guid = "4D34F72D-3307-4f4a-9BED-72E6B7B8FF99"},
        .shown = {.title = "Mirror Left Half", .summary = "Mirrors the left half onto the right one."},
        .alpha = Alpha::computed,
        .apply = mirrorLR},
    {.id = 23,
        .entry = {.place = 23, .name = "MirrorTB", .guid = "BE80CF63-1E35-4b1f-92A3-B1FACD636AEA"},
        .shown = {.title = "Mirror Bottom Half", .summary = "Mirrors the bottom half onto the top one."},
        .alpha = Alpha::computed,
        .apply = mirrorTB},
};
static_assert(isSound(kRows));

const Registered registered{Family::filter, kRows};

} // namespace

} // namespace KEXSDK::am
