// Blur along one direction: weights fall linearly from the middle to both ends of `delta`. Two of them, across
// and down, make a soft round blur.
#version 120
#include "triangleBlur.glsl"

uniform sampler2D mSample1; // blurred as far as a quarter of the reach

void main()
{
    vec4 centre = picture(textureCoord);
    vec4 blurred = average(triangle(mSample1, wideGap(), halfWidth()), 1.0, centre);
    gl_FragColor = delta == vec2(0.0) ? centre : blurred;
}
