// Two inks: one for the shadows, one for the lights.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform vec3 u_shadows = vec3(0.12, 0.08, 0.35);
uniform vec3 u_lights = vec3(1.0, 0.83, 0.55);
uniform float u_contrast = 1.1;                  // 0..2
uniform float u_amount = 1.0;                    // 0..1

void main()
{
    vec4 centre = picture(textureCoord);
    float value = clamp((luma(centre.rgb) - 0.5) * u_contrast + 0.5, 0.0, 1.0);
    gl_FragColor = vec4(mix(centre.rgb, mix(u_shadows, u_lights, value), u_amount), centre.a);
}
