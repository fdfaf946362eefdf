// Lens and shutter of the zoom blur. Streaks are drawn in two passes of eight samples each, which makes 64: those of the
// first lie next to each other, and every sample of the second stands for all eight of the first. Each lies nearer to the
// centre by the same factor.
#include "picture.glsl"

uniform vec2 u_centre = vec2(0.5, 0.5); // 0..1, y upward
uniform float u_strength = 20.0;        // percent of the way to the centre

const float kSamples = 8.0;

/// The factor from one sample of the second pass to the next, if at the end of a streak the rest of the way is left.
float lastStep()
{
    return sqrt(sqrt(sqrt(1.0 - clamp(u_strength / 100.0, 0.0, 0.95))));
}

float fineStep()
{
    return sqrt(sqrt(sqrt(lastStep())));
}
