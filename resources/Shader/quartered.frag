// A picture that is multiplied by alpha, at a quarter of its size.
#version 120
uniform sampler2D mSample0; // read at whole texels
uniform vec2 u_pass_resolution;
varying vec2 textureCoord;

void main()
{
    vec4 sum = vec4(0.0);
    for (float y = -1.5; y < 2.0; y += 1.0)
        for (float x = -1.5; x < 2.0; x += 1.0)
            sum += texture2D(mSample0, textureCoord + 0.25 * vec2(x, y) / u_pass_resolution);
    gl_FragColor = sum / 16.0;
}
