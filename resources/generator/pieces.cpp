// The table of the pack's pictures: file, size and painter of each.
#include "pieces.h"

namespace artwork {

namespace {

constexpr Size kWide{1920, 1080};
constexpr Size kNarrow{1440, 1080};
constexpr Size kTexture{1440, 960}; // of a shape between those of the pictures that it is stretched to
constexpr Size kTable{512, 512};
constexpr Size kSprite{128, 128};

constexpr Piece kPieces[] = {
    {"Overlays/NightGlassView16_9.png", kWide, paintNightGlasses},
    {"Overlays/NightGlassView4_3.png", kNarrow, paintNightGlasses},
    {"Overlays/CamcorderOn16_9.png", kWide, paintCamcorderOn},
    {"Overlays/CamcorderOn4_3.png", kNarrow, paintCamcorderOn},
    {"Overlays/CamcorderOff16_9.png", kWide, paintCamcorderOff},
    {"Overlays/CamcorderOff4_3.png", kNarrow, paintCamcorderOff},
    {"Overlays/Sight16_9.png", kWide, paintSight},
    {"Overlays/Sight4_3.png", kNarrow, paintSight},
    {"Overlays/WindowShades16_9.png", kWide, paintWindowShades},
    {"Overlays/WindowShades4_3.png", kNarrow, paintWindowShades},
    {"Overlays/Woven16_9.png", kWide, paintWoven},
    {"Overlays/Woven4_3.png", kNarrow, paintWoven},
    {"Overlays/Concert16_9.png", kWide, paintConcert},
    {"Overlays/Concert4_3.png", kNarrow, paintConcert},
    {"Textures/AncientCanvas.png", kTexture, paintAncientCanvas},
    {"Textures/OldPaper.png", kTexture, paintOldPaper},
    {"Textures/burntpaper.png", kTexture, paintBurntPaper},
    {"Textures/LinearBurn.png", kTexture, paintGoldenPrint},
    {"Textures/sketch.png", kTexture, paintKraftCanvas},
    {"Textures/sketch_black.png", kTexture, paintCharcoalPaper},
    {"Textures/Vignette1.png", kTexture, paintVignetteRound},
    {"Textures/Vignette2.png", kTexture, paintVignetteOval},
    {"Textures/Vignette3.png", kTexture, paintVignettePrint},
    {"Textures/Vignette4.png", kTexture, paintVignetteBlue},
    {"Textures/Vignette5.png", kTexture, paintVignetteSpot},
    {"Textures/Vignette6.png", kTexture, paintVignetteInk},
    {"Textures/VignetteWhite.png", kTexture, paintVignetteWhite},
    {"Textures/dark.png", kTexture, paintLomoCorners},
    {"Textures/Dark.png", kTexture, paintDarkEdges},
    {"Textures/pc_focusColor.png", kTexture, paintFocusMask},
    {"Textures/ColorTuneCircle00.png", kTexture, paintWarmCircle},
    {"Textures/ColorTuneCircle01.png", kTexture, paintCoolCircle},
    {"Textures/Filter1.png", kTexture, paintSunsetFilter},
    {"Textures/WaterDrop3.png", kTexture, paintDropsOnGlass},
    {"Textures/pf_raindrop.png", kTexture, paintRainOnGlass},
    {"Textures/Overlay.png", kTexture, paintFilmDamage},
    {"Textures/oldtime.png", kTexture, paintOldPhoto},
    {"Textures/OldTV.png", kTexture, paintTelevision},
    {"Textures/LinearDodge.png", kTexture, paintSunRays},
    {"Textures/pf_shine2.png", kTexture, paintLensFlare},
    {"Textures/MergeLight.png", kTexture, paintBokeh},
    {"Textures/Screen.png", kTexture, paintLightLeak},
    {"Textures/LinearLight.png", kTexture, paintPrism},
    {"Textures/SoftLight.png", kTexture, paintWindowLight},
    {"Textures/HardLight.png", kTexture, paintColourPowder},
    {"Textures/color_explosion.png", kTexture, paintBluePowder},
    {"Textures/radial3.png", kTexture, paintRadialBurst},
    {"Textures/pf_bubble4.png", kTexture, paintStarBubbles},
    {"Textures/StencilPosterRed.png", kTexture, paintStencilPoster},
    {"Textures/MergeImage.png", kTexture, paintTornPaper},
    {"Textures/MergeLinear.png", kTexture, paintInkWash},
    {"Shader/lookup/tealOrangeTable.png", kTable, paintTealOrangeTable},
    {"Shader/lookup/goldenHourTable.png", kTable, paintGoldenHourTable},
    {"Shader/lookup/moonlightTable.png", kTable, paintMoonlightTable},
    {"Shader/lookup/bleachBypassTable.png", kTable, paintBleachBypassTable},
    {"Shader/lookup/crossProcessTable.png", kTable, paintCrossProcessTable},
    {"Shader/lookup/fadedPrintTable.png", kTable, paintFadedPrintTable},
    {"Shader/lookup/cinemaTable.png", kTable, paintCinemaTable},
    {"Shader/lookup/pastelTable.png", kTable, paintPastelTable},
    {"Shader/lookup/sepiaTable.png", kTable, paintSepiaTable},
    {"Shader/lookup/silverTable.png", kTable, paintSilverTable},
    {"Shader/lookup/infraredTable.png", kTable, paintInfraredTable},
    {"Shader/lookup/copperTable.png", kTable, paintCopperTable},
    {"Particles/flakeSprite.png", kSprite, paintFlakeSprite},
    {"Particles/dropSprite.png", kSprite, paintDropSprite},
    {"Particles/smokeSprite.png", kSprite, paintSmokeSprite},
    {"Particles/bubbleSprite.png", kSprite, paintBubbleSprite},
    {"Particles/paperSprite.png", kSprite, paintPaperSprite},
    {"Particles/dotSprite.png", kSprite, paintDotSprite},
    {"Particles/flameSprite.png", kSprite, paintFlameSprite},
    {"Particles/sparkSprite.png", kSprite, paintSparkSprite},
    {"Particles/starSprite.png", kSprite, paintStarSprite},
};

} // namespace

std::span<const Piece> pieces() { return kPieces; }

} // namespace artwork
