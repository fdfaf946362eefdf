// Tilted lens: a sharp band, everything above and below out of focus, colours like painted models.
#version 120
#include "miniature.glsl"
#include "colour.glsl"

uniform float u_saturation = 1.35; // 0..2
uniform sampler2D mSample1;        // squared colours out of focus, at half the size

void main()
{
    vec4 sharp = picture(textureCoord);
    vec4 light = average(texture2D(mSample1, textureCoord), 1.0, sharp * sharp);
    float share = smoothstep(0.4, 2.5, discRadius() * u_resolution.y);
    vec4 soft = average(mix(weighted(sharp), weighted(vec4(sqrt(light.rgb), light.a)), share), 1.0, sharp);
    gl_FragColor = vec4(clamp(saturated(soft.rgb, u_saturation), 0.0, 1.0), soft.a);
}
