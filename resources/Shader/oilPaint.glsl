// The brush of the oil painting: means and unrest of squares as wide as the brush, found across and then down.
uniform float u_radius = 4.0; // brush size in pixels, 1..8

/// Pixels from the middle of a square to its side.
float halfBrush()
{
    return 0.5 * clamp(u_radius, 1.0, 64.0);
}

/// Share of the pixel `away` from the middle.
float shareOf(float away)
{
    return clamp(halfBrush() + 1.0 - away, 0.0, 1.0);
}
