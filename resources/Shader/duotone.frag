// Two inks: one for the shadows, one for the lights.
#version 120
#include "colour.glsl"

uniform sampler2D mSample0;
uniform vec3 u_shadows = vec3(0.12, 0.08, 0.35);
uniform vec3 u_lights = vec3(1.0, 0.83, 0.55);
uniform float u_contrast = 1.1;                  // 0..2
uniform float u_amount = 1.0;                    // 0..1
varying vec2 textureCoord;                       // 0..1, y upward

void main()
{
    vec4 centre = texture2D(mSample0, textureCoord);
    float value = clamp((luma(centre.rgb) - 0.5) * u_contrast + 0.5, 0.0, 1.0);
    gl_FragColor = vec4(mix(centre.rgb, mix(u_shadows, u_lights, value), u_amount), centre.a);
}
