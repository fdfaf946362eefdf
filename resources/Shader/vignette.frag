// The corners darken, or take a colour.
#version 120
#include "space.glsl"

uniform sampler2D mSample0;
uniform float u_amount = 0.7;              // 0..1
uniform float u_radius = 0.45;             // where it begins, 0..1 of the half diagonal
uniform float u_softness = 0.55;           // 0..1
uniform float u_roundness = 0.0;           // 0 follows the picture's shape, 1 a circle
uniform vec3 u_tint = vec3(0.0, 0.0, 0.0); // colour of the corners
varying vec2 textureCoord;                 // 0..1, y upward

void main()
{
    vec4 centre = texture2D(mSample0, textureCoord);
    vec2 fitted = (textureCoord - 0.5) * 1.41421356;
    vec2 round_ = centred(textureCoord) / length(vec2(0.5 * aspect(), 0.5));
    float d = length(mix(fitted, round_, u_roundness));
    float shade = u_amount * smoothstep(u_radius, u_radius + max(u_softness, 0.001), d);
    gl_FragColor = vec4(mix(centre.rgb, u_tint, shade), centre.a);
}
