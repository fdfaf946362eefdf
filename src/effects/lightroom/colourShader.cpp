// The text of the colour program.
#include "effects/lightroom/colourShader.h"

namespace lightroom {

// Where a curve has a pole, the divisor stops short of 0.
const char* const kColourShader = R"(
uniform sampler2D mSample0;
uniform vec2 u_resolution;
uniform int u_temperature;
uniform float u_tint;
uniform float u_exposure;
uniform float u_brightness;
uniform float u_contrast;
uniform float u_vib;
uniform float u_sat;
uniform float u_highLight;
uniform float u_shadow;
uniform float u_whiteLevel;
uniform float u_blackLevel;
uniform float u_vignette_amount;
uniform float u_vignette_feather;
uniform float u_vignette_highlights;
uniform float u_vignette_size;
uniform float u_vignette_roundness;
uniform float u_vignette_exposure;
varying vec2 textureCoord;

float least(vec3 c) { return min(min(c.r, c.g), c.b); }
float most(vec3 c) { return max(max(c.r, c.g), c.b); }
vec3 limited(vec3 c) { return clamp(c, 0.0, 1.0); }
vec3 screened(vec3 c, float k) { return limited(1.0 - (1.0 - k * c) * (1.0 - c)); }

vec3 blackBody(float t)
{
    vec3 c = vec3(1.0);
    if (t > 66.0) {
        c.r = 1.29293618606274509804 * pow(t - 60.0, -0.1332047592);
        c.g = 1.12989086089529411765 * pow(t - 60.0, -0.0755148492);
    } else {
        c.g = 0.39008157876901960784 * log(t) - 0.63184144378862745098;
        if (t < 66.0)
            c.b = t <= 19.0 ? 0.0 : 0.54320678911019607843 * log(t - 10.0) - 1.19625408914;
    }
    return limited(c);
}

// The colour with its hue and saturation, at another lightness.
vec3 relit(vec3 c, float lightness)
{
    float sum = most(c) + least(c);
    float span = 1.0 - abs(sum - 1.0);
    if (span <= 0.0 || most(c) == least(c))
        return vec3(lightness);
    return lightness + (c - 0.5 * sum) * ((1.0 - abs(2.0 * lightness - 1.0)) / span);
}

vec3 temperature(vec3 c)
{
    float value = float(u_temperature);
    float kelvins = u_temperature < 11500 ? 26000.0 - value : max(23000.0 - value - 4900.0, 1700.0);
    float ratio = abs(1.0 - kelvins / 11500.0) * 1.7;
    vec3 colour = blackBody(clamp(kelvins, 1000.0, 40000.0) / 100.0);
    vec3 blended = limited(c * (1.0 - ratio) + c * colour * ratio);
    return relit(blended, (least(c) + most(c)) / 2.0);
}

vec3 tint(vec3 c)
{
    float k = u_tint * 100.0 / 225.0 / 255.0;
    float grey = 0.3 * c.r + 0.59 * c.g + 0.11 * c.b;
    return c + vec3(k, -k, k) * grey;
}

vec3 brightness(vec3 c)
{
    float f = u_brightness > 0.0 ? 1.0 + u_brightness / 100.0
                                 : (1.0 - 1.0 / (0.99 + u_brightness / 253.0)) * 0.6;
    return limited(f > 0.0 ? c * f : c + f);
}

vec3 contrast(vec3 c)
{
    float part = 1.0 - u_contrast / 255.0;
    float v = u_contrast > 0.0 ? 1.0 / (part == 0.0 ? 0.000001 : part) - 1.0 : u_contrast / 255.0;
    float low = clamp(v * 100.0 / 2.0, -1000000.0, 1000000.0);
    low = sign(low) * floor(abs(low));
    float high = 255.0 - low;
    if (high < low) {
        high = 127.0;
        low = 120.0;
    }
    if (low < -127.0)
        low = -120.0;
    float stretch = (255.0 - 2.0 * abs(low)) / 255.0;
    low /= 255.0;
    high /= 255.0;
    if (low <= 0.0)
        return limited(c * stretch - low);
    vec3 inside = limited((c - low) / stretch);
    return mix(inside * step(vec3(low), c), vec3(1.0), vec3(greaterThan(c, vec3(high))));
}

vec3 vibrance(vec3 c)
{
    float luma = (least(c) + most(c)) / 2.0;
    vec3 above = limited(c - luma);
    float k = 1.0 + u_vib / 100.0 * 0.8 * (1.0 - (least(above) + most(above)) / 2.0);
    return limited(c * k + luma * (1.0 - k));
}

vec3 saturation(vec3 c)
{
    float s = min(u_sat / 100.0, 1.499999);
    float mean = (c.r + c.g + c.b) / 3.0;
    return limited(c + (mean - c) * (s > 0.0 ? 1.0 - 1.0 / (1.5 - s) : -s));
}

vec3 highlights(vec3 c) { return screened(c, u_highLight / 100.0 * most(c)); }

vec3 shadows(vec3 c)
{
    return screened(c, u_shadow / 100.0 * (u_shadow > 0.0 ? 2.0 : 0.5) * (1.0 - most(c)));
}

vec3 whiteLevel(vec3 c)
{
    float k = u_whiteLevel / 100.0 * most(c);
    c = screened(c, k);
    return k > 0.0 ? screened(c, k) : c;
}

vec3 blackLevel(vec3 c)
{
    return screened(c, u_blackLevel / 100.0 * (u_blackLevel > 0.0 ? 0.5 : 2.0) * (1.0 - most(c)));
}

// 1 inside the ellipse of radii r, 0 outside one that is wider by the band, a cosine between.
float vignetteMask()
{
    vec2 middle = u_resolution / 2.0;
    vec2 d = abs(textureCoord * u_resolution - middle);
    vec2 r = 0.2 * middle * (1.0 + 4.0 * u_vignette_size / 100.0);
    float rounder = abs(r.x - r.y) * u_vignette_roundness / 100.0;
    if (r.x > r.y)
        r.x -= rounder;
    else
        r.y -= rounder;
    float band = u_vignette_feather / 100.0 * max(r.x, r.y) / 2.0 + 3.0;
    vec2 outer = r + band;
    vec2 inward = d * r.yx;
    if (dot(inward, inward) <= r.x * r.x * r.y * r.y)
        return 1.0;
    vec2 outward = d * outer.yx;
    if (dot(outward, outward) > outer.x * outer.x * outer.y * outer.y)
        return 0.0;
    float slope = d.y / (d.x + 0.000001);
    float x = outer.x * outer.y / sqrt(outer.y * outer.y + outer.x * outer.x * slope * slope);
    float toEdge = distance(vec2(x, slope * x), d);
    return 0.5 * (1.0 + cos(3.14159265358979 / band * (band - toEdge)));
}

vec3 vignette(vec3 c)
{
    float amount = u_vignette_amount / 100.0;
    float lights = (2.0 * u_vignette_highlights / 100.0 - 1.0) * abs(amount);
    float mask = vignetteMask();
    c = c * mask * exp2(u_vignette_exposure / 100.0) + c * (1.0 + amount) * (1.0 - mask);
    if (mask < 1.0) {
        float k = (1.0 - mask) * (1.0 - mask) * lights * (1.0 - (c.r + c.g + c.b) / 3.0);
        c = 1.0 - (1.0 - k * c) * (1.0 - c);
    }
    return limited(c);
}

void main()
{
    vec4 picture = texture2D(mSample0, textureCoord);
    vec3 c = picture.rgb;
    if (u_temperature != 11500)
        c = temperature(c);
    if (u_tint != 0.0)
        c = tint(c);
    if (u_exposure != 0.0)
        c = limited(c * exp2(u_exposure / 50.0 * 0.6));
    if (u_brightness != 0.0)
        c = brightness(c);
    if (u_contrast != 0.0)
        c = contrast(c);
    if (u_vib != 0.0)
        c = vibrance(c);
    if (u_sat != 0.0)
        c = saturation(c);
    if (u_highLight != 0.0)
        c = highlights(c);
    if (u_shadow != 0.0)
        c = shadows(c);
    if (u_whiteLevel != 0.0)
        c = whiteLevel(c);
    if (u_blackLevel != 0.0)
        c = blackLevel(c);
    if (u_vignette_amount != 0.0 || u_vignette_exposure != 0.0)
        c = vignette(c);
    gl_FragColor = vec4(c, picture.a);
}
)";

} // namespace lightroom
