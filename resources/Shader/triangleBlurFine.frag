// Directional blur: the narrowest triangle, of colours multiplied by alpha.
#version 120
#include "triangleBlur.glsl"

void main()
{
    vec4 sum = weighted(picture(textureCoord));
    float weights = 1.0;
    for (float i = 1.0; i < 4.0; i += 1.0) {
        float weight = max(1.0 - i * fineGap() / narrowGap(), 0.0);
        vec2 way = i * fineGap() * pixelStep();
        sum += weight * (weighted(picture(textureCoord + way)) + weighted(picture(textureCoord - way)));
        weights += 2.0 * weight;
    }
    gl_FragColor = sum / weights;
}
