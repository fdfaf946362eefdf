// Reduction to a few colours: a table gives the nearest one for every 5-bit colour.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"

#include <array>
#include <cstring>
#include <limits>

namespace KEXSDK::am {

namespace {

struct Colour {
    u8 r, g, b;
};

// The sixteen colours of an early screen.
constexpr Colour kScreenColours[] = {
    {0, 0, 0},
    {0, 0, 255},
    {0, 128, 0},
    {0, 255, 255},
    {255, 0, 0},
    {255, 0, 255},
    {165, 42, 42},
    {211, 211, 211},
    {169, 169, 169},
    {173, 216, 230},
    {144, 238, 144},
    {144, 238, 238},
    {238, 144, 144},
    {238, 144, 238},
    {255, 255, 0},
    {255, 255, 255},
};

// Poster colours. Of equal ones the first counts.
constexpr Colour kPosterColours[] = {
    {255, 255, 255},
    {255, 0, 0},
    {0, 255, 0},
    {0, 0, 255},
    {255, 0, 255},
    {0, 255, 255},
    {255, 255, 0},
    {0, 0, 0},
    {92, 51, 23},
    {159, 95, 159},
    {181, 166, 66},
    {217, 217, 25},
    {166, 125, 61},
    {140, 120, 83},
    {95, 159, 159},
    {217, 135, 25},
    {184, 115, 51},
    {255, 127, 0},
    {66, 66, 111},
    {92, 64, 51},
    {47, 79, 47},
    {74, 118, 110},
    {79, 79, 47},
    {153, 50, 205},
    {135, 31, 120},
    {107, 35, 142},
    {47, 79, 79},
    {151, 105, 79},
    {112, 147, 219},
    {133, 94, 66},
    {168, 168, 168},
    {133, 99, 99},
    {209, 146, 117},
    {142, 35, 35},
    {35, 142, 35},
    {205, 127, 50},
    {219, 219, 112},
    {192, 192, 192},
    {82, 127, 118},
    {147, 219, 112},
    {33, 94, 33},
    {78, 47, 47},
    {159, 159, 95},
    {192, 217, 217},
    {168, 168, 168},
    {143, 143, 189},
    {233, 194, 166},
    {50, 205, 50},
    {228, 120, 51},
    {142, 35, 107},
    {50, 205, 153},
    {50, 50, 205},
    {107, 142, 35},
    {234, 234, 174},
    {147, 112, 219},
    {66, 111, 66},
    {127, 0, 255},
    {127, 255, 0},
    {112, 219, 219},
    {219, 112, 147},
    {166, 128, 100},
    {47, 47, 79},
    {35, 35, 142},
    {77, 77, 255},
    {255, 110, 199},
    {0, 0, 156},
    {235, 199, 158},
    {207, 181, 59},
    {255, 127, 0},
    {255, 36, 0},
    {219, 112, 219},
    {143, 188, 143},
    {188, 143, 143},
    {234, 173, 234},
    {217, 217, 243},
    {89, 89, 171},
    {111, 66, 66},
    {188, 23, 23},
    {35, 142, 104},
    {107, 66, 38},
    {142, 107, 35},
    {230, 232, 250},
    {50, 153, 204},
    {0, 127, 255},
    {255, 28, 174},
    {0, 255, 127},
    {35, 107, 142},
    {56, 176, 222},
    {219, 147, 112},
    {216, 191, 216},
    {173, 234, 234},
    {92, 64, 51},
    {205, 205, 205},
    {79, 47, 79},
    {204, 50, 153},
    {216, 216, 191},
    {153, 204, 50},
};

constexpr int kSteps = 32;
constexpr i64 kCells = kSteps * kSteps * kSteps;

constexpr int cellOf(int r, int g, int b) { return (r * kSteps + g) * kSteps + b; }

template <std::size_t kCount> u8 nearest(const Colour (&palette)[kCount], int r, int g, int b)
{
    int least = std::numeric_limits<int>::max();
    u8 best = 0;
    for (std::size_t i = 0; i < kCount; ++i) {
        const int dr = palette[i].r - r;
        const int dg = palette[i].g - g;
        const int db = palette[i].b - b;
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < least) {
            least = distance;
            best = u8(i);
        }
    }
    return best;
}

template <std::size_t kCount> void buildCube(const Colour (&palette)[kCount], u8* cube)
{
    for (int r = 0; r < kSteps; ++r)
        for (int g = 0; g < kSteps; ++g)
            for (int b = 0; b < kSteps; ++b)
                cube[cellOf(r, g, b)] = nearest(palette, 8 * r, 8 * g, 8 * b);
}

template <const auto& kPalette> i32 quantise(const Frame& f)
{
    if (!ensureScratchC(f.block, kCells, kAmDirtyTable))
        return kAmNoMemory;
    u8* const cube = static_cast<u8*>(f.block.scratchC);
    if (takeDirty(f.block, kAmDirtyTable))
        buildCube(kPalette, cube);

    // One word for every possible byte: whatever the buffer holds, the look-up stays inside.
    std::array<u32, 256> words{};
    for (std::size_t i = 0; i < std::size(kPalette); ++i)
        words[i] = pixels::toWord({kPalette[i].b, kPalette[i].g, kPalette[i].r, 0});
    pixels::rows::anyOrder(f.dst.extent(), [&, src = f.src, dst = f.dst](int y) {
        const pixels::Bgra* const from = src.row(y).data();
        pixels::Bgra* const to = dst.row(y).data();
        for (int x = 0; x < dst.width(); ++x) {
            const pixels::Bgra p = from[x];
            const u32 word = words[cube[cellOf(p.r >> 3, p.g >> 3, p.b >> 3)]] | u32(p.a) << 24;
            std::memcpy(to + x, &word, 4);
        }
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 57,
        .entry = {.place = 57, .name = "Tcvga", .guid = "43976442-24D1-415c-B8BD-E571AE3D235F"},
        .shown = {.title = "Sixteen Colours", .summary = "The nearest of 16 screen colours."},
        .apply = quantise<kScreenColours>},
    {.id = 58,
        .entry = {.place = 58, .name = "Cartoon", .guid = "F0A59856-167B-4164-A721-39F5330C6F94"},
        .shown = {.title = "Cartoon", .summary = "The nearest of 97 poster colours."},
        .apply = quantise<kPosterColours>},
};
static_assert(isSound(kRows));

const Registered registered{Family::filter, kRows};

} // namespace

} // namespace KEXSDK::am
