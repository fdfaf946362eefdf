// One rung of a Gaussian blur, across.
#include "space.glsl"
#include "gauss.glsl"

uniform sampler2D mSample0; // the rung, read at whole texels
varying vec2 textureCoord;

void main()
{
    gl_FragColor = gaussian(mSample0, textureCoord, vec2(1.0 / u_pass_resolution.x, 0.0), rungDeviation().x);
}
