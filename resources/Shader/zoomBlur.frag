// Blur away from a point, as of a lens that zoomed while the shutter was open.
#version 120
#include "zoomBlur.glsl"

uniform sampler2D mSample1; // streaks of a quarter of the length

void main()
{
    vec4 centre = picture(textureCoord);
    vec4 sum = streak(mSample1, textureCoord, u_centre, lastStep(rest()));
    gl_FragColor = u_strength > 0.0 ? average(sum, 1.0, centre) : centre;
}
