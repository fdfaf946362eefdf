// The picture is rolled up: its foot becomes a planet, its top the sky around it.
#version 120
#include "picture.glsl"

uniform float u_zoom = 1.0;     // 0.3..3
uniform float u_rotation = 0.0; // degrees
uniform float u_ground = 0.5;   // size of the planet, 0..1

void main()
{
    vec2 p = centred(textureCoord) / max(u_zoom, 0.01);
    float r = length(p) * 1.25;
    float angle = fract(atan(p.y, p.x) / 6.28318531 + u_rotation / 360.0);
    // Both ends of the strip are the same place: it runs there and back.
    float x = 1.0 - abs(2.0 * angle - 1.0);
    float y = pow(clamp(r, 0.0, 1.0), mix(0.4, 1.6, u_ground));
    gl_FragColor = picture(vec2(x, y));
}
