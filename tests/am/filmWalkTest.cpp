// The grain of old film: a walk through the noise table, from pixel to pixel and from row to row.
#include "am/AmFixture.h"
#include "effects/am/library/amTables.h"

#include <ranges>

namespace {

using test::AmPicture;
using test::applied;
using test::Bgra;

constexpr test::Am kSiena = "siena";

bool isPlain(AmPicture& picture)
{
    const Bgra first = picture.at(0, 0);
    return std::ranges::all_of(picture.pixels(), [=](Bgra p) { return p.b == first.b && p.g == first.g; });
}

TEST(AmFilmWalk, SienaStepsOnFromAZeroOfTheNoise)
{
    AmPicture white(40, 30);
    white.fill({255, 255, 255, 9});
    AmPicture shown = white;
    for (u32 seed = 1; !isPlain(shown = applied(
                                    kSiena, white, [](auto&) {}, seed));
         ++seed)
        ASSERT_LT(seed, 1000u) << "always damaged";
    // Without damage all reds come from one shade of the curve.
    const auto comesFrom = [&](u32 shade) {
        u32 place = 0;
        return std::ranges::all_of(shown.pixels(), [&](Bgra p) {
            const u32 noise = KEXSDK::am::amRandomBytes()[place];
            place = (place + 1 + noise + p.r) & 1023;
            return p.r == shade * noise >> 8;
        });
    };
    const auto shades = std::views::iota(0u, 256u);
    EXPECT_TRUE(std::ranges::any_of(shades, comesFrom));
    EXPECT_GT(std::ranges::max(shown.pixels(), {}, &Bgra::r).r, 100) << "not all black";
}

TEST(AmFilmWalk, SienaKeepsItsReds)
{
    AmPicture grey(320, 240);
    grey.fill({128, 128, 128, 255});
    const auto pixels = applied(kSiena, grey).pixels();
    // The noise is the process's own, and the walk over one grey goes round in a part of it: more than a
    // share of black cannot be promised.
    const auto black = std::ranges::count(pixels, 0, &Bgra::r);
    EXPECT_LT(double(black), 0.2 * double(pixels.size()));
}

} // namespace
