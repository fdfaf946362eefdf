// Moments that fill the gaps between those of the pass before: six of them, `gap` apart in the length of the blur.
#include "whipPan.glsl"

vec4 moments(float gap)
{
    vec2 step = gap * blurred() * direction();
    vec4 sum = vec4(0.0);
    for (float i = -2.5; i < 3.0; i += 1.0)
        sum += texture2D(mSample0, textureCoord + i * step);
    return sum / 6.0;
}
