// Programs that read pictures at each pixel's own place, and those that only seem to.
#include "EffectTovOgre/GlslReads.h"

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;
using glslReads::atOwnPixelOnly;

const std::string kPlace = "varying vec2 textureCoord;\n";
const std::string kDeclared = "uniform sampler2D s;\n" + kPlace;

Names ofMain(const std::string& statements)
{
    return atOwnPixelOnly(kDeclared + "void main() { " + statements + " }");
}

TEST(GlslReads, FindsSamplersThatAreReadAtThePixelsOwnPlace)
{
    EXPECT_EQ(ofMain("gl_FragColor = texture2D(s, textureCoord);"), Names{"s"});
    EXPECT_EQ(ofMain("vec4 c = 1.0 - texture2D ( s,/* here */textureCoord ) ; // texture2D(s, c.xy)\n"
                     "if (textureCoord.x < 0.5 * (textureCoord.y)) gl_FragColor = c;"),
        Names{"s"});
    EXPECT_EQ(
        atOwnPixelOnly(
            "#version 130\n#ifdef GL_ES\nprecision highp float;\n#endif\nuniform sampler2D s, t;\n"
            "uniform sampler2D u;\r\nin vec2 textureCoord;\nvec4 f() { return texture(u, textureCoord); }"),
        Names{"u"});
    EXPECT_EQ(atOwnPixelOnly("uniform sampler2D table;" + kDeclared
                  + "void main() { gl_FragColor = texture2D(table, texture2D(s, textureCoord).xy); }"),
        Names{"s"});
}

TEST(GlslReads, DoubtsEveryOtherUse)
{
    const char* const kElsewhere[] = {
        "gl_FragColor = texture2D(s, textureCoord + 0.1);",
        "gl_FragColor = texture2D(s, textureCoord.yx);",
        "gl_FragColor = texture2D(s, 1.0 - textureCoord);",
        "gl_FragColor = texture2D(s, textureCoord, 2.0);",
        "gl_FragColor = texture2D(s, textureCoord) + texture2D(s, vec2(0.0));",
        "gl_FragColor = textureLod(s, textureCoord, 0.0);",
        "gl_FragColor = blurred(s, textureCoord);",
        "vec2 textureCoord = vec2(0.3); gl_FragColor = texture2D(s, textureCoord);",
        "vec2 a = vec2(0.3), textureCoord = a; gl_FragColor = texture2D(s, textureCoord);",
        "vec2 a, textureCoord; set(a, textureCoord); gl_FragColor = texture2D(s, textureCoord);",
        "for (highp vec2 textureCoord = vec2(0);;) gl_FragColor = texture2D(s, textureCoord);",
        "gl_FragColor = texture2D(s,\n#if 1\n0.5 *\n#endif\ntextureCoord);",
        "gl_FragColor = texture2D(s, textureCoord); } vec4 at(vec2 textureCoord) { return texture2D(s, "
        "textureCoord);",
    };
    for (const char* const statements : kElsewhere)
        EXPECT_EQ(ofMain(statements), Names{}) << statements;

    const std::string main = "void main() { gl_FragColor = texture2D(s, textureCoord); }";
    const std::string kOtherTexts[] = {
        "#define textureCoord textureCoord * 0.5\n" + kDeclared + main,
        "// in a line of its own\r#define textureCoord textureCoord * 0.5\n" + kDeclared + main,
        "  #  define s t\n" + kDeclared + main,
        "vec4 texture2D(sampler2D a, vec2 b) { return texture2DLod(a, b * 0.5, 0.0); }\n" + kDeclared + main,
        "uniform sampler2D s;\ncentroid varying vec2 textureCoord;\n" + main,
        "uniform sampler2D s;\nconst vec2 textureCoord = vec2(0.5);\n" + main,
        "uniform sampler2D s;\nin Block { vec2 textureCoord; };\n" + main,
        "uniform sampler2D s[2];\n" + kPlace
            + "void main() { gl_FragColor = texture2D(s[0], textureCoord); }",
        "uniform sampler3D s;\n" + kPlace + main,
        "uniform sampler2D s; // \\\n" + kPlace + main,
    };
    for (const std::string& text : kOtherTexts)
        EXPECT_EQ(atOwnPixelOnly(text), Names{}) << text;
    for (const char* const end :
        {"", "/*", "/* *", "//", "#", "texture2D(s", "textureCoord", "uniform sampler2D"})
        atOwnPixelOnly(end); // texts may end anywhere
}

} // namespace
