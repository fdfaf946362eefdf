// Seen through rough glass.
#version 120
#include "picture.glsl"
#include "noise.glsl"

uniform float u_roughness = 3.0; // percent of the height
uniform float u_grain = 2.0;     // size of the grain in pixels

void main()
{
    vec2 grain = floor(textureCoord * u_resolution / max(u_grain, 1.0));
    vec2 reach = u_roughness / 100.0 * vec2(1.0 / aspect(), 1.0);
    vec4 sum = vec4(0.0);
    for (float i = 0.0; i < 6.0; i += 1.0)
        sum += weighted(picture(mirrored(textureCoord + reach * (random2(grain + 37.0 * i) - 0.5))));
    vec4 soft = average(sum, 6.0, picture(textureCoord));
    gl_FragColor = vec4(mix(soft.rgb, vec3(1.0), 0.06 * min(u_roughness, 1.0)), soft.a);
}
