// Colour measures.
float luma(vec3 colour)
{
    return dot(colour, vec3(0.299, 0.587, 0.114));
}

/// Hue 0..1, saturation, value.
vec3 hsvFromRgb(vec3 c)
{
    vec4 p = c.g < c.b ? vec4(c.bg, -1.0, 2.0 / 3.0) : vec4(c.gb, 0.0, -1.0 / 3.0);
    vec4 q = c.r < p.x ? vec4(p.xyw, c.r) : vec4(c.r, p.yzx);
    float chroma = q.x - min(q.w, q.y);
    return vec3(abs(q.z + (q.w - q.y) / (6.0 * chroma + 1.0e-10)), chroma / (q.x + 1.0e-10), q.x);
}

vec3 rgbFromHsv(vec3 c)
{
    vec3 p = abs(fract(c.xxx + vec3(0.0, 2.0 / 3.0, 1.0 / 3.0)) * 6.0 - 3.0);
    return c.z * mix(vec3(1.0), clamp(p - 1.0, 0.0, 1.0), c.y);
}

vec3 screened(vec3 base, vec3 light)
{
    return 1.0 - (1.0 - base) * (1.0 - clamp(light, 0.0, 1.0));
}

vec3 saturated(vec3 colour, float amount)
{
    return mix(vec3(luma(colour)), colour, amount);
}
