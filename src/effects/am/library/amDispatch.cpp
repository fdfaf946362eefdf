// From an id to its effect.
#include "effects/am/library/amFilters.h"

#include <vector>

namespace KEXSDK::am {

namespace {

constexpr std::span<const EffectRow> (*kFamilies[])() = {
    pointFilters,
    geometryFilters,
    noiseFilters,
    curveLooks,
    filmLooks,
    paletteFilters,
    particleFilters,
    lightFilters,
    blendModes,
    textureLooks,
    paperLooks,
    selectiveLooks,
    hueLooks,
    sketchLooks,
    softLooks,
    vignetteLooks,
    panelLooks,
    distortionLooks,
    stencilFilters,
    jitterFilters,
    warpFilters,
    waterFilters,
    fireFilters,
    tiltFilters,
    zoomBlurFilters,
};

std::vector<EffectRow> gather()
{
    std::vector<EffectRow> rows;
    for (const auto family : kFamilies) {
        const auto more = family();
        rows.insert(rows.end(), more.begin(), more.end());
    }
    std::ranges::sort(rows, {}, &EffectRow::id);
    return rows;
}

} // namespace

const EffectRow* findEffect(i32 id)
{
    static const std::vector<EffectRow> rows = gather();
    const auto found = std::ranges::lower_bound(rows, id, {}, &EffectRow::id);
    return found != rows.end() && found->id == id ? &*found : nullptr;
}

} // namespace KEXSDK::am
