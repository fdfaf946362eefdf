// Hexagons of one colour with fine seams.
#version 120
#include "picture.glsl"

uniform float u_size = 24.0; // width of a cell in pixels
uniform float u_seam = 0.35; // darkness of the seams, 0..1

void main()
{
    const vec2 kGrid = vec2(1.0, 1.7320508); // two interleaved grids of this period hold the cells' middles
    vec2 p = (textureCoord - 0.5) * u_resolution / u_size;
    vec2 a = (floor(p / kGrid) + 0.5) * kGrid;
    vec2 b = floor(p / kGrid + 0.5) * kGrid;
    vec2 middle = dot(p - a, p - a) < dot(p - b, p - b) ? a : b;
    vec2 inside = abs(p - middle);
    float toEdge = 0.5 - max(inside.x, dot(inside, vec2(0.5, 0.8660254)));
    vec2 uv = middle * u_size / u_resolution + 0.5;
    vec2 reach = 0.25 * u_size / u_resolution;
    vec4 colour = 0.25 * (picture(uv + reach) + picture(uv - reach) + picture(uv + vec2(reach.x, -reach.y))
        + picture(uv + vec2(-reach.x, reach.y)));
    float seam = 1.0 - smoothstep(0.0, max(1.5 / u_size, 0.04), toEdge);
    float light = 1.0 + 0.10 * (p.y - middle.y);
    gl_FragColor = vec4(clamp(colour.rgb * light, 0.0, 1.0) * (1.0 - u_seam * seam), colour.a);
}
