// Hexagons of the second picture open in a wave from a corner.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform float u_count = 9.0;   // cells in a picture height
uniform float u_random = 0.15; // 0 a straight wave, 1 anywhere

vec4 transition(vec2 uv, float progress)
{
    const vec2 kGrid = vec2(1.0, 1.7320508); // two interleaved grids of this period hold the cells' middles
    vec2 p = centred(uv) * u_count;
    vec2 a = (floor(p / kGrid) + 0.5) * kGrid;
    vec2 b = floor(p / kGrid + 0.5) * kGrid;
    vec2 middle = dot(p - a, p - a) < dot(p - b, p - b) ? a : b;
    vec2 away = abs(p - middle);
    float size = 2.0 * max(away.x, dot(away, vec2(0.5, 0.8660254))); // 0 in the middle, 1 at the border
    vec2 where = uncentred(middle / u_count);
    float order = mix(clamp(0.5 * (where.x + 1.0 - where.y), 0.0, 1.0), random(middle), u_random);
    float open = clamp((progress * 1.5 - order) / 0.5, 0.0, 1.0) * 1.05;
    float soft = 2.0 * u_count / u_resolution.y;
    vec4 first = from(uv);
    first.rgb += 0.6 * (1.0 - smoothstep(0.0, 0.12, abs(size - open))) * step(0.001, open) * (1.0 - step(1.0, open));
    return mix(clamp(first, 0.0, 1.0), to(uv), 1.0 - smoothstep(open - soft, open, size));
}
