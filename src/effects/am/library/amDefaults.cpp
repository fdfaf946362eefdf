// Defaults by id.
#include "effects/am/library/amDefaults.h"

namespace KEXSDK::am {

namespace {

struct Colour {
    u8 r, g, b;
};

// What an id changes in the common defaults; ids first..last share a row.
struct Defaults {
    IdRange ids;
    void (*apply)(AmEffectParams&);
};

template <i32 kMask> void uses(AmEffectParams& b) { b.usageMask = kMask; }
template <i32 kPercent> void startsAt(AmEffectParams& b) { b.percent = kPercent; }
template <i32 kVariant> void isVariant(AmEffectParams& b) { b.variant = kVariant; }
template <Colour kColour> void startsWith(AmEffectParams& b)
{
    b.red = kColour.r;
    b.green = kColour.g;
    b.blue = kColour.b;
}

constexpr Defaults kDefaults[] = {
    {{1, 5}, uses<1>},
    {{12, 12}, uses<1>},
    {{24, 24}, uses<7>},
    {{29, 29}, uses<16>},
    {{61, 61}, [](AmEffectParams& b) { b.direction = 1, b.usageMask = 35; }},
    {{62, 62}, uses<35>},
    {{63, 63}, [](AmEffectParams& b) { b.radius = 30, b.usageMask = 67; }},
    {{1025, 1025}, uses<1>},
    {{1028, 1031}, uses<1>},
    {{1032, 1032}, uses<6>},
    {{1033, 1035}, uses<4>},
    {{1036, 1036}, uses<1>},
    {{1037, 1037}, uses<33>},
    {{1041, 1041}, [](AmEffectParams& b) { b.top = 40, b.bottom = 60, b.usageMask = 8; }},
    {{2049, 2049},
        [](AmEffectParams& b) { b.blue = 255, b.green = 255, b.red = 0, b.alpha = 128, b.usageMask = 16; }},
    {{2064, 2064}, startsWith<Colour{225, 55, 36}>},
    {{2065, 2065}, startsWith<Colour{50, 235, 70}>},
    {{2066, 2066}, startsWith<Colour{40, 70, 235}>},
    {{2067, 2067}, isVariant<3>},
    {{2068, 2068}, isVariant<2>},
    {{2069, 2069}, isVariant<1>},
    {{2078, 2078}, startsAt<100>},
    {{2081, 2089}, startsAt<100>},
    {{2090, 2092}, startsAt<60>},
    {{2093, 2093}, startsAt<100>},
    {{2177, 2177}, startsAt<100>},
    {{2178, 2178}, startsAt<40>},
    {{2180, 2184}, startsAt<100>},
    {{2187, 2187}, startsWith<Colour{245, 40, 70}>},
    {{2188, 2188}, startsWith<Colour{205, 155, 36}>},
    {{2189, 2189}, startsWith<Colour{40, 81, 143}>},
};

} // namespace

AmEffectParams defaultsOf(i32 id)
{
    AmEffectParams block{};
    block.size = sizeof(AmEffectParams);
    block.id = id;
    block.percent = block.radius = block.posX = block.posY = 50;
    block.right = block.bottom = 100;
    block.dirty = kAmDirtyAll;
    if (kFilters.contains(id)) {
        block.pickX = block.pickY = 50;
        block.work3 = block.work4 = block.work6 = block.work7 = 100;
    }
    for (const Defaults& row : kDefaults)
        if (row.ids.contains(id))
            row.apply(block);
    return block;
}

} // namespace KEXSDK::am
