// What glows, at a quarter of the size.
#version 120
#include "bright.glsl"

uniform vec2 u_pass_resolution;

void main()
{
    vec3 sum = vec3(0.0);
    for (float y = -1.5; y < 2.0; y += 1.0)
        for (float x = -1.5; x < 2.0; x += 1.0)
            sum += glowing(picture(textureCoord + 0.25 * vec2(x, y) / u_pass_resolution));
    gl_FragColor = vec4(sum / 16.0, 1.0);
}
