// A wind blows the first picture away in streaks.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform float u_streaks = 60.0; // streaks in a picture height
uniform float u_length = 0.6;   // 0..1

vec4 transition(vec2 uv, float progress)
{
    float lane = uv.y * u_streaks;
    float gust = 0.6 * valueNoise(vec2(0.0, lane)) + 0.4 * valueNoise(vec2(5.0, lane * 3.7));
    float reach = 0.15 + 0.6 * u_length;
    float front = progress * (1.0 + reach) - reach * gust;
    float behind = front - uv.x; // above 0 the wind has passed
    float tail = smoothstep(-0.5 * reach, 0.0, behind) * (1.0 - smoothstep(0.0, 0.02, behind));
    vec4 torn = from(mirrored(vec2(uv.x - 0.25 * tail * u_length, uv.y)));
    return mix(torn, to(uv), smoothstep(0.0, 0.02, behind));
}
