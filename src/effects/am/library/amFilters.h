// The families of the library, each a table of rows in a unit of its own.
#pragma once

#include "effects/am/library/amFrame.h"

namespace KEXSDK::am {

std::span<const EffectRow> pointFilters();    ///< a pixel's colour alone decides: greys, tints, temperatures
std::span<const EffectRow> geometryFilters(); ///< whole pixels move: flips, mirrors, cells
std::span<const EffectRow> noiseFilters();    ///< grain, speckles, scatter
std::span<const EffectRow> curveLooks();      ///< a table per channel
std::span<const EffectRow> filmLooks();       ///< old photographs with damage and uneven brightness
std::span<const EffectRow> paletteFilters();  ///< the nearest of a few colours
std::span<const EffectRow> particleFilters(); ///< discs that move over the picture
std::span<const EffectRow> lightFilters();    ///< relief, spot of light, one colour kept
std::span<const EffectRow> blendModes();      ///< channels of the picture with those of a texture
std::span<const EffectRow> textureLooks();    ///< a look and a texture at once
std::span<const EffectRow> paperLooks();      ///< old prints, canvas, drawings on paper
std::span<const EffectRow> selectiveLooks();  ///< some of the colours change more than others
std::span<const EffectRow> hueLooks();        ///< new hues, and lightness apart from colour
std::span<const EffectRow> sketchLooks();     ///< a pixel and its eight neighbours
std::span<const EffectRow> softLooks();       ///< soft noise, soft focus
std::span<const EffectRow> vignetteLooks();   ///< dark rims
std::span<const EffectRow> panelLooks();      ///< tinted panels with lines between them
std::span<const EffectRow> distortionLooks(); ///< broken television, kaleidoscope
std::span<const EffectRow> stencilFilters();  ///< 3x3 pixels decide: sharpening, blur, edges, pencils
std::span<const EffectRow> jitterFilters();   ///< rows and columns shifted at random
std::span<const EffectRow> warpFilters();     ///< pixels fetched through a kept map
std::span<const EffectRow> waterFilters();    ///< drops on a water surface
std::span<const EffectRow> fireFilters();     ///< flames
std::span<const EffectRow> tiltFilters();     ///< a blur that leaves a band sharp
std::span<const EffectRow> zoomBlurFilters(); ///< a blur along the rays from a point

/// The effect behind an id, or null.
const EffectRow* findEffect(i32 id);

} // namespace KEXSDK::am
