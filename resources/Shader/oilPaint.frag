// Brush strokes: every pixel takes the colour of the calmest of the four squares that meet in it.
#version 120
#include "picture.glsl"
#include "oilPaint.glsl"

uniform sampler2D mSample1; // mean colour and unrest of the square around each pixel

vec4 calmer(vec4 best, vec2 corner)
{
    vec4 other = texture2D(mSample1, textureCoord + corner / u_resolution);
    return other.a < best.a ? other : best;
}

void main()
{
    float away = floor(halfBrush() + 0.5);
    vec4 best = calmer(vec4(2.0), vec2(-away));
    best = calmer(best, vec2(away, -away));
    best = calmer(best, vec2(-away, away));
    best = calmer(best, vec2(away));
    gl_FragColor = vec4(best.rgb, picture(textureCoord).a);
}
