// Blur along a straight line, as of a camera that moved.
#version 120
#include "motionBlur.glsl"

uniform sampler2D mSample1; // blurred along a quarter of the way

void main()
{
    vec4 centre = picture(textureCoord);
    vec4 blurred = average(fourAlong(mSample1, textureCoord, path() / 4.0), 1.0, centre);
    gl_FragColor = u_length != 0.0 ? blurred : centre;
}
