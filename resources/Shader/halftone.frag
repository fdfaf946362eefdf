// Four-colour print: screens of dots at the printer's angles.
#version 120
#include "picture.glsl"

uniform float u_size = 8.0;   // distance of the dots in pixels
uniform float u_angle = 0.0;  // degrees added to every screen
uniform float u_black = 0.55; // share of black ink, 0..1

/// From pixels around the middle to the grid of a screen, and back with the transpose.
mat2 turned(float angle)
{
    float a = radians(angle + u_angle);
    return mat2(cos(a), -sin(a), sin(a), cos(a));
}

vec2 gridPosition(float angle)
{
    return turned(angle) * ((textureCoord - 0.5) * u_resolution) / u_size;
}

float dots(float angle, float ink)
{
    // The dot's area is the ink's share; past pi/4 the dots grow together.
    float radius = sqrt(ink / 3.14159265) * (1.0 + 0.25 * ink * ink);
    float soft = 0.75 / u_size;
    return 1.0 - smoothstep(radius - soft, radius + soft, length(fract(gridPosition(angle)) - 0.5));
}

/// The picture in the middle of the dot.
vec3 cellColour(float angle)
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
    vec3 c = cellColour(15.0);
    vec3 m = cellColour(75.0);
    vec3 y = cellColour(0.0);
    vec3 k = cellColour(45.0);
    vec3 paper = vec3(0.98, 0.97, 0.94);
    paper *= 1.0 - vec3(0.95, 0.25, 0.05) * dots(15.0, inkOf(c.r, blackOf(c)));
    paper *= 1.0 - vec3(0.08, 0.90, 0.30) * dots(75.0, inkOf(m.g, blackOf(m)));
    paper *= 1.0 - vec3(0.02, 0.06, 0.92) * dots(0.0, inkOf(y.b, blackOf(y)));
    paper *= 1.0 - 0.92 * dots(45.0, blackOf(k));
    gl_FragColor = vec4(paper, picture(textureCoord).a);
}
