// Drawn animation: flat steps of brightness and dark outlines.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_levels = 5.0;     // steps of brightness, 2..12
uniform float u_outline = 1.0;    // strength of the outlines, 0..2
uniform float u_saturation = 1.3; // 0..2

vec3 at(float x, float y)
{
    return picture(textureCoord + vec2(x, y) / u_resolution).rgb;
}

/// Weighs a colour by how near it is to the middle's: a bell that ends at zero.
vec4 alike(vec3 middle, vec3 colour)
{
    vec3 difference = colour - middle;
    float weight = max(1.0 - 6.0 * dot(difference, difference), 0.0);
    weight *= weight;
    weight *= weight;
    return vec4(weight * colour, weight);
}

void main()
{
    vec4 centre = picture(textureCoord);
    vec3 left = at(-2.0, 0.0);
    vec3 right = at(2.0, 0.0);
    vec3 below = at(0.0, -2.0);
    vec3 above = at(0.0, 2.0);
    vec3 leftBelow = at(-2.0, -2.0);
    vec3 rightBelow = at(2.0, -2.0);
    vec3 leftAbove = at(-2.0, 2.0);
    vec3 rightAbove = at(2.0, 2.0);

    // Small differences are smoothed away first, or the flat areas would be speckled.
    vec4 sum = vec4(centre.rgb, 1.0);
    sum += alike(centre.rgb, left) + alike(centre.rgb, right) + alike(centre.rgb, below) + alike(centre.rgb, above);
    sum += alike(centre.rgb, leftBelow) + alike(centre.rgb, rightBelow);
    sum += alike(centre.rgb, leftAbove) + alike(centre.rgb, rightAbove);
    sum += alike(centre.rgb, at(-4.0, 0.0)) + alike(centre.rgb, at(4.0, 0.0));
    sum += alike(centre.rgb, at(0.0, -4.0)) + alike(centre.rgb, at(0.0, 4.0));
    sum += alike(centre.rgb, at(-4.0, -2.0)) + alike(centre.rgb, at(-4.0, 2.0));
    sum += alike(centre.rgb, at(4.0, -2.0)) + alike(centre.rgb, at(4.0, 2.0));
    sum += alike(centre.rgb, at(-2.0, -4.0)) + alike(centre.rgb, at(2.0, -4.0));
    sum += alike(centre.rgb, at(-2.0, 4.0)) + alike(centre.rgb, at(2.0, 4.0));
    vec3 colour = sum.rgb / sum.a;
    float value = luma(colour);
    float levels = max(floor(u_levels + 0.5), 2.0);
    float scaled = value * (levels - 1.0);
    float stepped = (floor(scaled) + smoothstep(0.42, 0.58, fract(scaled))) / (levels - 1.0);
    colour = saturated(colour * (stepped + 0.02) / (value + 0.02), u_saturation);

    float gx = luma(rightBelow + 2.0 * right + rightAbove - leftBelow - 2.0 * left - leftAbove);
    float gy = luma(leftAbove + 2.0 * above + rightAbove - leftBelow - 2.0 * below - rightBelow);
    float ink = smoothstep(0.35, 0.9, u_outline * sqrt(gx * gx + gy * gy));
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0) * (1.0 - 0.92 * ink), centre.a);
}
