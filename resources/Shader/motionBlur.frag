// Blur along a straight line, as of a camera that moved.
#version 120
#include "picture.glsl"

uniform float u_angle = 0.0;  // degrees, counter-clockwise from the right
uniform float u_length = 6.0; // percent of the height

void main()
{
    float angle = radians(u_angle);
    vec2 path = u_length / 100.0 * vec2(cos(angle) / aspect(), sin(angle));
    vec4 centre = picture(textureCoord);
    vec4 sum = vec4(0.0);
    float taps = clamp(ceil(length(path * u_resolution) * 0.5), 1.0, 64.0);
    for (float i = 0.0; i < taps; i += 1.0)
        sum += weighted(picture(textureCoord + ((i + 0.5) / taps - 0.5) * path));
    gl_FragColor = average(sum, taps, centre);
}
