// Programs as people spell them: every uniform is listed, takes its values and gives them back.
#include "gpu/GpuEffectTest.h"

#include <cstring>

namespace {

using test::Picture;

class GlslProgramsTest : public test::GpuEffectTest {
protected:
    using Values = std::vector<double>;
    struct Named {
        std::string name;
        Values values;
    };

    /// What the parameter holds.
    static Values valuesOf(const KEXSDK::ShaderParameter& parameter)
    {
        Values values(parameter.capacity());
        for (std::size_t i = 0; i < values.size(); ++i)
            if (parameter.baseType == KEXSDK::ShaderParameter::integer)
                values[i] = at<i32>(parameter, i);
            else if (parameter.baseType == KEXSDK::ShaderParameter::real)
                values[i] = at<float>(parameter, i);
            else
                values[i] = at<double>(parameter, i);
        return values;
    }
    template <class T> static double at(const KEXSDK::ShaderParameter& parameter, std::size_t i)
    {
        T value;
        std::memcpy(&value, parameter.data.data() + i * sizeof value, sizeof value);
        return double(value);
    }

    static void set(KEXSDK::ShaderParameter& parameter, const Values& values)
    {
        const std::vector<float> numbers(values.begin(), values.end());
        parameter.set(numbers);
    }

    /// Blue of what the effect draws; -1 when it draws nothing.
    static int draw(KEXSDK::GpuEffect& effect)
    {
        const auto input = Picture::plain(4, 4, {60, 70, 80, 90});
        effect->setInput(input->record(), 0);
        Picture target(4, 4);
        return effect.draw(target) ? target.pixel(1, 2)[0] : -1;
    }
};

TEST_F(GlslProgramsTest, UniformsOfEverySpellingTakeTheirValues)
{
    const std::string longName(230, 'n');
    // Each program draws blue 0 when all values are those given, else 255.
    const struct {
        const char* what;
        std::string declarations;
        std::string isRight;
        std::vector<Named> uniforms; ///< all that are in use
    } programs[] = {
        {"length by a constant", "#version 120\nconst int K=2; uniform vec3 M[K];\n",
            "M[0] == vec3(1, 2, 3) && M[1] == vec3(4, 5, 6)", {{"M", {1, 2, 3, 4, 5, 6}}}},
        {"length by a product", "#version 120\nuniform vec2 M[2*2];\n",
            "M[0] == vec2(1, 2) && M[1] == vec2(3, 4) && M[2] == vec2(5, 6) && M[3] == vec2(7, 8)",
            {{"M", {1, 2, 3, 4, 5, 6, 7, 8}}}},
        {"length by a macro", "#version 120\n#define K (1+2)\nuniform float M[K], after;\n",
            "M[0] == 1.0 && M[1] == 2.0 && M[2] == 3.0 && after == 4.0", {{"M", {1, 2, 3}}, {"after", {4}}}},
        {"length by the driver", "#version 120\nuniform float M[gl_MaxDrawBuffers]; uniform int after;\n",
            "M[0] == 1.0 && M[gl_MaxDrawBuffers - 1] == 8.0 && after == 9",
            {{"M", {1, 2, 3, 4, 5, 6, 7, 8}}, {"after", {9}}}},
        {"initial values without blanks",
            "#version 120\nuniform float u_strength=0.5;uniform float A=0.5, B=0.5;uniform vec3 "
            "C=vec3(1.,2.,3.),D;\n",
            "u_strength == 1.5 && A == 2.5 && B == 3.5 && C == vec3(4, 5, 6) && D == vec3(7, 8, 9)",
            {{"A", {2.5}}, {"B", {3.5}}, {"C", {4, 5, 6}}, {"D", {7, 8, 9}}, {"u_strength", {1.5}}}},
        {"lines and comments between the words",
            "#version 120\nuniform\nfloat a;\nuniform/*of*/vec2/* two */b;\nuniform // the "
            "third\n\tint\n\tc\n;"
            " /* uniform float ghost; */ // uniform float ghost;\n",
            "a == 1.0 && b == vec2(2, 3) && c == 4", {{"a", {1}}, {"b", {2, 3}}, {"c", {4}}}},
        {"structures",
            "#version 120\nstruct S{float a; vec2 b[2];}; uniform S s; uniform S t[2]; uniform float z;\n",
            "s.a == 1.0 && s.b[0] == vec2(2, 3) && s.b[1] == vec2(4, 5) && t[0].a == 6.0 && t[1].a == 7.0"
            " && t[0].b[1] == vec2(8, 9) && t[1].b[1] == vec2(10, 11) && z == 12.0",
            {{"s.a", {1}}, {"s.b", {2, 3, 4, 5}}, {"t[0].a", {6}}, {"t[0].b", {0, 0, 8, 9}}, {"t[1].a", {7}},
                {"t[1].b", {0, 0, 10, 11}}, {"z", {12}}}},
        {"a structure declared with its uniform",
            "#version 120\nuniform struct { float x; ivec2 y; } both;\n",
            "both.x == 1.5 && both.y == ivec2(2, -3)", {{"both.x", {1.5}}, {"both.y", {2, -3}}}},
        {"locations",
            "#version 430 compatibility\nlayout(location = 3) uniform float a; layout ( location=7 )"
            "uniform vec2 b[2]; uniform float c;\n",
            "a == 1.0 && b[0] == vec2(2, 3) && b[1] == vec2(4, 5) && c == 6.0",
            {{"a", {1}}, {"b", {2, 3, 4, 5}}, {"c", {6}}}},
        {"precisions",
            "#version 130\nprecision highp float;\nuniform highp float a; uniform mediump vec2 b;\nuniform "
            "lowp\nint c;\n",
            "a == 1.0 && b == vec2(2, 3) && c == 4", {{"a", {1}}, {"b", {2, 3}}, {"c", {4}}}},
        {"declarations by macros",
            "#version 120\n#define PARAM(type, name) uniform type name;\n#define GIVEN uniform\n"
            "PARAM(float, a) PARAM(vec3, b)\nGIVEN mat2 c;\n",
            "a == 1.0 && b == vec3(2, 3, 4) && c == mat2(5, 7, 6, 8)",
            {{"a", {1}}, {"b", {2, 3, 4}}, {"c", {5, 6, 7, 8}}}},
        {"branches of the preprocessor",
            "#version 130\n#if __VERSION__ >= 130 && !defined(GL_ES)\nuniform uint a;\n#else\nuniform float "
            "a;\n#endif\n#ifdef GL_core_profile\nuniform int b;\n#else\nuniform vec2 b;\n#endif\n",
            "a == 4u && vec2(b) == vec2(5)", {{"a", {4}}, {"b", {5, 5}}}},
        {"continued lines", "#version 420 compatibility\nuni\\\nform flo\\\r\nat a; uniform \\\nvec2 b;\n",
            "a == 1.0 && b == vec2(2, 3)", {{"a", {1}}, {"b", {2, 3}}}},
        {"names in other names",
            "#version 120\nuniform float a, aa, u_a; uniform float my_uniform; uniform float uniformity;\n",
            "a == 1.0 && aa == 2.0 && u_a == 3.0 && my_uniform == 4.0 && uniformity == 5.0",
            {{"a", {1}}, {"aa", {2}}, {"my_uniform", {4}}, {"u_a", {3}}, {"uniformity", {5}}}},
        {"whole numbers and truth values",
            "#version 130\nuniform bool a; uniform bvec3 b; uniform uint c; uniform uvec2 d[2]; uniform "
            "ivec4 "
            "e; uniform bool f[2];\n",
            "a && b == bvec3(true, false, true) && c == 7u && d[0] == uvec2(1, 2) && d[1] == uvec2(3, 4)"
            " && e == ivec4(-1, 2, -3, 4) && !f[0] && f[1]",
            {{"a", {1}}, {"b", {1, 0, 1}}, {"c", {7}}, {"d", {1, 2, 3, 4}}, {"e", {-1, 2, -3, 4}},
                {"f", {0, 1}}}},
        {"matrices",
            "#version 120\nuniform mat2x3 a; uniform mat3x2 b[2]; uniform mat4x3 c; uniform mat4 d;\n",
            "a == mat2x3(1, 3, 5, 2, 4, 6) && b[1] == mat3x2(7, 10, 8, 11, 9, 12) && b[0] == mat3x2(0)"
            " && c[3] == vec3(4, 8, 12) && d[0] == vec4(1, 5, 9, 13) && d[3] == vec4(4, 8, 12, 16)",
            {{"a", {1, 2, 3, 4, 5, 6}}, {"b", {0, 0, 0, 0, 0, 0, 7, 8, 9, 10, 11, 12}},
                {"c", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
                {"d", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}}},
        {"double precision",
            "#version 400 compatibility\nuniform double a; uniform dvec3 b[2]; uniform dmat2x3 c; uniform "
            "double d = 0.1LF;\n",
            "a == 1.5LF && b[0] == dvec3(1, 2, 3) && b[1] == dvec3(4, 5, 6) && c[1] == dvec3(2, 4, 6)"
            " && d == 0.25LF",
            {{"a", {1.5}}, {"b", {1, 2, 3, 4, 5, 6}}, {"c", {1, 2, 3, 4, 5, 6}}, {"d", {0.25}}}},
        {"arrays of arrays", "#version 430 compatibility\nuniform float a[2][3]; uniform vec2[2] b[1];\n",
            "a[0][0] == 1.0 && a[0][2] == 3.0 && a[1][0] == 4.0 && a[1][2] == 6.0 && b[0][1] == vec2(9, 10)",
            {{"a[0]", {1, 2, 3}}, {"a[1]", {4, 5, 6}}, {"b[0]", {7, 8, 9, 10}}}},
        {"behind other things, lines ending as on Windows",
            "#version 120\r\nfloat twice(float x) { return 2.0 * x; } uniform float a;\r\nuniform float[2] b;"
            "uniform float c[] = float[](1.0, 2.0, 3.0);\r\n",
            "twice(a) == 2.0 && b[0] == 2.0 && b[1] == 3.0 && c[0] == 4.0 && c[2] == 6.0",
            {{"a", {1}}, {"b", {2, 3}}, {"c", {4, 5, 6}}}},
        {"a long name", "#version 120\nuniform vec2 " + longName + ";\n", longName + " == vec2(1, 2)",
            {{longName, {1, 2}}}},
        {"parts that are not in use", "#version 120\nuniform float a[6]; uniform float unused;\n",
            "a[2] == 3.0", {{"a", {1, 2, 3}}}},
        {"the state of OpenGL", "#version 120\nuniform float a;\n",
            "a == 1.0 && gl_DepthRange.diff == 1.0 && gl_ModelViewMatrix[3][3] == 1.0", {{"a", {1}}}},
    };
    for (const auto& program : programs) {
        SCOPED_TRACE(program.what);
        KEXSDK::GpuEffect effect = effectOf(4, 4,
            (program.declarations + "void main() { gl_FragColor = vec4(" + program.isRight
                + " ? 0.0 : 1.0); }\n")
                .c_str());
        KEXSDK::ShaderParameters* const uniforms = effect->getShaderParameters();
        ASSERT_NE(uniforms, nullptr);
        ASSERT_EQ(effect->problem(), "");
        EXPECT_EQ(draw(effect), 255) << "before they are set";
        std::vector<std::string> expected;
        std::vector<std::string> listed;
        for (const Named& named : program.uniforms)
            expected.push_back(named.name);
        for (const KEXSDK::ShaderParameter& uniform : *uniforms)
            listed.push_back(uniform.name);
        ASSERT_EQ(listed, expected);
        for (std::size_t i = 0; i < uniforms->size(); ++i)
            set((*uniforms)[i], program.uniforms[i].values);
        effect->setShaderParameters(*uniforms);
        EXPECT_EQ(draw(effect), 0);
        for (std::size_t i = 0; i < uniforms->size(); ++i)
            EXPECT_EQ(valuesOf((*uniforms)[i]), program.uniforms[i].values) << listed[i];
    }
}

TEST_F(GlslProgramsTest, InitialValuesAreTheProgramsOwn)
{
    KEXSDK::GpuEffect effect = effectOf(4, 4, R"(#version 430 compatibility
        struct S { float a; float b[2]; };
        uniform float one=0.5, two = 2., three[2]=float[](3.,4.);
        uniform uint big = 4000000000u;
        uniform dvec2 fine = dvec2(0.1LF, 0.25LF);
        uniform S s = S(7.0, float[](8.0, 9.0));
        uniform mat2x3 m = mat2x3(1, 2, 3, 4, 5, 6);
        uniform bool yes = true;
        void main() { gl_FragColor = vec4(one + two + three[1] + float(big) + float(fine.x) + s.a + s.b[1]
            + m[1].x + float(yes) > 0.0 ? 0.0 : 1.0); })");
    const struct {
        const char* name;
        Values values;
    } expected[] = {{"big", {double(i32(4000000000u))}}, {"fine", {0.1, 0.25}}, {"m", {1, 4, 2, 5, 3, 6}},
        {"one", {0.5}}, {"s.a", {7}}, {"s.b", {8, 9}}, {"three", {3, 4}}, {"two", {2}}, {"yes", {1}}};
    const KEXSDK::ShaderParameters* const uniforms = effect->getShaderParameters();
    ASSERT_TRUE(uniforms);
    ASSERT_EQ(uniforms->size(), std::size(expected)) << effect->problem();
    for (std::size_t i = 0; i < uniforms->size(); ++i) {
        EXPECT_EQ((*uniforms)[i].name, expected[i].name);
        EXPECT_EQ(valuesOf((*uniforms)[i]), expected[i].values) << expected[i].name;
    }
    EXPECT_EQ(draw(effect), 0);
}

TEST_F(GlslProgramsTest, DialectsOfGlslDraw)
{
    const char* const programs[] = {
        "varying vec2 textureCoord; uniform sampler2D mSample0;"
        "void main() { gl_FragColor = texture2D(mSample0, textureCoord); }",
        "#version 330\nin vec2 textureCoord; out vec4 colour; uniform sampler2D mSample0;"
        "void main() { colour = texture(mSample0, textureCoord); }",
        "#version 450 core\nin vec2 textureCoord; layout(location = 0) out vec4 colour;"
        "layout(binding = 0) uniform sampler2D mSample0; void main() { colour = texture(mSample0, "
        "textureCoord); }",
        "#version 430 compatibility\n#extension GL_ARB_gpu_shader5 : enable\nin vec2 textureCoord;"
        "uniform sampler2D mSamples[2]; void main() { gl_FragColor = texture(mSamples[0], textureCoord)"
        " + min(texture(mSamples[1], textureCoord), 0.0); }",
        "#version 130\nin vec2 textureCoord; uniform sampler2D mSample0; uniform sampler3D cube;"
        "void main() { gl_FragColor = texture(mSample0, textureCoord) + min(texture(cube, vec3(0)), 0.0); }",
    };
    for (const char* const program : programs) {
        KEXSDK::GpuEffect effect = effectOf(4, 4, program);
        EXPECT_EQ(draw(effect), 60) << program << effect->problem();
    }
}

TEST_F(GlslProgramsTest, WhatCannotBeSetIsAProblemAndNoCrash)
{
    const struct {
        const char* declarations;
        const char* use;
        const char* named; ///< in the reason
    } programs[] = {
        {"#version 130\nuniform samplerCube sky;", "texture(sky, vec3(1))", "sky"},
        {"#version 130\nuniform sampler1D line;", "texture(line, 0.5)", "line"},
        {"#version 140\nuniform sampler2DRect page;", "texture(page, vec2(0))", "page"},
        {"#version 130\nuniform isampler2D whole;", "vec4(texture(whole, vec2(0)))", "whole"},
        {"#version 130\nuniform sampler2DShadow depth;", "vec4(texture(depth, vec3(0)))", "depth"},
        {"#version 130\nuniform sampler2DArray pages[2];", "texture(pages[1], vec3(0))", "pages"},
        {"#version 430\nlayout(rgba8) uniform image2D canvas;", "imageLoad(canvas, ivec2(0))", "canvas"},
        {"#version 430\nlayout(binding = 0) uniform atomic_uint count;",
            "vec4(atomicCounterIncrement(count))", "count"},
        {"#version 150\nuniform Block { vec4 colour; };", "colour", "block"},
        {"#version 430\nlayout(std430) buffer Store { vec4 stored[]; };", "stored[0]", "block"},
        {"#version 400\nsubroutine vec4 Paint(); subroutine(Paint) vec4 red() { return vec4(1); }"
         "subroutine uniform Paint paint;",
            "paint()", "subroutine"},
        {"#version 120\nuniform float huge[100000];", "vec4(huge[99999])", ""},
        {"#version 120\nuniform float none[0];", "vec4(none[0])", ""},
        {"#version 999", "vec4(1)", ""},
        {"uniform", "vec4(1)", ""},
        {"#version 120\nuniform lowp", "vec4(1)", ""},
        {"uniform Block {", "vec4(1)", ""},
        {"#define A A B\n#define B A\nuniform float A", "vec4(1)", ""},
    };
    for (const auto& program : programs) {
        SCOPED_TRACE(program.declarations);
        const std::string text = program.declarations;
        const bool hasOut = text.starts_with("#version 4") || text.starts_with("#version 15");
        KEXSDK::GpuEffect effect = effectOf(4, 4,
            (text
                + (hasOut ? "\nout vec4 result; void main() { result = " : "\nvoid main() { gl_FragColor = ")
                + program.use + "; }")
                .c_str());
        EXPECT_EQ(draw(effect), -1);
        EXPECT_FALSE(effect->problem().empty());
        EXPECT_NE(effect->problem().find(program.named), std::string::npos) << effect->problem();
        EXPECT_EQ(effect->problem().find('\n'), std::string::npos);
    }
    // Nothing is drawn while samplers of two types show one unit.
    KEXSDK::GpuEffect effect = effectOf(4, 4,
        "#version 130\nin vec2 textureCoord; uniform sampler2D mSample0; uniform sampler3D cube;"
        "void main() { gl_FragColor = texture(mSample0, textureCoord) + min(texture(cube, vec3(0)), 0.0); }");
    ogre(effect).setIntParam(KEXSDK::ShaderParameter::fragment, "cube", 0);
    EXPECT_EQ(draw(effect), -1);
    ogre(effect).setIntParam(KEXSDK::ShaderParameter::fragment, "cube", 1);
    EXPECT_EQ(draw(effect), 60);
}

TEST_F(GlslProgramsTest, UniformsOfBothProgramsAreListedWhereTheyAreUsed)
{
    KEXSDK::GpuEffect effect = effectOf(4, 4,
        "varying float passed; uniform float common, mine; void main() { gl_FragColor = vec4(common == 1.0 "
        "&& mine"
        " == 2.0 && passed == 4.0 ? 0.0 : 1.0); }");
    effect->setShaderSource("#version 120\nattribute vec4 vertex; uniform mat4 _worldViewProj; uniform float "
                            "common=9.0, shift; varying float "
                            "passed;"
                            "void main() { gl_Position = _worldViewProj * vertex; passed = common + shift; }",
        false, true);
    std::vector<std::pair<u32, std::string>> listed;
    for (const KEXSDK::ShaderParameter& uniform : *effect->getShaderParameters())
        listed.emplace_back(uniform.programType, uniform.name);
    EXPECT_EQ(listed,
        (std::vector<std::pair<u32, std::string>>{{0, "common"}, {0, "shift"}, {1, "common"}, {1, "mine"}}));
    ogre(effect).setFloatParam(KEXSDK::ShaderParameter::vertex, "common", 1);
    ogre(effect).setFloatParam(KEXSDK::ShaderParameter::vertex, "shift", 3);
    ogre(effect).setFloatParam(KEXSDK::ShaderParameter::fragment, "mine", 2);
    EXPECT_EQ(draw(effect), 0) << effect->problem();
}

} // namespace
