// Blur along one direction: weights fall linearly from the middle to both ends of `delta`. Two of them, across
// and down, make a soft round blur.
#version 120
#include "picture.glsl"

uniform vec2 delta = vec2(0.05, 0.0); // reach to one side, in texture coordinates

void main()
{
    vec4 centre = picture(textureCoord);
    vec4 sum = weighted(centre);
    float weights = 1.0;
    // A tap half way between two texels counts for both.
    float taps = clamp(ceil(length(delta * u_resolution) * 0.5), 1.0, 48.0);
    for (float i = 1.0; i <= taps; i += 1.0) {
        float t = (i - 0.25) / taps;
        float weight = 2.0 * (1.0 - t);
        sum += weight * (weighted(picture(textureCoord + t * delta)) + weighted(picture(textureCoord - t * delta)));
        weights += 2.0 * weight;
    }
    gl_FragColor = average(sum, weights, centre);
}
