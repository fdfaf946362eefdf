// A home video tape: smeared colour, unsteady lines, a noisy band that wanders upward.
#version 120
#include "picture.glsl"
#include "colour.glsl"
#include "noise.glsl"

uniform float u_global_time;    // seconds
uniform float u_noise = 0.6;    // 0..1
uniform float u_smear = 1.2;    // width of the colour smear, percent of the width
uniform float u_tracking = 0.7; // strength of the wandering band, 0..1

void main()
{
    float frame = floor(u_global_time * 25.0 + 0.001);
    float line = floor(textureCoord.y * 288.0); // the lines of a field
    float bandAt = fract(0.13 * u_global_time + 0.1);
    float band = u_tracking * (1.0 - smoothstep(0.0, 0.07, abs(textureCoord.y - bandAt)));
    float wobble = 0.0012 * u_noise * (valueNoise(vec2(line * 0.35, frame)) - 0.5) * 2.0;
    wobble += band * 0.03 * (random(vec2(line, frame)) - 0.35);
    // The head switches at the foot of every field: the last lines tear sideways.
    wobble += u_tracking * 0.05 * (1.0 - smoothstep(0.0, 0.025, textureCoord.y)) * random(vec2(line, frame + 5.0));
    vec2 uv = vec2(textureCoord.x + wobble, textureCoord.y);
    vec4 centre = picture(uv);

    // Brightness is sharp, colour is not: the tape records it with a tenth of the detail.
    vec3 smeared = vec3(0.0);
    for (float i = 0.0; i < 7.0; i += 1.0)
        smeared += picture(uv - vec2(i / 6.0 * u_smear / 100.0, 0.0)).rgb;
    smeared /= 7.0;
    vec3 colour = vec3(luma(centre.rgb)) + 1.15 * (smeared - luma(smeared));
    float grain = random(vec2(floor(textureCoord.x * 360.0), line) + 13.0 * frame) - 0.5;
    colour += u_noise * 0.16 * grain;
    float snow = step(1.0 - 0.30 * band, random(vec2(floor(textureCoord.x * 120.0), line) + 29.0 * frame));
    colour = mix(colour, vec3(0.9), 0.8 * snow);
    colour = colour * 0.92 + 0.05;
    colour *= 1.0 - 0.06 * u_noise * mod(line, 2.0);
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0), centre.a);
}
