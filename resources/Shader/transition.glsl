// A transition from the first picture to the second. The file that includes this defines `transition`; at both
// ends the pictures are shown untouched.
#include "space.glsl"

uniform sampler2D mSample0;
uniform sampler2D mSample1;
uniform float u_global_time; // seconds
uniform float u_total_time;  // seconds
varying vec2 textureCoord;   // 0..1, y upward

vec4 from(vec2 uv)
{
    return texture2D(mSample0, uv);
}

vec4 to(vec2 uv)
{
    return texture2D(mSample1, uv);
}

bool inside(vec2 uv)
{
    return uv.x >= 0.0 && uv.x <= 1.0 && uv.y >= 0.0 && uv.y <= 1.0;
}

/// Slow at both ends.
float eased(float progress)
{
    return progress * progress * (3.0 - 2.0 * progress);
}

/// The colour at `uv` when `progress`, strictly between 0 and 1, of the way is done.
vec4 transition(vec2 uv, float progress);

void main()
{
    float progress = u_total_time > 0.0 ? u_global_time / u_total_time : 0.0;
    if (progress <= 0.0)
        gl_FragColor = from(textureCoord);
    else if (progress >= 1.0)
        gl_FragColor = to(textureCoord);
    else
        gl_FragColor = transition(textureCoord, progress);
}
