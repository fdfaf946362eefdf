// Tilted lens: a sharp band, everything above and below out of focus, colours like painted models.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_focus = 0.42;      // height of the sharp band's middle, 0..1
uniform float u_band = 0.18;       // height of the sharp band, 0..1
uniform float u_blur = 1.6;        // percent of the height
uniform float u_angle = 0.0;       // degrees that the band is turned
uniform float u_saturation = 1.35; // 0..2

void main()
{
    float angle = radians(u_angle);
    float away = abs(dot(centred(textureCoord) - vec2(0.0, u_focus - 0.5), vec2(-sin(angle), cos(angle))));
    float blur = smoothstep(0.5 * u_band, 0.5 * u_band + 0.35, away) * u_blur / 100.0;
    vec4 centre = picture(textureCoord);
    vec4 sum = weighted(centre);
    float weights = 1.0;
    for (float i = 0.5; i < 48.0; i += 1.0) {
        float r = sqrt(i / 48.0);
        float turn = i * 2.39996323; // the golden angle
        vec4 here = picture(textureCoord + blur * r * vec2(cos(turn) / aspect(), sin(turn)));
        float weight = 0.6 + 1.4 * luma(here.rgb); // bright points open into discs
        sum += weight * weighted(here);
        weights += weight;
    }
    vec4 soft = average(sum, weights, centre);
    gl_FragColor = vec4(clamp(saturated(soft.rgb, u_saturation), 0.0, 1.0), soft.a);
}
