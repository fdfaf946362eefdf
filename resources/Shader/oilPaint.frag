// Brush strokes: every pixel takes the colour of the calmest quarter around it.
#version 120
#include "picture.glsl"

uniform float u_radius = 4.0; // brush size in pixels, 1..8

void main()
{
    vec4 centre = picture(textureCoord);
    float spread = max(u_radius, 1.0) / 4.0; // four taps to each side, spread over the brush
    vec3 best = centre.rgb;
    float calmest = 1.0e9;
    for (float quarter = 0.0; quarter < 4.0; quarter += 1.0) {
        vec2 corner = vec2(mod(quarter, 2.0), floor(quarter / 2.0)) * 2.0 - 1.0;
        vec3 mean = vec3(0.0);
        vec3 square = vec3(0.0);
        for (float y = 0.0; y <= 4.0; y += 1.0)
            for (float x = 0.0; x <= 4.0; x += 1.0) {
                vec3 here = picture(textureCoord + corner * spread * vec2(x, y) / u_resolution).rgb;
                mean += here;
                square += here * here;
            }
        mean /= 25.0;
        vec3 variance = square / 25.0 - mean * mean;
        float unrest = variance.r + variance.g + variance.b;
        if (unrest < calmest) {
            calmest = unrest;
            best = mean;
        }
    }
    gl_FragColor = vec4(best, centre.a);
}
