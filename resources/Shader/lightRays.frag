// Light streams from a point through the bright places of the picture.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_intensity = 1.2;             // 0..3
uniform vec3 u_tint = vec3(1.0, 0.93, 0.78); // colour of the light
uniform sampler2D mSample1;                  // the rays

void main()
{
    vec4 centre = picture(textureCoord);
    vec3 rays = texture2D(mSample1, textureCoord).rgb;
    gl_FragColor = vec4(screened(centre.rgb, u_intensity * u_tint * rays), centre.a);
}
