// Directional blur: the triangle that fills the gaps of the last one.
#version 120
#include "triangleBlur.glsl"

void main()
{
    gl_FragColor = triangle(mSample0, narrowGap(), wideGap());
}
