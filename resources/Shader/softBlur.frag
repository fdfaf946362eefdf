// Soft round blur, laid over the sharp picture where it is narrower than the half-size picture can show.
#version 120
#include "picture.glsl"

uniform float u_radius = 2.0; // percent of the height
#include "gauss.glsl"

uniform sampler2D mSample1; // the blur

void main()
{
    vec4 sharp = picture(textureCoord);
    float share = min(deviation() * deviation() / 2.0, 1.0);
    gl_FragColor = average(mix(weighted(sharp), texture2D(mSample1, textureCoord), share), 1.0, sharp);
}
