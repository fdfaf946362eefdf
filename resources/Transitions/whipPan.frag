// The camera is torn round from one picture to the other. The blur comes from a picture of half the size, and the sharp
// one shows where the camera is too slow for it.
#version 120
#include "whipPan.glsl"

uniform sampler2D mSample2; // the blur, multiplied by alpha

void main()
{
    vec4 sharp = seen(0.0, step(0.5, way()));
    vec4 soft = texture2D(mSample2, textureCoord);
    float pixels = length(direction() * u_resolution) * blurred();
    vec4 sum = mix(vec4(sharp.rgb * sharp.a, sharp.a), soft, smoothstep(1.0, 6.0, pixels));
    gl_FragColor = sum.a > 0.0 ? vec4(sum.rgb / sum.a, sum.a) : sharp;
}
