// Zoom through: the pictures before they are blurred, multiplied by alpha.
#version 120
#include "zoomThrough.glsl"

void main()
{
    vec4 here = still();
    gl_FragColor = vec4(here.rgb * here.a, here.a);
}
