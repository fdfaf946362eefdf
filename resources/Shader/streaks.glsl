// Streaks toward a point, drawn in three passes of four samples each, which makes 64: those of the first lie next to
// each other, and every sample of the next pass stands for all four of the one before. Each lies nearer to the point
// by the same factor.
const float kSamples = 4.0;

/// The factor from one sample to the next, if after all samples `rest` of the way is left, 0..1.
float lastStep(float rest)
{
    return sqrt(sqrt(rest));
}

float middleStep(float rest)
{
    return lastStep(lastStep(rest));
}

float fineStep(float rest)
{
    return lastStep(middleStep(rest));
}

/// The mean of four samples on the way to `centre`. Nearer ones weigh less in proportion, as if all were equally far
/// apart.
vec4 streak(sampler2D source, vec2 at, vec2 centre, float nearness)
{
    vec2 away = at - centre;
    float factor = 1.0;
    vec4 sum = texture2D(source, at);
    float weights = 1.0;
    for (float i = 1.0; i < kSamples; i += 1.0) {
        factor *= nearness;
        sum += factor * texture2D(source, centre + factor * away);
        weights += factor;
    }
    return sum / weights;
}
