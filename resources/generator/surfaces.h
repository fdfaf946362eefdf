// Building blocks of several textures: fibres, cloth, ragged edges, scratches.
#pragma once

#include "drawing.h"
#include "noise.h"

namespace artwork {

/// Thin curved strokes at random places and angles, 0..1; lengths and widths in heights.
Plane fibres(Size size, std::uint32_t seed, int count, float longest, float width);

/// Mostly vertical scratches that break off and come back, 0..1.
Plane scratches(Size size, std::uint32_t seed, int count, float width);

/// Round specks of random size, 0..1, the largest of this radius.
Plane specks(Size size, std::uint32_t seed, int count, float largest);

/// Plain-woven cloth with uneven threads of this width: light 0..1, about 0.7 on average.
float cloth(const Place& p, float thread, std::uint32_t seed);

/// How far a place lies beyond a ragged border that keeps `margin` from the picture's edge; negative inside.
/// Its teeth reach `depth`; a larger `scale` makes them finer.
float beyondRagged(const Place& p, float edge, float margin, float depth, float scale, std::uint32_t seed);

/// The distance from the middle as a share of the way to the corners, the same for every shape.
inline float towardCorner(const Place& p, float edge) { return length(p.x / edge, p.y * 2) * 0.70710678f; }

} // namespace artwork
