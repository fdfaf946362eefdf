// The first picture is a page that is turned over from its right side.
#version 120
#include "transition.glsl"

uniform float u_radius = 0.12;                 // of the roll, in picture heights
uniform vec3 u_paper = vec3(0.93, 0.92, 0.88); // colour that the page's back is tinted with

vec4 transition(vec2 uv, float progress)
{
    float radius = max(u_radius, 0.01);
    float slant = 0.35 * (1.0 - progress); // the corner lifts first
    vec2 p = vec2(uv.x * aspect(), uv.y);
    vec2 direction = normalize(vec2(1.0, slant));
    float width = dot(vec2(aspect(), 1.0), direction);
    float roll = mix(width + 0.02, -3.2 * radius - slant, progress);
    float d = dot(p, direction) - roll; // how far right of the fold's line
    vec4 below = to(uv);
    // The lifted page darkens what lies right of it.
    below.rgb *= 1.0 - 0.45 * (1.0 - smoothstep(0.0, 2.5 * radius, d - radius)) * smoothstep(-0.02, 0.05, progress);
    if (d > radius)
        return below;
    float bend = clamp(d / radius, 0.0, 1.0);
    float around = asin(bend);
    // The back of the page, seen on top of the roll.
    float over = (3.14159265 - around) * radius;
    vec2 back = (p + direction * (over - d)) / vec2(aspect(), 1.0);
    if (d > 0.0) {
        if (inside(back)) {
            vec4 page = from(back);
            page.rgb = mix(page.rgb, u_paper, 0.75) * (0.70 + 0.30 * cos(around));
            return page;
        }
        vec2 front = (p + direction * (around * radius - d)) / vec2(aspect(), 1.0);
        if (inside(front)) {
            vec4 page = from(front);
            page.rgb *= 1.0 - 0.5 * bend * bend;
            return page;
        }
        return below;
    }
    // The page that has been turned lies flat on the left, back upward.
    vec2 flat_ = (p + direction * (3.14159265 * radius - 2.0 * d)) / vec2(aspect(), 1.0);
    if (inside(flat_)) {
        vec4 page = from(flat_);
        page.rgb = mix(page.rgb, u_paper, 0.75);
        return page;
    }
    vec4 page = from(uv);
    page.rgb *= 1.0 - 0.35 * smoothstep(-1.2 * radius, 0.0, d) * smoothstep(0.0, 0.08, progress);
    return page;
}
