// Bright places glow into their surroundings.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_threshold = 0.7; // brightness that begins to glow, 0..1
uniform float u_intensity = 0.7; // 0..2
uniform float u_radius = 6.0;    // percent of the height

void main()
{
    vec4 centre = picture(textureCoord);
    vec3 glow = vec3(0.0);
    float weights = 0.0;
    vec2 reach = vec2(u_radius / 100.0 / aspect(), u_radius / 100.0);
    for (float i = 0.5; i < 64.0; i += 1.0) {
        float r = sqrt(i / 64.0);
        float angle = i * 2.39996323; // the golden angle
        float weight = exp(-2.0 * r * r);
        vec4 here = picture(textureCoord + r * reach * vec2(cos(angle), sin(angle)));
        glow += weight * here.a * here.rgb * smoothstep(u_threshold, min(u_threshold + 0.25, 1.25), luma(here.rgb));
        weights += weight;
    }
    gl_FragColor = vec4(screened(centre.rgb, u_intensity * 1.6 * glow / weights), centre.a);
}
