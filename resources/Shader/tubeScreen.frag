// A picture tube: bent glass, lines, coloured stripes and a soft glow.
#version 120
#include "picture.glsl"

uniform float u_curvature = 0.6; // 0..1
uniform float u_lines = 0.6;     // 0..1
uniform float u_mask = 0.5;      // strength of the stripes, 0..1
uniform float u_size = 4.0;      // height of a line in pixels

void main()
{
    vec2 p = 2.0 * textureCoord - 1.0;
    p *= 1.0 + u_curvature * 0.12 * p.yx * p.yx;
    vec2 uv = 0.5 * p + 0.5;
    vec2 texel = 1.0 / u_resolution;
    float size = max(u_size, 2.0);
    vec4 centre = picture(uv);
    vec3 glow = picture(uv + vec2(size, 0.0) * texel).rgb + picture(uv - vec2(size, 0.0) * texel).rgb
        + picture(uv + vec2(0.0, size) * texel).rgb + picture(uv - vec2(0.0, size) * texel).rgb;
    vec3 colour = 0.72 * centre.rgb + 0.07 * glow;
    float beam = 0.5 + 0.5 * cos(6.28318531 * uv.y * u_resolution.y / size);
    // Bright lines are thicker.
    colour *= 1.0 - u_lines * 0.65 * beam * (1.0 - 0.45 * max(colour.r, max(colour.g, colour.b)));
    float stripe = mod(floor(textureCoord.x * u_resolution.x), 3.0);
    vec3 phosphor = stripe < 0.5 ? vec3(1.0, 0.5, 0.5) : stripe < 1.5 ? vec3(0.5, 1.0, 0.5) : vec3(0.5, 0.5, 1.0);
    colour *= mix(vec3(1.0), phosphor, 0.6 * u_mask);
    colour *= 1.0 + 0.22 * u_lines + 0.24 * u_mask;
    vec2 border = smoothstep(vec2(0.0), vec2(0.012), uv) * smoothstep(vec2(0.0), vec2(0.012), 1.0 - uv);
    float inside = mix(1.0, border.x * border.y, step(0.001, u_curvature));
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0) * inside, centre.a);
}
