// The picture's colours are looked up in a table of 64 x 64 x 64 colours: 8 x 8 squares, one for each step of
// blue, with red to the right and green downward in each.
#version 120
uniform sampler2D mSample0;
uniform sampler2D mSample1;
uniform float u_strength = 1.0; // 0..1
varying vec2 textureCoord;

/// The table's colour at (red, green) of one square; between texels the texture unit blends.
vec3 inSquare(vec2 redGreen, float square)
{
    vec2 corner = vec2(mod(square, 8.0), floor(square / 8.0)) * 64.0;
    return texture2D(mSample1, (corner + 0.5 + 63.0 * redGreen) / 512.0).rgb;
}

void main()
{
    vec4 colour = texture2D(mSample0, textureCoord);
    float blue = 63.0 * colour.b;
    vec3 graded = mix(inSquare(colour.rg, floor(blue)), inSquare(colour.rg, min(floor(blue) + 1.0, 63.0)), fract(blue));
    gl_FragColor = vec4(mix(colour.rgb, graded, u_strength), colour.a);
}
