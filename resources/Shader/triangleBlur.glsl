// Blur along a line with weights that fall linearly from the middle to both ends of the reach. It is drawn in three
// passes: the last takes seven samples, the one before fills the gaps between them with weights that fall in the same
// way, and the first the gaps in those. Samples lie whole pixels apart, so the sum is the triangle itself.
#include "picture.glsl"

uniform vec2 delta = vec2(0.05, 0.0); // reach to one side, in texture coordinates

/// Half the width of the triangle in pixels: the reach, and one pixel where there is none.
float halfWidth()
{
    vec2 reach = delta * u_resolution;
    return sqrt(dot(reach, reach) + 1.0);
}

/// The narrowest gap between samples of the last pass that reaches far enough, in pixels.
float enough()
{
    return ceil(0.25 * halfWidth() - 0.001);
}

/// Pixels between the samples of the first pass.
float fineGap()
{
    return ceil(0.0625 * enough() - 0.001);
}

/// The next gap that is no multiple of the first pass's: patterns as wide as that would come through all passes.
float unlike(float gap)
{
    return fineGap() > 1.0 ? ceil(gap / fineGap() - 0.001) * fineGap() + 1.0 : gap;
}

/// Pixels between the samples of the last pass.
float wideGap()
{
    return unlike(enough());
}

/// Pixels between the samples of the pass before the last.
float narrowGap()
{
    return unlike(ceil(0.25 * wideGap() - 0.001));
}

/// One pixel's way along the line, in texture coordinates.
vec2 pixelStep()
{
    return delta / max(length(delta * u_resolution), 0.0001);
}

/// The mean of seven samples, `gap` pixels apart, in a triangle of the given half width.
vec4 triangle(sampler2D source, float gap, float width)
{
    vec4 sum = texture2D(source, textureCoord);
    float weights = 1.0;
    for (float i = 1.0; i < 4.0; i += 1.0) {
        float weight = max(1.0 - i * gap / width, 0.0);
        vec2 way = i * gap * pixelStep();
        sum += weight * (texture2D(source, textureCoord + way) + texture2D(source, textureCoord - way));
        weights += 2.0 * weight;
    }
    return sum / weights;
}
