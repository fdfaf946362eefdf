// Barrel and pincushion of a lens.
#version 120
#include "picture.glsl"

uniform float u_distortion = 25.0; // percent: above 0 barrel, below 0 pincushion
uniform float u_zoom = 1.2;        // 1 keeps the middle's size

void main()
{
    vec2 p = centred(textureCoord) / max(u_zoom, 0.01);
    float r2 = dot(p, p);
    vec2 uv = uncentred(p * (1.0 + u_distortion / 100.0 * 1.6 * r2));
    vec2 inside = step(vec2(0.0), uv) * step(uv, vec2(1.0));
    gl_FragColor = inside.x * inside.y > 0.0 ? picture(uv) : vec4(0.0, 0.0, 0.0, 1.0);
}
