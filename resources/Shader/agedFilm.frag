// A worn print: unsteady frame, flicker, scratches, dust and faded dyes.
#version 120
#include "picture.glsl"
#include "colour.glsl"
#include "noise.glsl"

uniform float u_global_time;  // seconds
uniform float u_wear = 0.6;   // scratches and dust, 0..1
uniform float u_fade = 0.7;   // how far the dyes have gone, 0..1
uniform float u_jitter = 0.6; // unsteadiness, 0..1

void main()
{
    float frame = floor(u_global_time * 16.0 + 0.001); // such projectors ran at about 16 frames a second
    vec2 sway = (random2(vec2(frame, 7.0)) - 0.5) * 0.006 * u_jitter;
    vec2 uv = mirrored(textureCoord + sway);
    vec4 centre = picture(uv);
    vec3 faded = luma(centre.rgb) * vec3(1.08, 0.92, 0.68) + vec3(0.05, 0.03, 0.0);
    vec3 colour = mix(centre.rgb, faded, u_fade);
    colour *= 1.0 + 0.10 * u_jitter * (random(vec2(frame, 3.0)) - 0.5);

    // Scratches stand upright, wander slowly and come and go.
    for (float i = 0.0; i < 4.0; i += 1.0) {
        float life = random(vec2(floor(frame / 5.0), 11.0 + i));
        float x = random(vec2(floor(frame / 24.0), 31.0 + i)) + 0.002 * sin(0.7 * frame + i + 9.0 * textureCoord.y);
        float line = 1.0 - smoothstep(0.0, 1.4 / u_resolution.x + 0.0006, abs(textureCoord.x - x));
        float broken = smoothstep(0.35, 0.6, valueNoise(vec2(frame + i * 9.0, textureCoord.y * 6.0)));
        colour += step(1.0 - 0.75 * u_wear, life) * line * broken * (i < 2.5 ? 0.45 : -0.45);
    }
    // Dust: a few dark and light flecks that change with every frame.
    vec2 p = textureCoord * vec2(aspect(), 1.0) * 7.0;
    vec2 cell = floor(p);
    vec2 pick = random2(cell + frame * 1.37);
    vec2 where = 0.2 + 0.6 * random2(cell + frame * 2.11 + 5.0);
    vec2 away = fract(p) - where;
    float ragged = length(away) * (0.75 + 0.7 * valueNoise(13.0 * away + 40.0 * pick));
    float fleck = step(1.0 - 0.16 * u_wear, pick.x) * (1.0 - smoothstep(0.015, 0.03, ragged * (0.5 + pick.y)));
    colour = mix(colour, vec3(pick.y < 0.6 ? 0.04 : 0.95), 0.85 * fleck);
    colour += 0.10 * u_wear * (random(floor(textureCoord * u_resolution) + 17.0 * frame) - 0.5);

    vec2 corner = centred(textureCoord);
    colour *= 1.0 - u_fade * 0.6 * smoothstep(0.25, 1.1, dot(corner, corner) * 1.6);
    gl_FragColor = vec4(clamp(colour, 0.0, 1.0), centre.a);
}
