// Red and blue drift apart, along a direction or outward from the middle like a simple lens.
#version 120
#include "picture.glsl"

uniform float u_amount = 0.8; // percent of the height
uniform float u_angle = 0.0;  // degrees, counter-clockwise from the right
uniform float u_radial = 0.8; // 0 along the angle, 1 outward

void main()
{
    float angle = radians(u_angle);
    vec2 straight = vec2(cos(angle), sin(angle));
    vec2 outward = 2.0 * centred(textureCoord);
    vec2 shift = u_amount / 100.0 * mix(straight, outward, u_radial) / vec2(aspect(), 1.0);
    vec4 centre = picture(textureCoord);
    gl_FragColor = vec4(picture(textureCoord - shift).r, centre.g, picture(textureCoord + shift).b, centre.a);
}
