// Miniature: smaller discs fill the gaps between the points.
#version 120
#include "miniature.glsl"

void main()
{
    gl_FragColor = disc(mSample0, 0.21 * discRadius(), 9.0);
}
