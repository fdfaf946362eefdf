// Hot air rises in front of the picture.
#version 120
#include "picture.glsl"
#include "noise.glsl"

uniform float u_global_time;    // seconds
uniform float u_strength = 1.0; // percent of the height
uniform float u_scale = 9.0;    // waves in a picture height
uniform float u_horizon = 1.2;  // height up to which the air is hot, 0..1

void main()
{
    vec2 p = textureCoord * vec2(aspect(), 1.0) * u_scale;
    float rise = 1.6 * u_global_time;
    vec2 bend = vec2(cloudNoise(vec2(p.x * 1.4, p.y - rise)), cloudNoise(vec2(p.x * 1.4 + 31.0, p.y * 1.3 - 1.3 * rise))) - 0.5;
    float heat = 1.0 - smoothstep(u_horizon - 0.25, u_horizon + 0.05, textureCoord.y);
    gl_FragColor = picture(mirrored(textureCoord + heat * u_strength / 50.0 * bend * vec2(1.0 / aspect(), 1.0)));
}
