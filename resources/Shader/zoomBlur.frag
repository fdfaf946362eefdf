// Blur away from a point, as of a lens that zoomed while the shutter was open.
#version 120
#include "zoomBlur.glsl"

uniform sampler2D mSample1; // streaks of an eighth of the length

void main()
{
    vec2 away = textureCoord - u_centre;
    float nearness = lastStep();
    float factor = 1.0;
    vec4 sum = vec4(0.0);
    float weights = 0.0;
    for (float i = 0.0; i < kSamples; i += 1.0) {
        sum += factor * texture2D(mSample1, u_centre + factor * away);
        weights += factor;
        factor *= nearness;
    }
    vec4 centre = picture(textureCoord);
    gl_FragColor = u_strength > 0.0 ? average(sum, weights, centre) : centre;
}
