// Irregular facets, each of one colour and tilted a little to the light.
#version 120
#include "picture.glsl"
#include "noise.glsl"

uniform float u_size = 32.0;     // facet size in pixels
uniform float u_edge = 0.35;     // brightness of the edges, 0..1
uniform float u_roughness = 0.9; // how irregular the facets are, 0..1

void main()
{
    vec2 p = textureCoord * u_resolution / u_size;
    vec2 cell = floor(p);
    vec2 nearest = vec2(0.0);
    float first = 8.0;
    for (float y = -1.0; y <= 1.0; y += 1.0)
        for (float x = -1.0; x <= 1.0; x += 1.0) {
            vec2 site = cell + vec2(x, y) + 0.5 + u_roughness * (random2(cell + vec2(x, y)) - 0.5);
            float d = dot(site - p, site - p);
            if (d < first) {
                first = d;
                nearest = site;
            }
        }
    // Distance to the nearest border: half way to each neighbouring site.
    float border = 8.0;
    vec2 home = floor(nearest);
    for (float y = -2.0; y <= 2.0; y += 1.0)
        for (float x = -2.0; x <= 2.0; x += 1.0) {
            if (abs(x * y) > 3.0)
                continue; // too far away to have a border with the nearest site
            vec2 site = cell + vec2(x, y) + 0.5 + u_roughness * (random2(cell + vec2(x, y)) - 0.5);
            vec2 across = site - nearest;
            float square = dot(across, across);
            // The nearest site itself is no neighbour.
            float distance = dot(0.5 * (nearest + site) - p, across) * inversesqrt(max(square, 1.0e-5));
            border = min(border, square > 1.0e-5 ? distance : 8.0);
        }
    vec4 colour = picture(nearest * u_size / u_resolution);
    vec2 tilt = random2(home + 71.0) - 0.5;
    float light = 1.0 + 0.22 * dot(tilt, p - nearest) + 0.10 * tilt.x;
    float edge = u_edge * (1.0 - smoothstep(0.0, max(1.5 / u_size, 0.05), border));
    gl_FragColor = vec4(clamp(mix(colour.rgb * light, vec3(1.0), 0.5 * edge), 0.0, 1.0), colour.a);
}
