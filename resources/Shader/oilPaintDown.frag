// Oil paint: mean colour and unrest of a square, from those of its rows. Its variance is the mean of theirs and the
// variance of their means.
#version 120
#include "space.glsl"
#include "oilPaint.glsl"

uniform sampler2D mSample0; // the rows
varying vec2 textureCoord;

void main()
{
    vec4 sum = texture2D(mSample0, textureCoord);
    float squares = dot(sum, sum);
    float weights = 1.0;
    for (float i = 1.0; i < halfBrush() + 1.0; i += 1.0) {
        vec2 way = vec2(0.0, i / u_resolution.y);
        vec4 below = texture2D(mSample0, textureCoord - way);
        vec4 above = texture2D(mSample0, textureCoord + way);
        float share = shareOf(i);
        sum += share * (below + above);
        squares += share * (dot(below, below) + dot(above, above));
        weights += 2.0 * share;
    }
    vec3 mean = sum.rgb / weights;
    gl_FragColor = vec4(mean, sqrt(max(squares / weights - dot(mean, mean), 0.0)));
}
