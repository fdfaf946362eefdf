// What only hosts of OGRE itself call: values in its types, and the way back through a buffer of OpenGL's.
#include "gpu/GpuEffectTest.h"

#include <OgreMatrix4.h>

namespace {

using test::Picture;

using OgreEffectTest = test::GpuEffectTest;

TEST_F(OgreEffectTest, ValuesInOgresTypesArrive)
{
    const char* const source = R"(#version 120
        uniform vec2 two; uniform vec3 three; uniform vec4 four; uniform vec4 colour; uniform mat4 one;
        uniform mat4 several[2]; uniform float reals[3]; uniform ivec2 whole;
        void main()
        {
            int wrong = 0;
            if (two != vec2(1, 2)) wrong += 1;
            if (three != vec3(3, 4, 5)) wrong += 2;
            if (four != vec4(6, 7, 8, 9)) wrong += 4;
            if (colour != vec4(0.25, 0.5, 0.75, 1)) wrong += 8;
            if (one * vec4(0, 0, 0, 1) != vec4(10, 20, 30, 1)) wrong += 16;
            if (several[0] != one || several[1] * vec4(1, 1, 1, 1) != vec4(2, 2, 2, 1)) wrong += 32;
            if (reals[0] != 0.5 || reals[2] != -1.5) wrong += 64;
            if (whole != ivec2(3, -4)) wrong += 128;
            gl_FragColor = vec4(float(wrong) / 255.0);
        })";
    KEXSDK::GpuEffect effect = effectOf(4, 4, source);
    KEXSDK::TovOgreEffectBase& values = ogre(effect);
    constexpr u32 kFragment = KEXSDK::ShaderParameter::fragment;
    Ogre::Matrix4 matrices[2] = {Ogre::Matrix4::IDENTITY, Ogre::Matrix4::IDENTITY};
    matrices[0].setTrans({10, 20, 30});
    matrices[1].setScale({2, 2, 2});
    const double reals[] = {0.5, 1, -1.5};
    const i32 whole[] = {3, -4};
    values.setParam(kFragment, "two", Ogre::Vector2(1, 2));
    values.setParam(kFragment, "three", Ogre::Vector3(3, 4, 5));
    values.setParam(kFragment, "four", Ogre::Vector4(6, 7, 8, 9));
    values.setParam(kFragment, "colour", Ogre::ColourValue(0.25f, 0.5f, 0.75f, 1));
    values.setParam(kFragment, "one", matrices[0]);
    values.setParam(kFragment, "several", matrices, 2);
    values.setDoubleArrayParam(kFragment, "reals", reals, 3, 1);
    values.setIntArrayParam(kFragment, "whole", whole, 1, 2);
    const auto input = Picture::plain(4, 4, {0, 0, 0, 0});
    effect->setInput(input->record(), 0);
    Picture target(4, 4);
    ASSERT_TRUE(effect.draw(target)) << effect->problem();
    EXPECT_EQ(int(target.pixel(1, 1)[0]), 0);
}

TEST_F(OgreEffectTest, BothWaysBackGiveTheSameBytes)
{
    const auto source = Picture::noise(37, 23, 8);
    KEXSDK::GpuEffect effect = effectOf(37, 23);
    effect->setInput(source->record(), 0);
    Picture small(37, 23);
    Picture large(120, 64);
    std::vector<u8> before;
    // The pack buffer comes with its mode, grows with the picture, and goes with the mode.
    for (const KEXSDK::ReadBackMode mode :
        {KEXSDK::ReadBackMode::direct, KEXSDK::ReadBackMode::packBuffer, KEXSDK::ReadBackMode::direct}) {
        ogre(effect).setReadBackMode(mode);
        effect->setSize(37, 23);
        std::fill_n(small.pixels(), small.byteSize(), u8(7));
        ASSERT_TRUE(effect.draw(small));
        EXPECT_EQ(small.bytes(), source->bytes());
        effect->setSize(120, 64);
        effect->setFlipVertical(true);
        std::fill_n(large.pixels(), large.byteSize(), u8(7));
        ASSERT_TRUE(effect.draw(large));
        effect->setFlipVertical(false);
        if (before.empty())
            before = large.bytes();
        EXPECT_EQ(large.bytes(), before);
    }
}

} // namespace
