// One rung of a Gaussian blur, down, and what the next smaller one lends to it.
#include "space.glsl"
#include "gauss.glsl"

uniform sampler2D mSample0; // the rung blurred across, read at whole texels
uniform sampler2D mSample1; // the next smaller rung, blurred; the smallest one reads anything
varying vec2 textureCoord;

/// The next smaller rung at `at`. The file that includes this defines it.
vec4 coarser(vec2 at);

/// The picture enlarged by a cubic spline, whose curves show no creases. Four samples between texels stand for sixteen.
vec4 splined(sampler2D source, vec2 size, vec2 at)
{
    vec2 texel = at * size - 0.5;
    vec2 f = fract(texel);
    vec2 first = floor(texel);
    vec2 w0 = (1.0 - f) * (1.0 - f) * (1.0 - f) / 6.0;
    vec2 w1 = 2.0 / 3.0 - 0.5 * f * f * (2.0 - f);
    vec2 w3 = f * f * f / 6.0;
    vec2 below = w0 + w1;
    vec2 lower = (first - 0.5 + w1 / below) / size;
    vec2 upper = (first + 1.5 + w3 / (1.0 - below)) / size;
    return mix(mix(texture2D(source, upper), texture2D(source, vec2(lower.x, upper.y)), below.x),
        mix(texture2D(source, vec2(upper.x, lower.y)), texture2D(source, lower), below.x), below.y);
}

void main()
{
    vec4 fine = gaussian(mSample0, textureCoord, vec2(0.0, 1.0 / u_pass_resolution.y), rungDeviation().y);
    gl_FragColor = mix(fine, coarser(textureCoord), coarserShare());
}
