// The way of the camera in motion blur. It is drawn in three passes of four samples each, which makes 64: the first
// one's lie next to each other, and every sample of the next pass stands for all four of the one before.
#include "picture.glsl"

uniform float u_angle = 0.0;  // degrees, counter-clockwise from the right
uniform float u_length = 6.0; // percent of the height

vec2 path()
{
    float angle = radians(u_angle);
    return u_length / 100.0 * vec2(cos(angle) / aspect(), sin(angle));
}

vec4 fourAlong(sampler2D source, vec2 at, vec2 gap)
{
    return 0.25 * (texture2D(source, at - 1.5 * gap) + texture2D(source, at - 0.5 * gap)
        + texture2D(source, at + 0.5 * gap) + texture2D(source, at + 1.5 * gap));
}
