// Damaged data: blocks jump sideways, colours part, for moments at a time.
#version 120
#include "picture.glsl"
#include "noise.glsl"

uniform float u_global_time;  // seconds
uniform float u_amount = 0.6; // 0..1
uniform float u_speed = 8.0;  // changes a second

void main()
{
    float moment = floor(u_global_time * u_speed + 0.001);
    float burst = 0.35 + 0.65 * random(vec2(moment, 1.0));
    float amount = u_amount * burst;
    vec2 uv = textureCoord;
    // Wide bands first, narrow ones within them.
    for (float i = 0.0; i < 3.0; i += 1.0) {
        float rows = 6.0 + 14.0 * i;
        float row = floor(uv.y * rows + 7.0 * random(vec2(moment, 20.0 + i)));
        float chance = random(vec2(row, moment + 40.0 * i));
        float jump = (random(vec2(row + 3.0, moment + 60.0 * i)) - 0.5) * 0.35 / (1.0 + i);
        uv.x += step(1.0 - 0.45 * amount, chance) * jump * amount;
    }
    uv.x = fract(uv.x);
    vec2 block = floor(uv * vec2(18.0, 12.0));
    float broken = step(1.0 - 0.10 * amount, random(block + 91.0 * moment));
    float part = 0.018 * amount * (random(vec2(moment, 5.0)) + 0.2);
    vec4 centre = picture(uv);
    vec3 colour = vec3(picture(uv + vec2(part, 0.0)).r, centre.g, picture(uv - vec2(part, 0.0)).b);
    colour = mix(colour, colour.gbr + 0.12, broken);
    float lines = step(0.5, fract(textureCoord.y * u_resolution.y * 0.25));
    colour *= 1.0 - 0.10 * amount * lines;
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0), centre.a);
}
