// The way of the camera in a whip pan. Two pictures lie side by side along it; past them both are mirrored.
#include "space.glsl"

uniform sampler2D mSample0;
uniform sampler2D mSample1;
uniform float u_global_time; // seconds
uniform float u_total_time;  // seconds
uniform float u_angle = 0.0; // degrees, counter-clockwise from the right
uniform float u_blur = 0.8;  // 0..1
varying vec2 textureCoord;   // 0..1, y upward

float progress()
{
    return u_total_time > 0.0 ? clamp(u_global_time / u_total_time, 0.0, 1.0) : 0.0;
}

vec2 direction()
{
    float angle = radians(u_angle);
    return vec2(cos(angle), sin(angle));
}

/// Share of the way that is done, 0..1.
float way()
{
    float left = 1.0 - progress();
    return progress() < 0.5 ? 4.0 * progress() * progress() * progress() : 1.0 - 4.0 * left * left * left;
}

/// Length of the blur in texture coordinates.
float blurred()
{
    float speed = min(3.0 * min(progress(), 1.0 - progress()), 1.0);
    return 0.5 * u_blur * speed * speed;
}

/// What the camera sees when it is `ahead` of the middle of its blur; `share` is that of the second picture.
vec4 seen(float ahead, float share)
{
    vec2 first = textureCoord + direction() * (2.0 * way() + ahead);
    vec2 second = textureCoord + direction() * (2.0 * way() + ahead - 2.0);
    return mix(texture2D(mSample0, mirrored(first)), texture2D(mSample1, mirrored(second)), share);
}
