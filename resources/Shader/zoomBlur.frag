// Blur away from a point, as of a lens that zoomed while the shutter was open.
#version 120
#include "picture.glsl"
#include "noise.glsl"

uniform vec2 u_centre = vec2(0.5, 0.5); // 0..1, y upward
uniform float u_strength = 20.0;        // percent of the way to the centre

void main()
{
    vec2 path = (u_centre - textureCoord) * u_strength / 100.0;
    vec4 centre = picture(textureCoord);
    vec4 sum = vec4(0.0);
    float taps = clamp(ceil(length(path * u_resolution) * 0.5), 1.0, 40.0);
    // Far from the centre the taps are several pixels apart; shifting them at random turns bands into fine grain.
    float shift = taps < 40.0 ? 0.5 : random(gl_FragCoord.xy);
    for (float i = 0.0; i < taps; i += 1.0)
        sum += weighted(picture(textureCoord + (i + shift) / taps * path));
    gl_FragColor = u_strength > 0.0 ? average(sum, taps, centre) : centre;
}
