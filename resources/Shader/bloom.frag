// Bright places glow into their surroundings.
#version 120
#include "bright.glsl"

uniform float u_intensity = 0.7; // 0..2
uniform float u_radius = 6.0;    // percent of the height
#include "gauss.glsl"

uniform sampler2D mSample1; // the glow

void main()
{
    vec4 centre = picture(textureCoord);
    // A glow narrower than a quarter-size picture can show passes into the bright places themselves.
    float share = min(deviation() * deviation() / 6.0, 1.0);
    vec3 glow = mix(glowing(centre), texture2D(mSample1, textureCoord).rgb, share);
    gl_FragColor = vec4(screened(centre.rgb, 1.6 * u_intensity * glow), centre.a);
}
