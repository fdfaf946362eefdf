// Where the rays come from, and how they fade. They are drawn in three passes of seven samples each, which makes 343:
// those of the first lie next to each other, and every sample of the next pass stands for all seven of the one before.
#include "picture.glsl"

uniform vec2 u_source = vec2(0.5, 1.1); // 0..1, y upward; may lie outside
uniform float u_length = 0.7;           // 0..1 of the way to the source

const float kSamples = 7.0;

/// The mean of seven samples on the way to the source, in which near light counts more; `share` is the part of the way
/// from one to the next. Each lies nearer to the source by the same factor.
vec4 ray(sampler2D light, float share)
{
    vec2 away = textureCoord - u_source;
    float nearness = pow(1.0 - 0.92 * clamp(u_length, 0.0, 1.0), share);
    float factor = 1.0;
    vec4 sum = texture2D(light, textureCoord);
    float weights = 1.0;
    for (float i = 1.0; i < kSamples; i += 1.0) {
        factor *= nearness;
        sum += factor * factor * texture2D(light, u_source + factor * away);
        weights += factor * factor;
    }
    return sum / weights;
}
