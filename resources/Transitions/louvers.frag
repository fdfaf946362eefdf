// Upright louvers turn round one after the other, the second picture on their backs.
#version 120
#include "transition.glsl"

uniform float u_count = 10.0;  // number of louvers
uniform float u_stagger = 0.6; // 0 all at once, 1 one after the other

vec4 transition(vec2 uv, float progress)
{
    float count = max(floor(u_count + 0.5), 1.0);
    float index = floor(uv.x * count);
    float start = u_stagger * 0.6 * index / count;
    float turned = eased(clamp((progress - start) / (1.0 - 0.6 * u_stagger), 0.0, 1.0));
    float c = cos(3.14159265 * turned);
    float across = 2.0 * fract(uv.x * count) - 1.0;
    float wide = max(abs(c), 0.001);
    if (abs(across) > wide)
        return vec4(0.0, 0.0, 0.0, 1.0);
    vec2 at = vec2((index + 0.5 + 0.5 * across / wide) / count, uv.y);
    vec4 colour = c > 0.0 ? from(at) : to(at);
    colour.rgb *= 0.45 + 0.55 * abs(c);
    return colour;
}
