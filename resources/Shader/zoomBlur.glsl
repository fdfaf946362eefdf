// Lens and shutter of the zoom blur.
#include "picture.glsl"
#include "streaks.glsl"

uniform vec2 u_centre = vec2(0.5, 0.5); // 0..1, y upward
uniform float u_strength = 20.0;        // percent of the way to the centre

/// What is left of the way to the centre at the end of a streak.
float rest()
{
    return 1.0 - clamp(u_strength / 100.0, 0.0, 0.95);
}
