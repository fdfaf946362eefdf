// Outlines glow in the colours of the picture, on a darkened ground.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_width = 1.5;      // line width in pixels
uniform float u_brightness = 1.8; // 0..4
uniform float u_ground = 0.18;    // how much of the picture stays, 0..1

vec3 at(float x, float y)
{
    return picture(textureCoord + u_width * vec2(x, y) / u_resolution).rgb;
}

void main()
{
    vec4 centre = picture(textureCoord);
    vec3 left = at(-1.0, -1.0) + 2.0 * at(-1.0, 0.0) + at(-1.0, 1.0);
    vec3 right = at(1.0, -1.0) + 2.0 * at(1.0, 0.0) + at(1.0, 1.0);
    vec3 below = at(-1.0, -1.0) + 2.0 * at(0.0, -1.0) + at(1.0, -1.0);
    vec3 above = at(-1.0, 1.0) + 2.0 * at(0.0, 1.0) + at(1.0, 1.0);
    vec3 edge = sqrt((right - left) * (right - left) + (above - below) * (above - below)) / 4.0;
    vec3 hue = normalize(centre.rgb + 0.05);
    vec3 light = u_brightness * 2.0 * (0.6 * max(edge.r, max(edge.g, edge.b)) * hue + 0.6 * edge);
    gl_FragColor = vec4(screened(u_ground * centre.rgb, light), centre.a);
}
