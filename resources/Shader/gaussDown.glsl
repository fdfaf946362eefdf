// One rung of a Gaussian blur, down, and what the next smaller one lends to it.
#include "space.glsl"
#include "gauss.glsl"

uniform sampler2D mSample0; // the rung blurred across, read at whole texels
uniform sampler2D mSample1; // the next smaller rung, blurred; the smallest one reads anything
varying vec2 textureCoord;

void main()
{
    vec4 fine = gaussian(mSample0, textureCoord, vec2(0.0, 1.0 / u_pass_resolution.y), rungDeviation().y);
    gl_FragColor = mix(fine, texture2D(mSample1, textureCoord), coarserShare());
}
