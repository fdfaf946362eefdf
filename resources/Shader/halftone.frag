// Four-colour print: screens of dots at the printer's angles.
#version 120
#include "picture.glsl"

uniform float u_size = 8.0;   // distance of the dots in pixels
uniform float u_angle = 0.0;  // degrees added to every screen
uniform float u_black = 0.55; // share of black ink, 0..1

// Cosine and sine of the printer's angles.
const vec2 kCyan = vec2(0.96592583, 0.25881905);
const vec2 kMagenta = vec2(0.25881905, 0.96592583);
const vec2 kYellow = vec2(1.0, 0.0);
const vec2 kBlack = vec2(0.70710678, 0.70710678);

/// From pixels around the middle to the grid of a screen, and back with the transpose.
mat2 turned(vec2 angle)
{
    float a = radians(u_angle);
    vec2 more = vec2(cos(a), sin(a));
    float c = angle.x * more.x - angle.y * more.y;
    float s = angle.y * more.x + angle.x * more.y;
    return mat2(c, -s, s, c);
}

vec2 gridPosition(vec2 angle)
{
    return turned(angle) * ((textureCoord - 0.5) * u_resolution) / u_size;
}

float dots(vec2 angle, float ink)
{
    // The dot's area is the ink's share; past pi/4 the dots grow together.
    float radius = sqrt(ink / 3.14159265) * (1.0 + 0.25 * ink * ink);
    float soft = 0.75 / u_size;
    return 1.0 - smoothstep(radius - soft, radius + soft, length(fract(gridPosition(angle)) - 0.5));
}

/// The picture in the middle of the dot.
vec3 cellColour(vec2 angle)
{
    vec2 middle = (floor(gridPosition(angle)) + 0.5) * u_size;
    return picture(middle * turned(angle) / u_resolution + 0.5).rgb;
}

float blackOf(vec3 colour)
{
    return u_black * (1.0 - max(colour.r, max(colour.g, colour.b)));
}

float inkOf(float light, float black)
{
    return clamp((1.0 - light - black) / max(1.0 - black, 0.001), 0.0, 1.0);
}

void main()
{
    vec3 c = cellColour(kCyan);
    vec3 m = cellColour(kMagenta);
    vec3 y = cellColour(kYellow);
    vec3 k = cellColour(kBlack);
    vec3 paper = vec3(0.98, 0.97, 0.94);
    paper *= 1.0 - vec3(0.95, 0.25, 0.05) * dots(kCyan, inkOf(c.r, blackOf(c)));
    paper *= 1.0 - vec3(0.08, 0.90, 0.30) * dots(kMagenta, inkOf(m.g, blackOf(m)));
    paper *= 1.0 - vec3(0.02, 0.06, 0.92) * dots(kYellow, inkOf(y.b, blackOf(y)));
    paper *= 1.0 - 0.92 * dots(kBlack, blackOf(k));
    gl_FragColor = vec4(paper, picture(textureCoord).a);
}
