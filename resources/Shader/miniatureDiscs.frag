// Miniature: points become rings of points over most of their disc.
#version 120
#include "miniature.glsl"

void main()
{
    gl_FragColor = disc(mSample0, 0.86 * discRadius(), 28.0);
}
