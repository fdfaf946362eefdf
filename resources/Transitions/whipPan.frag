// The camera is torn round from one picture to the other.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform float u_angle = 0.0; // degrees, counter-clockwise from the right
uniform float u_blur = 0.8;  // 0..1

vec4 transition(vec2 uv, float progress)
{
    float angle = radians(u_angle);
    vec2 direction = vec2(cos(angle), sin(angle));
    float way = progress < 0.5 ? 4.0 * progress * progress * progress : 1.0 - 4.0 * pow(1.0 - progress, 3.0);
    float speed = min(3.0 * min(progress, 1.0 - progress), 1.0);
    float shift = random(gl_FragCoord.xy);
    vec4 sum = vec4(0.0);
    for (float i = 0.0; i < 24.0; i += 1.0) {
        float t = ((i + shift) / 24.0 - 0.5) * 0.5 * u_blur * speed * speed;
        // Two pictures side by side along the way; past them both are mirrored.
        vec2 at = uv + direction * (2.0 * way + t);
        vec2 back = uv + direction * (2.0 * way + t - 2.0);
        sum += way + 0.5 * t < 0.5 ? from(mirrored(at)) : to(mirrored(back));
    }
    return sum / 24.0;
}
