// Unsharp mask: what differs from the blurred picture is added once more.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_amount = 1.0;     // 0..3
uniform float u_radius = 1.2;     // pixels
uniform float u_threshold = 0.01; // brightness difference that is left alone, 0..0.2

void main()
{
    vec2 texel = u_radius / u_resolution;
    vec4 centre = picture(textureCoord);
    vec3 blurred = 4.0 * centre.rgb;
    blurred += 2.0 * (picture(textureCoord + vec2(texel.x, 0.0)).rgb + picture(textureCoord - vec2(texel.x, 0.0)).rgb);
    blurred += 2.0 * (picture(textureCoord + vec2(0.0, texel.y)).rgb + picture(textureCoord - vec2(0.0, texel.y)).rgb);
    blurred += picture(textureCoord + texel).rgb + picture(textureCoord - texel).rgb;
    blurred += picture(textureCoord + vec2(texel.x, -texel.y)).rgb + picture(textureCoord + vec2(-texel.x, texel.y)).rgb;
    vec3 detail = centre.rgb - blurred / 16.0;
    // On brightness alone: sharpening the channels apart would colour the edges.
    float strength = luma(detail);
    strength = sign(strength) * max(abs(strength) - u_threshold, 0.0);
    gl_FragColor = vec4(clamp(centre.rgb + u_amount * 2.0 * strength, 0.0, 1.0), centre.a);
}
