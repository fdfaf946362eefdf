// A picture that is multiplied by alpha, at half its size.
#version 120
uniform sampler2D mSample0; // read at whole texels
uniform vec2 u_pass_resolution;
varying vec2 textureCoord;

void main()
{
    vec2 quarter = 0.25 / u_pass_resolution;
    gl_FragColor = 0.25 * (texture2D(mSample0, textureCoord - quarter) + texture2D(mSample0, textureCoord + quarter)
        + texture2D(mSample0, textureCoord + vec2(quarter.x, -quarter.y))
        + texture2D(mSample0, textureCoord + vec2(-quarter.x, quarter.y)));
}
