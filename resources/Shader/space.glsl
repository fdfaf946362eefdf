// The space that a picture is measured in.
uniform vec2 u_resolution; // pixels

float aspect()
{
    return u_resolution.x / u_resolution.y;
}

/// Coordinates in picture heights around the centre: circles stay round.
vec2 centred(vec2 uv)
{
    return (uv - 0.5) * vec2(aspect(), 1.0);
}

vec2 uncentred(vec2 p)
{
    return p / vec2(aspect(), 1.0) + 0.5;
}

/// Positions past the border come back mirrored.
vec2 mirrored(vec2 uv)
{
    return 1.0 - abs(mod(uv, 2.0) - 1.0);
}
