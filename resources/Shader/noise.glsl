// Pseudo-random values that depend on nothing but the position. Made of fractions, without a sine: drivers
// compute those differently far from zero.
float random(vec2 p)
{
    vec3 q = fract(vec3(p.xyx) * 0.1031);
    q += dot(q, q.yzx + 33.33);
    return fract((q.x + q.y) * q.z);
}

vec2 random2(vec2 p)
{
    vec3 q = fract(vec3(p.xyx) * vec3(0.1031, 0.1030, 0.0973));
    q += dot(q, q.yzx + 33.33);
    return fract((q.xx + q.yz) * q.zy);
}

/// Smooth noise of one feature a unit, 0..1.
float valueNoise(vec2 p)
{
    vec2 cell = floor(p);
    vec2 f = fract(p);
    f = f * f * (3.0 - 2.0 * f);
    return mix(mix(random(cell), random(cell + vec2(1.0, 0.0)), f.x),
        mix(random(cell + vec2(0.0, 1.0)), random(cell + vec2(1.0, 1.0)), f.x), f.y);
}

/// Four octaves, 0..1.
float cloudNoise(vec2 p)
{
    float sum = 0.0;
    float weight = 0.5;
    for (int octave = 0; octave < 4; ++octave) {
        sum += weight * valueNoise(p);
        p = mat2(1.6, 1.2, -1.2, 1.6) * p + 17.0;
        weight *= 0.5;
    }
    return sum / 0.9375;
}
