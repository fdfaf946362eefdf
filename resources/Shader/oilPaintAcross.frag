// Oil paint: mean colour and unrest of a run of pixels; the unrest is the root of the variance, summed over colours.
#version 120
#include "picture.glsl"
#include "oilPaint.glsl"

void main()
{
    vec3 sum = picture(textureCoord).rgb;
    vec3 squares = sum * sum;
    float weights = 1.0;
    for (float i = 1.0; i < halfBrush() + 1.0; i += 1.0) {
        vec2 way = vec2(i / u_resolution.x, 0.0);
        vec3 left = picture(textureCoord - way).rgb;
        vec3 right = picture(textureCoord + way).rgb;
        float share = shareOf(i);
        sum += share * (left + right);
        squares += share * (left * left + right * right);
        weights += 2.0 * share;
    }
    vec3 mean = sum / weights;
    gl_FragColor = vec4(mean, sqrt(max(dot(squares / weights - mean * mean, vec3(1.0)), 0.0)));
}
