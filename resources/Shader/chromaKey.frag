// The first picture's screen colour becomes clear and shows the second picture.
#version 120
#include "colour.glsl"

uniform sampler2D mSample0;
uniform sampler2D mSample1;
uniform vec3 u_screen = vec3(0.1, 0.7, 0.2); // colour of the screen
uniform float u_tolerance = 0.35;            // 0..1
uniform float u_softness = 0.2;              // 0..1
uniform float u_spill = 0.8;                 // how much of the screen's tint is taken off the edges, 0..1
varying vec2 textureCoord;                   // 0..1, y upward

/// The two colour differences, without brightness: a shadow on the screen is still the screen.
vec2 chroma(vec3 c)
{
    return vec2(-0.168736 * c.r - 0.331264 * c.g + 0.5 * c.b, 0.5 * c.r - 0.418688 * c.g - 0.081312 * c.b);
}

void main()
{
    vec4 front = texture2D(mSample0, textureCoord);
    vec4 back = texture2D(mSample1, textureCoord);
    vec2 screen = chroma(u_screen);
    vec2 here = chroma(front.rgb);
    float apart = distance(here, screen);
    float opacity = smoothstep(0.5 * u_tolerance, 0.5 * u_tolerance + max(0.5 * u_softness, 0.001), apart);
    // Take off what points toward the screen's hue.
    vec2 direction = normalize(screen + 1.0e-6);
    float excess = max(dot(here, direction), 0.0) * u_spill;
    vec2 clean = here - excess * direction;
    float y = luma(front.rgb);
    vec3 despilled = vec3(y + 1.402 * clean.y, y - 0.344136 * clean.x - 0.714136 * clean.y, y + 1.772 * clean.x);
    opacity *= front.a;
    float alpha = opacity + back.a * (1.0 - opacity);
    vec3 colour = clamp(despilled, 0.0, 1.0) * opacity + back.rgb * back.a * (1.0 - opacity);
    gl_FragColor = vec4(alpha > 0.0 ? colour / alpha : vec3(0.0), alpha);
}
