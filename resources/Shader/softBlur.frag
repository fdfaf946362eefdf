// Soft round blur: Gaussian weights on a sunflower spiral.
#version 120
#include "picture.glsl"

uniform float u_radius = 2.0; // percent of the height

void main()
{
    vec4 centre = picture(textureCoord);
    vec4 sum = weighted(centre);
    float weights = 1.0;
    vec2 reach = vec2(u_radius / 100.0 / aspect(), u_radius / 100.0);
    for (float i = 1.0; i < 64.0; i += 1.0) {
        float r = sqrt(i / 64.0);
        float angle = i * 2.39996323; // the golden angle
        float weight = exp(-3.0 * r * r);
        sum += weight * weighted(picture(textureCoord + r * reach * vec2(cos(angle), sin(angle))));
        weights += weight;
    }
    gl_FragColor = average(sum, weights, centre);
}
