// Zoom blur: the nearest samples, of colours multiplied by alpha. Nearer ones weigh less in proportion, as if all were
// equally far apart.
#version 120
#include "zoomBlur.glsl"

void main()
{
    vec2 away = textureCoord - u_centre;
    float nearness = fineStep();
    float factor = 1.0;
    vec4 sum = vec4(0.0);
    float weights = 0.0;
    for (float i = 0.0; i < kSamples; i += 1.0) {
        sum += factor * weighted(picture(u_centre + factor * away));
        weights += factor;
        factor *= nearness;
    }
    gl_FragColor = sum / weights;
}
