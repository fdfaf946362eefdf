// The camera rushes into the first picture and arrives in the second. Streaks come from a picture of half the size, and
// where they are too short for it, as in the middle and at both ends, the sharp one shows.
#version 120
#include "zoomThrough.glsl"

uniform sampler2D mSample2; // the streaks, multiplied by alpha

void main()
{
    vec4 sharp = still();
    vec4 soft = texture2D(mSample2, textureCoord);
    float streak = length((textureCoord - 0.5) * u_resolution) * (1.0 - rest());
    vec4 sum = mix(vec4(sharp.rgb * sharp.a, sharp.a), soft, smoothstep(1.0, 6.0, streak));
    vec4 colour = sum.a > 0.0 ? vec4(sum.rgb / sum.a, sum.a) : sharp;
    colour.rgb *= 1.0 + 0.25 * speed() * u_strength;
    gl_FragColor = clamp(colour, 0.0, 1.0);
}
