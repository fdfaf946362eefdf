// Still water below a line mirrors what stands above it.
#version 120
#include "picture.glsl"
#include "noise.glsl"

uniform float u_global_time; // seconds
uniform float u_level = 0.4; // height of the water, 0..1
uniform float u_waves = 0.5; // 0..1
uniform float u_depth = 0.6; // how dark and blue the water is, 0..1

void main()
{
    float below = u_level - textureCoord.y;
    if (below <= 0.0) {
        gl_FragColor = picture(textureCoord);
        return;
    }
    // Waves look wider near the viewer.
    float distance_ = 1.0 / (0.04 + below);
    float wave = valueNoise(vec2(textureCoord.x * aspect() * 5.0 * sqrt(distance_), 6.0 * distance_ + 2.0 * u_global_time)) - 0.5;
    wave += 0.5 * (valueNoise(vec2(textureCoord.x * aspect() * 14.0, 19.0 * distance_ - 3.0 * u_global_time)) - 0.5);
    float bend = u_waves * wave * (0.01 + 0.08 * below);
    vec4 mirror = picture(mirrored(vec2(textureCoord.x + 0.4 * bend, u_level + below + bend)));
    vec3 water = mix(vec3(1.0), vec3(0.45, 0.62, 0.75), u_depth) * (1.0 - 0.35 * u_depth * below / max(u_level, 0.001));
    float shore = 1.0 - smoothstep(0.0, 0.004, below);
    gl_FragColor = vec4(clamp(mirror.rgb * water + 0.10 * shore, 0.0, 1.0), mirror.a);
}
