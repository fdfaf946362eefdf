// Blur along a line, drawn in three passes of four samples each, which makes 64: the first one's lie next to each
// other, and every sample of the next pass stands for all four of the one before.
vec4 fourAlong(sampler2D source, vec2 at, vec2 step)
{
    return 0.25 * (texture2D(source, at - 1.5 * step) + texture2D(source, at - 0.5 * step)
        + texture2D(source, at + 0.5 * step) + texture2D(source, at + 1.5 * step));
}
