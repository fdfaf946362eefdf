// The families of the library, each a table of rows in a unit of its own.
#pragma once

#include "effects/am/amFrame.h"

namespace KEXSDK::am {

std::span<const EffectRow> pointFilters();    ///< a pixel's colour alone decides: greys, tints, temperatures
std::span<const EffectRow> geometryFilters(); ///< whole pixels move: flips, mirrors, cells
std::span<const EffectRow> noiseFilters();    ///< grain, speckles, scatter
std::span<const EffectRow> curveLooks();      ///< a table per channel
std::span<const EffectRow> filmLooks();       ///< old photographs with damage and uneven brightness
std::span<const EffectRow> paletteFilters();  ///< the nearest of a few colours
std::span<const EffectRow> particleFilters(); ///< discs that move over the picture
std::span<const EffectRow> lightFilters();    ///< relief, spot of light, one colour kept

/// The effect behind an id, or null.
const EffectRow* findEffect(i32 id);

} // namespace KEXSDK::am
