// Drawn animation: flat steps of brightness and dark outlines.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_levels = 5.0;     // steps of brightness, 2..12
uniform float u_outline = 1.0;    // strength of the outlines, 0..2
uniform float u_saturation = 1.3; // 0..2

float brightness(float x, float y)
{
    return luma(picture(textureCoord + 1.5 * vec2(x, y) / u_resolution).rgb);
}

void main()
{
    vec4 centre = picture(textureCoord);
    // Small differences are smoothed away first, or the flat areas would be speckled.
    vec3 smooth_ = vec3(0.0);
    float weights = 0.0;
    for (float y = -2.0; y <= 2.0; y += 1.0)
        for (float x = -2.0; x <= 2.0; x += 1.0) {
            vec3 here = picture(textureCoord + 2.0 * vec2(x, y) / u_resolution).rgb;
            vec3 difference = here - centre.rgb;
            float weight = exp(-24.0 * dot(difference, difference));
            smooth_ += weight * here;
            weights += weight;
        }
    vec3 colour = smooth_ / weights;
    float value = luma(colour);
    float levels = max(floor(u_levels + 0.5), 2.0);
    float scaled = value * (levels - 1.0);
    float stepped = (floor(scaled) + smoothstep(0.42, 0.58, fract(scaled))) / (levels - 1.0);
    colour = saturated(colour * (stepped + 0.02) / (value + 0.02), u_saturation);

    float gx = brightness(1.0, -1.0) + 2.0 * brightness(1.0, 0.0) + brightness(1.0, 1.0)
        - brightness(-1.0, -1.0) - 2.0 * brightness(-1.0, 0.0) - brightness(-1.0, 1.0);
    float gy = brightness(-1.0, 1.0) + 2.0 * brightness(0.0, 1.0) + brightness(1.0, 1.0)
        - brightness(-1.0, -1.0) - 2.0 * brightness(0.0, -1.0) - brightness(1.0, -1.0);
    float ink = smoothstep(0.35, 0.9, u_outline * sqrt(gx * gx + gy * gy));
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0) * (1.0 - 0.92 * ink), centre.a);
}
