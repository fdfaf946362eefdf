// A camera's iris closes over the first picture and opens on the second.
#version 120
#include "transition.glsl"

uniform float u_blades = 7.0;    // 3..12
uniform float u_rotation = 60.0; // degrees of the blades' way

vec4 transition(vec2 uv, float progress)
{
    float blades = max(floor(u_blades + 0.5), 3.0);
    vec2 p = centred(uv);
    float opening = abs(2.0 * eased(progress) - 1.0);
    float angle = atan(p.y, p.x) + radians(u_rotation) * (1.0 - opening);
    float wedge = 6.28318531 / blades;
    float local = mod(angle, wedge) - 0.5 * wedge;
    float toEdge = length(p) * cos(local); // distance along the blade's normal
    float size = opening * 0.5 * length(vec2(aspect(), 1.0)) / cos(0.5 * wedge);
    float soft = 2.0 / u_resolution.y;
    vec4 colour = progress < 0.5 ? from(uv) : to(uv);
    float blade = smoothstep(size - soft, size + soft, toEdge);
    float shade = 0.10 + 0.10 * fract(floor(angle / wedge) * 0.37) + 0.06 * smoothstep(0.0, 0.3, toEdge - size);
    vec3 metal = vec3(shade) * (0.7 + 0.6 * fract(local / wedge + 0.5));
    return vec4(mix(colour.rgb, metal, blade), mix(colour.a, 1.0, blade));
}
