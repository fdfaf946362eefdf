// GPU effects: what is drawn is what the program says, to the byte where it only copies.
#include "gpu/GpuEffectTest.h"
#include "support/paths.h"

#include <optional>

namespace {

using test::Picture;

class EffectTest : public test::GpuEffectTest { };

TEST_F(EffectTest, PassesPicturesThroughToTheByteAtAnySize)
{
    KEXSDK::GpuEffect effect = effectOf(640, 480);
    const std::pair<u32, u32> sizes[] = {
        {640, 480}, {1920, 1080}, {37, 23}, {1, 1}, {4096, 16}, {1921, 1079}, {800, 600}, {640, 480}};
    for (const auto& [width, height] : sizes) {
        const auto source = Picture::noise(width, height, width);
        Picture target(width, height);
        effect->setSize(width, height);
        effect->setInput(source->record(), 0);
        ASSERT_TRUE(effect.draw(target)) << read("Ogre.log");
        EXPECT_TRUE(target.bytes() == source->bytes()) << width << " x " << height;
    }
}

TEST_F(EffectTest, ProgramsSeeEveryInputUnderItsIndex)
{
    // Bytes of three plain pictures, one channel of each; the middle one is smaller and arrives last.
    const auto first = Picture::plain(64, 48, {10, 20, 30, 255});
    const auto second = Picture::plain(9, 5, {40, 50, 60, 255});
    const auto third = Picture::plain(64, 48, {70, 80, 90, 255});
    KEXSDK::GpuEffect effect = effectOf(64, 48,
        "uniform sampler2D mSample0; uniform sampler2D mSample1; uniform sampler2D mSample2;"
        "varying vec2 textureCoord; void main() { gl_FragColor = vec4(texture2D(mSample0, textureCoord).r,"
        "texture2D(mSample1, textureCoord).g, texture2D(mSample2, textureCoord).b, 1.0); }");
    Picture target(64, 48);
    const char* const samplers[] = {"mSample0", "mSample1", "mSample2"};
    for (i32 i = 0; i < 3; ++i)
        ogre(effect).setIntParam(KEXSDK::ShaderParameter::fragment, samplers[i], i);
    effect->setInput(first->record(), 0);
    effect->setInput(third->record(), 2);
    ASSERT_TRUE(effect.draw(target));
    effect->setInput(second->record(), 1);
    ASSERT_TRUE(effect.draw(target));
    EXPECT_EQ(target.pixel(31, 20), (std::array<u8, 4>{70, 50, 30, 255}));
}

TEST_F(EffectTest, ManyEffectsLiveSideBySide)
{
    std::vector<KEXSDK::GpuEffect> effects;
    std::vector<std::unique_ptr<Picture>> sources;
    std::vector<std::unique_ptr<Picture>> targets;
    for (u32 i = 0; i < 20; ++i) {
        const u32 width = 30 + i;
        effects.push_back(effectOf(width, 20));
        sources.push_back(Picture::noise(width, 20, i));
        targets.push_back(std::make_unique<Picture>(width, 20));
        effects[i]->setInput(sources[i]->record(), 0);
    }
    for (int round = 0; round < 2; ++round)
        for (u32 i = 0; i < 20; ++i) {
            ASSERT_TRUE(effects[i].draw(*targets[i]));
            EXPECT_TRUE(targets[i]->bytes() == sources[i]->bytes()) << i;
        }
    // An older frame can still be had once others were drawn.
    std::fill_n(targets[3]->pixels(), targets[3]->byteSize(), u8(0));
    thread_.readBack(targets[3]->record());
    EXPECT_TRUE(targets[3]->bytes() == sources[3]->bytes());
    // A record that lost its effect stays as it is.
    effects.clear();
    std::fill_n(targets[3]->pixels(), targets[3]->byteSize(), u8(0));
    thread_.readBack(targets[3]->record());
    EXPECT_EQ(targets[3]->bytes(), std::vector<u8>(targets[3]->byteSize()));
}

TEST_F(EffectTest, ChainsHandTexturesOn)
{
    // Each stage adds 1/255 to red. The memory between the stages is spoilt: the picture goes by way of the
    // texture.
    const char* const brighter =
        "uniform sampler2D mSample0; varying vec2 textureCoord; void main() {"
        "gl_FragColor = texture2D(mSample0, textureCoord) + vec4(1.0 / 255.0, 0.0, 0.0, 0.0); }";
    const auto source = Picture::plain(200, 100, {1, 2, 3, 4});
    std::vector<KEXSDK::GpuEffect> effects;
    std::vector<std::unique_ptr<Picture>> stages;
    const KEXSDK::CEffectImage* input = source.get();
    for (int i = 0; i < 5; ++i) {
        effects.push_back(effectOf(200, 100, brighter));
        stages.push_back(std::make_unique<Picture>(200, 100));
        effects[i]->setInput(input->record(), 0);
        ASSERT_TRUE(effects[i].draw(*stages[i]));
        EXPECT_EQ(stages[i]->pixel(150, 70), (std::array<u8, 4>{1, 2, u8(4 + i), 4}));
        std::fill_n(stages[i]->pixels(), stages[i]->byteSize(), u8(99));
        input = stages[i].get();
    }
    // After the texture is let go the picture is in memory again.
    stages[0]->viewToChange();
    effects[1]->setInput(stages[0]->record(), 0);
    ASSERT_TRUE(effects[1].draw(*stages[1]));
    EXPECT_EQ(stages[1]->pixel(0, 0), (std::array<u8, 4>{99, 99, 100, 99}));
    // An input whose effect has ended leaves the picture that was shown before.
    effects[3]->setInput(stages[2]->record(), 0);
    effects.erase(effects.begin() + 2);
    EXPECT_TRUE(effects[2].draw(*stages[3]));
}

TEST_F(EffectTest, ColoursStayWherePixelsAndFramesTakeTurns)
{
    // One unit shows pixels of the host's, the effect's own last frame, and pixels again.
    KEXSDK::GpuEffect effect = effectOf(41, 29);
    Picture frame(41, 29);
    for (unsigned round = 1; round <= 2; ++round) {
        const auto source = Picture::noise(41, 29, round);
        effect->setInput(source->record(), 0);
        ASSERT_TRUE(effect.draw(frame));
        EXPECT_TRUE(frame.bytes() == source->bytes()) << round;
        effect->setInput(frame.record(), 0);
        Picture again(41, 29);
        ASSERT_TRUE(effect.draw(again));
        EXPECT_TRUE(again.bytes() == source->bytes()) << round;
    }
}

TEST_F(EffectTest, PicturesOfOtherSizesAndMovedOnesAreBlended)
{
    // Dark to the left, bright to the right: texels between the two are where places were blended.
    const auto split = [](u32 width) {
        auto picture = Picture::plain(width, 2, {0, 0, 0, 255});
        for (u32 x = width / 2; x < width; ++x)
            for (u32 y = 0; y < 2; ++y)
                picture->pixels()[(y * width + x) * 4] = 255;
        return picture;
    };
    const auto blended = [](const Picture& picture) {
        return std::ranges::any_of(picture.bytes(), [](u8 byte) { return byte != 0 && byte != 255; });
    };
    const char* const copies = "uniform sampler2D mSample0; varying vec2 textureCoord;"
                               "void main() { gl_FragColor = texture2D(mSample0, textureCoord); }";
    const auto same = split(16);
    const auto smaller = split(4);
    for (const char* const program : {static_cast<const char*>(nullptr), copies}) {
        KEXSDK::GpuEffect effect = effectOf(16, 2, program);
        Picture target(16, 2);
        for (int round = 0; round < 2; ++round) {
            effect->setInput(same->record(), 0);
            ASSERT_TRUE(effect.draw(target));
            EXPECT_EQ(target.bytes(), same->bytes());
            effect->setInput(smaller->record(), 0);
            ASSERT_TRUE(effect.draw(target));
            EXPECT_TRUE(blended(target)) << "of another size";
            effect->setInput(same->record(), 0);
            effect->transform.scale[0] = 3;
            ASSERT_TRUE(effect.draw(target));
            EXPECT_TRUE(blended(target)) << "made larger";
            effect->transform = {};
        }
    }
}

TEST_F(EffectTest, UniformsOfEveryTypeTakeTheirValues)
{
    // Every value is checked on its own: each wrong one lowers blue.
    const char* const source = R"(#version 130
        uniform int i; uniform ivec3 iv; uniform int ia[4]; uniform bool on; 
        uniform float f; uniform vec2 v2; uniform vec3 v3; uniform vec4 v4; uniform float fa[5];
        uniform vec2 va[3]; uniform mat2 m2; uniform mat2 keptMatrix = mat2(1, 2, 3, 4); uniform mat4 m4; uniform mat4 ma[2];
        uniform float kept = 0.25; uniform vec3 keptArray[2] = vec3[2](vec3(1, 2, 3), vec3(4, 5, 6));
        uniform float partly[6];
        in vec2 textureCoord;
        void main()
        {
            int wrong = 0;
            if (i != 7) wrong += 1;
            if (iv != ivec3(1, -2, 3)) wrong += 2;
            if (ia[0] != 4 || ia[3] != -1) wrong += 4;
            if (!on) wrong += 8;
            if (f != 0.5) wrong += 16;
            if (v2 != vec2(1, 2) || v3 != vec3(3, 4, 5) || v4 != vec4(6, 7, 8, 9)) wrong += 32;
            if (fa[0] != 0.0 || fa[4] != 4.0 || va[2] != vec2(5, 6)) wrong += 64;
            if (m4 * vec4(1, 0, 0, 0) != vec4(1, 0, 0, 0) || ma[1] != m4) wrong += 128;
            float second = 0.0;
            if (kept != 0.25 || keptArray[1] != vec3(4, 5, 6) || keptArray[0] != vec3(1, 2, 3)) second += 1.0;
            if (partly[2] != 2.0) second += 2.0;
            if (m2[0] != vec2(1, 3) || keptMatrix[1] != vec2(3, 4)) second += 4.0;
            gl_FragColor = vec4(second / 255.0, 0.0, float(wrong) / 255.0, 1.0);
        })";
    KEXSDK::GpuEffect effect = effectOf(8, 8, source);
    KEXSDK::ShaderParameters* const uniforms = effect->getShaderParameters();
    ASSERT_NE(uniforms, nullptr);
    EXPECT_EQ(effect->problem(), "");
    const auto find = [&](const std::string& name) -> KEXSDK::ShaderParameter& {
        const auto found = std::ranges::find(*uniforms, name, &KEXSDK::ShaderParameter::name);
        if (found == uniforms->end())
            throw std::runtime_error(name);
        return *found;
    };
    const auto shape = [&](const std::string& name) {
        const KEXSDK::ShaderParameter& p = find(name);
        EXPECT_EQ(p.data.size(), p.arraySize * p.bytesPerElement) << name;
        return std::array{p.programType, p.arraySize, p.baseType, p.valuesPerElement, p.bytesPerElement};
    };
    EXPECT_EQ(shape("i"), (std::array{1u, 1u, 2u, 1u, 4u}));
    EXPECT_EQ(shape("iv"), (std::array{1u, 1u, 2u, 3u, 12u}));
    EXPECT_EQ(shape("ia"), (std::array{1u, 4u, 2u, 1u, 4u}));
    EXPECT_EQ(shape("v2"), (std::array{1u, 1u, 3u, 2u, 8u}));
    EXPECT_EQ(shape("m4"), (std::array{1u, 1u, 3u, 16u, 64u}));
    EXPECT_EQ(shape("va"), (std::array{1u, 3u, 3u, 2u, 8u}));
    EXPECT_EQ(shape("partly")[1], 3u) << "as many as the program reads";

    const auto set = [&](const std::string& name, std::vector<float> values) { find(name).set(values); };
    const auto setInts = [&](const std::string& name, std::vector<i32> values) { find(name).set(values); };
    set("i", {7.9f}); // of the other type, toward zero
    setInts("iv", {1, -2, 3, 77});
    setInts("ia", {4, 0, 0, -1});
    setInts("on", {1});
    set("f", {0.5f});
    setInts("v2", {1, 2});
    set("v3", {3, 4, 5});
    set("v4", {6, 7, 8, 9});
    set("fa", {0, 1, 2, 3, 4, 5, 6});
    set("va", {1, 2, 3, 4, 5, 6});
    set("partly", {0, 1, 2, 3, 4, 5});
    set("m2", {1, 2, 3, 4}); // row by row
    const std::vector<float> unit{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    set("m4", unit);
    auto two = unit;
    two.insert(two.end(), unit.begin(), unit.end());
    set("ma", two);
    effect->setShaderParameters(*uniforms);
    ogre(effect).setFloatParam(KEXSDK::ShaderParameter::fragment, "noSuchName", 1);
    ogre(effect).setIntParam(KEXSDK::ShaderParameter::vertex, "i", 1); // the default program is never changed
    Picture target(8, 8);
    const auto input = Picture::plain(8, 8, {0, 0, 0, 0});
    effect->setInput(input->record(), 0);
    ASSERT_TRUE(effect.draw(target)) << read("Ogre.log");
    EXPECT_EQ(int(target.pixel(4, 4)[0]), 0);
    EXPECT_EQ(int(target.pixel(4, 4)[2]), 0);
    EXPECT_TRUE(logged("You don't create vertex program."));
}

TEST_F(EffectTest, ProgramsAreSharedAndTheirValuesAreNot)
{
    const char* const source = "uniform float level; void main() { gl_FragColor = vec4(level); }";
    KEXSDK::GpuEffect effects[] = {effectOf(4, 4, source), effectOf(4, 4, source)};
    const auto input = Picture::plain(4, 4, {0, 0, 0, 0});
    Picture target(4, 4);
    for (const float level : {0.2f, 0.6f}) {
        KEXSDK::GpuEffect& effect = effects[level > 0.5f];
        effect->setInput(input->record(), 0);
        ogre(effect).setFloatParam(KEXSDK::ShaderParameter::fragment, "level", level);
    }
    ASSERT_TRUE(effects[1].draw(target));
    EXPECT_EQ(int(target.pixel(0, 0)[0]), 153);
    ASSERT_TRUE(effects[0].draw(target));
    EXPECT_EQ(int(target.pixel(0, 0)[0]), 51);
    // The digest of the text names the program; OGRE's log tells when it is made.
    const std::string log = read("Ogre.log");
    EXPECT_EQ(log.find("_FRAG_GLSL"), log.rfind("_FRAG_GLSL"));
}

TEST_F(EffectTest, WhatCannotBeDrawnSaysWhyAndLeavesTheTarget)
{
    const struct {
        const char* text;
        bool isSource;
        const char* reason;
    } rows[] = {
        {"void main() { gl_FragColor = nothing; }", true, "nothing"},
        {"varying vec3 absent; void main() { gl_FragColor = vec4(absent, 1.0); }", true, "absent"},
        {"", true, ""},
        {"no/such.frag", false, "such.frag"},
    };
    const auto input = Picture::plain(4, 4, {1, 2, 3, 4});
    for (const auto& row : rows) {
        KEXSDK::GpuEffect effect = KEXSDK::GpuEffect::create();
        effect->setSize(4, 4);
        effect->setShaderSource(row.text, true, row.isSource);
        effect->setInput(input->record(), 0);
        Picture target(4, 4);
        EXPECT_FALSE(effect.draw(target)) << row.text;
        EXPECT_NE(effect->problem().find(row.reason), std::string::npos) << effect->problem();
        EXPECT_FALSE(effect->problem().empty());
        EXPECT_EQ(effect->problem().find('\n'), std::string::npos) << "it goes into one line of a log";
        EXPECT_EQ(target.bytes(), std::vector<u8>(64));
    }
    KEXSDK::GpuEffect effect = effectOf(4, 4);
    EXPECT_FALSE(effect->loadPicture(path("none.png").c_str(), 1));
    EXPECT_FALSE(effect->problem().empty());
    EXPECT_TRUE(logged("none.pngnot be add to resource group or path is not right!"));
    EXPECT_TRUE(logged("Pictrue path is not right or it did not been add to resource group."));
    // Other effects go on as before.
    KEXSDK::GpuEffect good = effectOf(4, 4);
    good->setInput(input->record(), 0);
    Picture target(4, 4);
    ASSERT_TRUE(good.draw(target));
    EXPECT_EQ(target.bytes(), input->bytes());
}

/// Effects over a resource directory of the test's own.
class EffectFilesTest : public EffectTest {
protected:
    EffectFilesTest()
    {
        thread_.shutdown();
        write("resources.cfg", "[General]\nFileSystem = .\n");
        own_.emplace(directory_.c_str(), test::kResourceDirectory, directory_.c_str());
    }

    std::optional<KEXSDK::TovOgreRenderThread> own_;
};

TEST_F(EffectFilesTest, ACorrectedShaderFileIsReadAnew)
{
    write("red.frag", "void main() { gl_FragColor = oops; }");
    const auto input = Picture::plain(4, 4, {0, 0, 0, 0});
    Picture target(4, 4);
    const auto drawn = [&] {
        KEXSDK::GpuEffect effect = KEXSDK::GpuEffect::create();
        effect->setSize(4, 4);
        effect->setShaderSource("red.frag", true, false);
        effect->setInput(input->record(), 0);
        return effect.draw(target);
    };
    EXPECT_FALSE(drawn());
    write("red.frag", "void main() { gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0); }");
    EXPECT_TRUE(drawn());
    EXPECT_EQ(target.pixel(1, 1), (std::array<u8, 4>{0, 0, 255, 255}));
}

TEST_F(EffectTest, TheTransformMovesTurnsAndScalesThePicture)
{
    const auto source = Picture::noise(40, 30, 3);
    KEXSDK::GpuEffect effect = effectOf(40, 30);
    effect->setInput(source->record(), 0);
    Picture target(40, 30);
    effect->transform.translation[0] = 7;
    effect->transform.translation[1] = 4;
    ASSERT_TRUE(effect.draw(target));
    EXPECT_EQ(target.pixel(17, 10), source->pixel(10, 14)) << "right, and toward the first row";
    EXPECT_EQ(target.pixel(3, 10), (std::array<u8, 4>{})) << "nothing is there";
    effect->transform = {};
    effect->transform.axis[1] = 0;
    effect->transform.axis[2] = 1;
    effect->transform.angle = 180;
    ASSERT_TRUE(effect.draw(target));
    EXPECT_EQ(target.pixel(5, 6), source->pixel(34, 23));
    effect->transform = {};
    effect->transform.scale[0] = -1;
    ASSERT_TRUE(effect.draw(target));
    EXPECT_EQ(target.pixel(5, 6), source->pixel(34, 6));
    effect->transform = {};
    ASSERT_TRUE(effect.draw(target));
    EXPECT_TRUE(target.bytes() == source->bytes()) << "neutral again";
}

TEST_F(EffectTest, FlippingReversesTheRows)
{
    const auto source = Picture::noise(21, 13, 3);
    KEXSDK::GpuEffect effect = effectOf(21, 13);
    effect->setInput(source->record(), 0);
    effect->setFlipVertical(true);
    Picture target(21, 13);
    ASSERT_TRUE(effect.draw(target));
    source->reverseRows();
    EXPECT_TRUE(target.bytes() == source->bytes());
}

TEST_F(EffectFilesTest, ATextureFileMayBeAnInput)
{
    const auto picture = Picture::noise(31, 17, 5);
    for (u32 i = 3; i < picture->byteSize(); i += 4)
        picture->pixels()[i] = 255;
    ASSERT_TRUE(own_->saveImage(path("texture.png").c_str(), picture->pixels(), 31, 17));
    KEXSDK::GpuEffect effect = effectOf(31, 17);
    EXPECT_FALSE(effect->loadPicture(path("texture.png").c_str(), 1)) << "by its name alone";
    effect = effectOf(31, 17);
    ASSERT_TRUE(effect->loadPicture("texture.png", 0));
    Picture target(31, 17);
    for (int frame = 0; frame < 2; ++frame) {
        ASSERT_TRUE(effect.draw(target));
        EXPECT_TRUE(target.bytes() == picture->bytes());
    }
}

TEST_F(EffectTest, TooLargeAnInputKeepsThePictureBefore)
{
    const auto source = Picture::noise(8, 8, 5);
    const std::vector<u8> wide(std::size_t{4} * (KEXSDK::maxTextureSize() + 1));
    KEXSDK::GpuEffect effect = effectOf(8, 8);
    effect->setInput(source->record(), 0);
    Picture target(8, 8);
    ASSERT_TRUE(effect.draw(target));
    effect->setInputPixels(wide.data(), KEXSDK::maxTextureSize() + 1, 1, 0);
    ASSERT_TRUE(effect.draw(target));
    EXPECT_TRUE(target.bytes() == source->bytes());
    EXPECT_TRUE(logged(
        "dimension is large max texture size " + std::to_string(KEXSDK::maxTextureSize()) + "of supported"));
}

TEST_F(EffectTest, AnEffectOutlivesItsThreadUnharmed)
{
    const auto source = Picture::noise(8, 8, 5);
    Picture target(8, 8);
    KEXSDK::GpuEffect effect = effectOf(8, 8);
    effect->setInput(source->record(), 0);
    ASSERT_TRUE(effect.draw(target));
    thread_.shutdown();
    effect->setSize(9, 9);
    ogre(effect).setFloatParam(KEXSDK::ShaderParameter::fragment, "x", 1);
    EXPECT_EQ(effect->getShaderParameters(), nullptr);
    EXPECT_FALSE(effect.draw(target));
    // The old effect does not get in the way of the next thread's effects either.
    KEXSDK::TovOgreRenderThread again(test::kResourceDirectory, test::kResourceDirectory, "");
    EXPECT_FALSE(effect.draw(target));
    KEXSDK::GpuEffect later = effectOf(8, 8);
    later->setInput(target.record(), 0); // with a texture of the thread before
    EXPECT_TRUE(later.draw(target));
    later->setInput(source->record(), 0);
    ASSERT_TRUE(later.draw(target));
    EXPECT_TRUE(target.bytes() == source->bytes());
}

TEST_F(EffectTest, MemoryStaysFlatWhileEffectsComeAndGo)
{
    const auto source = Picture::noise(320, 240, 5);
    Picture target(320, 240);
    const auto cycles = [&](int count) {
        for (int i = 0; i < count; ++i) {
            KEXSDK::GpuEffect effect = effectOf(320, 240,
                "uniform sampler2D mSample0; varying vec2 textureCoord;"
                "void main() { gl_FragColor = texture2D(mSample0, textureCoord); }");
            effect->setInput(source->record(), 0);
            ASSERT_TRUE(effect.draw(target));
        }
    };
    cycles(60);
    const std::size_t before = residentKilobytes();
    cycles(300);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // One leaked picture or texture a cycle would be 90 MB.
    EXPECT_LT(residentKilobytes(), before + 4 * 1024);
#else
    static_cast<void>(before); // sanitizers keep what was freed
#endif
}

} // namespace
