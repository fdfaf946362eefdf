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

/// Pixels between the samples of the last pass.
float wideGap()
{
    return ceil(0.25 * halfWidth() - 0.001);
}

/// Pixels between the samples of the first pass.
float fineGap()
{
    return ceil(0.0625 * wideGap() - 0.001);
}

/// Pixels between the samples of the pass before the last: one more than so many gaps of the first pass, or a pattern
/// as wide as that gap would come through all passes.
float narrowGap()
{
    float fine = fineGap();
    float enough = ceil(0.25 * wideGap() - 0.001);
    return fine > 1.0 ? ceil(enough / fine) * fine + 1.0 : enough;
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
