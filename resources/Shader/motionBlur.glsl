// The way of the camera in motion blur.
#include "picture.glsl"
#include "line.glsl"

uniform float u_angle = 0.0;  // degrees, counter-clockwise from the right
uniform float u_length = 6.0; // percent of the height

vec2 path()
{
    float angle = radians(u_angle);
    return u_length / 100.0 * vec2(cos(angle) / aspect(), sin(angle));
}
