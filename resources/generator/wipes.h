// What the painters of wipe pictures share.
#pragma once

#include "Picture.h"

namespace artwork {

/// Paints greys that say in which order a wipe changes the places: black for the smallest values, white for
/// the largest, and every grey over as much of the picture as any other, so that the wipe keeps its speed.
/// Equal values give equal greys. Saving adds no pattern: a wipe with a hard edge would show it.
void paintOrder(Picture& picture, const Plane& when);

template <class When> void paintOrder(Picture& picture, When when)
{
    paintOrder(picture, planeOf(picture.size(), when));
}

/// The way round the middle from the top, clockwise, 0..1.
inline float turnOf(const Place& p) { return std::fmod(std::atan2(p.x, -p.y) / (2 * kPi) + 1, 1.0f); }

/// The part of x behind the point, also for negative x.
inline float fraction(float x) { return x - std::floor(x); }

} // namespace artwork
