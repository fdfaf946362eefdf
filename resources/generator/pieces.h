// The painters of all pictures of the pack, and the table that names their files.
#pragma once

#include "Picture.h"

#include <span>

namespace artwork {

struct Piece {
    const char* file; ///< below the resource directory
    Size size;
    void (*paint)(Picture&); ///< onto a transparent black picture of that size
};

std::span<const Piece> pieces();

// Overlays: each paints both shapes.
void paintNightGlasses(Picture& picture);
void paintCamcorderOn(Picture& picture);
void paintCamcorderOff(Picture& picture);
void paintSight(Picture& picture);
void paintWindowShades(Picture& picture);
void paintWoven(Picture& picture);
void paintConcert(Picture& picture);

// Papers.
void paintAncientCanvas(Picture& picture);
void paintOldPaper(Picture& picture);
void paintBurntPaper(Picture& picture);
void paintGoldenPrint(Picture& picture);
void paintKraftCanvas(Picture& picture);
void paintCharcoalPaper(Picture& picture);

// Shades.
void paintVignetteRound(Picture& picture);
void paintVignetteOval(Picture& picture);
void paintVignettePrint(Picture& picture);
void paintVignetteBlue(Picture& picture);
void paintVignetteSpot(Picture& picture);
void paintVignetteInk(Picture& picture);
void paintVignetteWhite(Picture& picture);
void paintLomoCorners(Picture& picture);
void paintDarkEdges(Picture& picture);
void paintFocusMask(Picture& picture);
void paintWarmCircle(Picture& picture);
void paintCoolCircle(Picture& picture);
void paintSunsetFilter(Picture& picture);

// Water.
void paintDropsOnGlass(Picture& picture);
void paintRainOnGlass(Picture& picture);

// Film and television.
void paintFilmDamage(Picture& picture);
void paintOldPhoto(Picture& picture);
void paintTelevision(Picture& picture);

// Light.
void paintSunRays(Picture& picture);
void paintLensFlare(Picture& picture);
void paintBokeh(Picture& picture);
void paintLightLeak(Picture& picture);
void paintPrism(Picture& picture);
void paintWindowLight(Picture& picture);

// Bursts.
void paintColourPowder(Picture& picture);
void paintBluePowder(Picture& picture);
void paintRadialBurst(Picture& picture);
void paintStarBubbles(Picture& picture);

// Prints.
void paintStencilPoster(Picture& picture);
void paintTornPaper(Picture& picture);
void paintInkWash(Picture& picture);

// Tables of colour lookups, 512 x 512.
void paintTealOrangeTable(Picture& picture);
void paintGoldenHourTable(Picture& picture);
void paintMoonlightTable(Picture& picture);
void paintBleachBypassTable(Picture& picture);
void paintCrossProcessTable(Picture& picture);
void paintFadedPrintTable(Picture& picture);
void paintCinemaTable(Picture& picture);
void paintPastelTable(Picture& picture);
void paintSepiaTable(Picture& picture);
void paintSilverTable(Picture& picture);
void paintInfraredTable(Picture& picture);
void paintCopperTable(Picture& picture);

// Sprites of particles.
void paintFlakeSprite(Picture& picture);
void paintDropSprite(Picture& picture);
void paintSmokeSprite(Picture& picture);
void paintBubbleSprite(Picture& picture);
void paintPaperSprite(Picture& picture);
void paintDotSprite(Picture& picture);
void paintFlameSprite(Picture& picture);
void paintSparkSprite(Picture& picture);
void paintStarSprite(Picture& picture);

// Orders of wipes: greys, the darkest places change first.
void paintClockWipe(Picture& picture);
void paintDoubleClockWipe(Picture& picture);
void paintCircleInWipe(Picture& picture);
void paintCircleOutWipe(Picture& picture);
void paintDiamondWipe(Picture& picture);
void paintBoxWipe(Picture& picture);
void paintHeartWipe(Picture& picture);
void paintStarWipe(Picture& picture);
void paintSpiralWipe(Picture& picture);
void paintRadialFanWipe(Picture& picture);
void paintRipplesWipe(Picture& picture);
void paintHorizontalBlindsWipe(Picture& picture);
void paintVerticalBlindsWipe(Picture& picture);
void paintDiagonalWipe(Picture& picture);
void paintZigzagWipe(Picture& picture);
void paintWavesWipe(Picture& picture);
void paintCurtainWipe(Picture& picture);
void paintCheckerWipe(Picture& picture);
void paintRandomTilesWipe(Picture& picture);
void paintHoneycombWipe(Picture& picture);
void paintCloudsWipe(Picture& picture);
void paintInkWipe(Picture& picture);
void paintBrushStrokesWipe(Picture& picture);
void paintGrainDissolveWipe(Picture& picture);

} // namespace artwork
