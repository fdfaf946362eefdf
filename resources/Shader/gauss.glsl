// Gaussian blur of any width on a ladder of smaller pictures: halves, quarters and sixteenths of the size, each
// blurred by as much as its own shrinking and enlarging leave to do. Neighbouring rungs give nearly the same picture
// where one takes over from the other, so a radius that moves shows no step. All hold colours multiplied by alpha. The
// file that includes this declares `u_radius`, in percent of the height, and includes space.glsl before.
uniform vec2 u_pass_resolution; // pixels of the rung that is drawn

/// Standard deviation in pixels of the picture.
float deviation()
{
    return 0.39 * max(u_radius, 0.0) / 100.0 * u_resolution.y;
}

/// Pixels of the picture in one of this rung, along one side.
float rung()
{
    return u_resolution.y / u_pass_resolution.y;
}

/// Share of the next smaller rung in what this one shows, 0..1.
float coarserShare()
{
    float step = rung();
    return step < 3.0 ? smoothstep(2.0, 2.8, deviation() / step)
        : step < 8.0 ? smoothstep(5.0, 7.0, deviation() / step) : 0.0;
}

/// Standard deviation in texels that this rung has to add; 0 where it is not shown.
vec2 rungDeviation()
{
    vec2 step = u_resolution / u_pass_resolution;
    // A box of `step` pixels from shrinking, and from enlarging a tent, or two of them where steps are large.
    float share = rung() > 8.0 ? 0.417 : 0.25;
    vec2 rest = max(deviation() * deviation() - share * step * step, 0.1);
    return coarserShare() < 1.0 ? sqrt(rest) / step : vec2(0.0);
}

/// The blur along `texel`, whose weights end at zero.
vec4 gaussian(sampler2D source, vec2 at, vec2 texel, float sigma)
{
    sigma *= 1.044; // or it would be narrower, for the want of ends
    const float rim = 0.011109; // at three deviations
    float falloff = -0.5 / max(sigma * sigma, 1.0e-4);
    vec4 sum = (1.0 - rim) * texture2D(source, at);
    float weights = 1.0 - rim;
    for (float i = 1.0; i < 3.0 * sigma; i += 1.0) {
        float weight = exp(falloff * i * i) - rim;
        sum += weight * (texture2D(source, at + i * texel) + texture2D(source, at - i * texel));
        weights += 2.0 * weight;
    }
    return sum / weights;
}
