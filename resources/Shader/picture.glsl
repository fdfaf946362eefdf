// The picture that a filter reads.
#include "space.glsl"

uniform sampler2D mSample0;
varying vec2 textureCoord; // 0..1, y upward

vec4 picture(vec2 uv)
{
    return texture2D(mSample0, uv);
}

/// Samples are averaged with their alpha as weight, so that clear pixels lend no colour.
vec4 weighted(vec4 colour)
{
    return vec4(colour.rgb * colour.a, colour.a);
}

vec4 average(vec4 weightedSum, float weights, vec4 whenClear)
{
    return weightedSum.a > 0.0 ? vec4(weightedSum.rgb / weightedSum.a, weightedSum.a / weights) : whenClear;
}
