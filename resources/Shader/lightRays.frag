// Light streams from a point through the bright places of the picture.
#version 120
#include "picture.glsl"
#include "colour.glsl"
#include "noise.glsl"

uniform vec2 u_source = vec2(0.5, 1.1);      // 0..1, y upward; may lie outside
uniform float u_threshold = 0.55;            // brightness that shines, 0..1
uniform float u_length = 0.7;                // 0..1 of the way to the source
uniform float u_intensity = 1.2;             // 0..3
uniform vec3 u_tint = vec3(1.0, 0.93, 0.78); // colour of the light

void main()
{
    vec4 centre = picture(textureCoord);
    vec2 path = (u_source - textureCoord) * u_length / 48.0;
    vec2 at = textureCoord + path * random(gl_FragCoord.xy);
    vec3 rays = vec3(0.0);
    float weight = 1.0;
    float weights = 0.0;
    for (int i = 0; i < 48; ++i) {
        vec3 here = picture(at).rgb;
        rays += weight * here * smoothstep(u_threshold, u_threshold + 0.2, luma(here));
        weights += weight;
        weight *= 0.965;
        at += path;
    }
    gl_FragColor = vec4(screened(centre.rgb, u_intensity * u_tint * rays / weights), centre.a);
}
