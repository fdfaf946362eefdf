// Pen and ink: strokes in four directions, denser where the picture is darker.
#version 120
#include "picture.glsl"
#include "colour.glsl"
#include "noise.glsl"

uniform float u_spacing = 6.0; // distance of the strokes in pixels
uniform float u_colour = 0.2;  // how much of the picture's colour the ink has, 0..1

/// Ink of one set of parallel strokes; the hand is not quite steady.
float strokes(float angle, float darkness)
{
    float a = radians(angle);
    vec2 p = textureCoord * u_resolution;
    float along = dot(p, vec2(cos(a), sin(a)));
    float across = dot(p, vec2(-sin(a), cos(a))) + 1.2 * (valueNoise(vec2(along * 0.02, angle)) - 0.5) * u_spacing;
    float width = clamp(darkness, 0.0, 1.0) * 0.55;
    float pressure = 0.8 + 0.4 * valueNoise(vec2(along * 0.06, floor(across / u_spacing) * 7.0 + angle));
    float d = abs(fract(across / u_spacing) - 0.5);
    float soft = 0.8 / u_spacing;
    return darkness > 0.0 ? 1.0 - smoothstep(width * pressure - soft, width * pressure + soft, d) : 0.0;
}

void main()
{
    vec4 centre = picture(textureCoord);
    vec2 texel = 1.5 / u_resolution;
    float dark = 1.0 - luma(0.25 * (picture(textureCoord + texel).rgb + picture(textureCoord - texel).rgb
        + picture(textureCoord + vec2(texel.x, -texel.y)).rgb + picture(textureCoord + vec2(-texel.x, texel.y)).rgb));
    float ink = strokes(45.0, (dark - 0.15) * 0.9);
    ink = max(ink, strokes(-45.0, (dark - 0.40) * 0.9));
    ink = max(ink, strokes(0.0, (dark - 0.60) * 1.0));
    ink = max(ink, strokes(90.0, (dark - 0.75) * 1.4));
    vec3 paper = vec3(0.97, 0.95, 0.90) - 0.03 * valueNoise(textureCoord * u_resolution * 0.7);
    vec3 pen = mix(vec3(0.10, 0.10, 0.14), 0.75 * centre.rgb, u_colour);
    gl_FragColor = vec4(mix(paper, pen, 0.9 * ink), centre.a);
}
