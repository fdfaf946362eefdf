// Squares of one colour, the average of nine places within.
#version 120
#include "picture.glsl"

uniform float u_size = 16.0; // side of a square in pixels

void main()
{
    // Counted from the middle, so that growing squares do not wander.
    vec2 block = max(u_size, 1.0) / u_resolution;
    vec2 middle = (floor((textureCoord - 0.5) / block) + 0.5) * block + 0.5;
    vec4 sum = vec4(0.0);
    for (float y = -1.0; y <= 1.0; y += 1.0)
        for (float x = -1.0; x <= 1.0; x += 1.0)
            sum += weighted(picture(middle + vec2(x, y) * block / 3.0));
    vec4 average_ = average(sum, 9.0, vec4(0.0));
    gl_FragColor = u_size > 1.0 ? average_ : picture(textureCoord);
}
