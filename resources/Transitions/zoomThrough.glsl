// The two pictures that the zoom rushes through, mixed as they are when the camera stands still.
#include "space.glsl"

uniform sampler2D mSample0;
uniform sampler2D mSample1;
uniform float u_global_time;    // seconds
uniform float u_total_time;     // seconds
uniform float u_strength = 0.7; // 0..1
varying vec2 textureCoord;      // 0..1, y upward

float progress()
{
    return u_total_time > 0.0 ? clamp(u_global_time / u_total_time, 0.0, 1.0) : 0.0;
}

float speed()
{
    // Half a wave of a sine, at less cost.
    float square = (progress() - 0.5) * (progress() - 0.5);
    return 4.0 * progress() * (1.0 - progress()) * (1.0 - square * (0.9348 - 0.305 * square));
}

/// What is left of the way to the middle at the end of a streak.
float rest()
{
    return 1.0 - 0.35 * clamp(u_strength, 0.0, 2.0) * speed();
}

vec4 still()
{
    float zoomFrom = 1.0 / (1.0 + 2.5 * progress() * progress());
    float zoomTo = 1.0 + 0.8 * (1.0 - progress()) * (1.0 - progress());
    vec2 p = textureCoord - 0.5;
    return mix(texture2D(mSample0, 0.5 + p * zoomFrom), texture2D(mSample1, mirrored(0.5 + p * zoomTo)),
        smoothstep(0.4, 0.6, progress()));
}
