// Whip pan: four moments, far apart, multiplied by alpha.
#version 120
#include "whipPan.glsl"

vec4 moment(float place)
{
    float gap = 0.25 * blurred();
    // The second picture comes in smoothly while the moments around this one pass the border.
    float share = clamp((way() + 0.5 * place * gap - 0.5) / max(0.5 * gap, 0.001) + 0.5, 0.0, 1.0);
    vec4 here = seen(place * gap, share);
    return vec4(here.rgb * here.a, here.a);
}

void main()
{
    gl_FragColor = 0.25 * (moment(-1.5) + moment(-0.5) + moment(0.5) + moment(1.5));
}
