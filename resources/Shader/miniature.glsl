// The tilted lens: how far each place is out of focus.
#include "picture.glsl"

uniform float u_focus = 0.42; // height of the sharp band's middle, 0..1
uniform float u_band = 0.18;  // height of the sharp band, 0..1
uniform float u_blur = 1.6;   // percent of the height
uniform float u_angle = 0.0;  // degrees that the band is turned

/// Radius of a point's disc, in picture heights.
float discRadius()
{
    float angle = radians(u_angle);
    float away = abs(dot(centred(textureCoord) - vec2(0.0, u_focus - 0.5), vec2(-sin(angle), cos(angle))));
    return smoothstep(0.5 * u_band, 0.5 * u_band + 0.35, away) * max(u_blur, 0.0) / 100.0;
}

/// The mean over a disc of the given radius in picture heights: points on a spiral, in steps of the golden angle.
vec4 disc(sampler2D source, float radius, float points)
{
    vec2 reach = radius * vec2(1.0 / aspect(), 1.0);
    vec2 direction = vec2(1.0, 0.0);
    vec4 sum = vec4(0.0);
    for (float i = 0.5; i < points; i += 1.0) {
        sum += texture2D(source, textureCoord + sqrt(i / points) * reach * direction);
        direction = mat2(-0.7373688, 0.6754903, -0.6754903, -0.7373688) * direction;
    }
    return sum / points;
}
