// GPU effects with passes, as nodes set them up: sizes that change, and what they leave behind.
#include "gpu/GpuEffectTest.h"

namespace {

using shader::DescriptorPass;
using shader::PassInput;
using test::Picture;

class PassEffectTest : public test::GpuEffectTest {
protected:
    static PassInput picture(u32 index) { return {PassInput::Source::picture, index}; }
    static PassInput pass(u32 index) { return {PassInput::Source::pass, index}; }
    static PassInput lastFrame(u32 index) { return {PassInput::Source::lastFrame, index}; }

    static DescriptorPass reading(PassInput input, double scale = 1, bool persistent = false)
    {
        DescriptorPass pass;
        pass.inputs = {input};
        pass.scale = scale;
        pass.persistent = persistent;
        return pass;
    }

    static KEXSDK::GpuEffect effectOfPasses(u32 width, u32 height, std::vector<DescriptorPass> passes)
    {
        KEXSDK::GpuEffect effect = KEXSDK::GpuEffect::create();
        effect->setSize(width, height);
        effect->passes = std::move(passes);
        return effect;
    }
    /// Shows its input one frame later.
    static KEXSDK::GpuEffect delay(u32 width, u32 height)
    {
        return effectOfPasses(
            width, height, {reading(lastFrame(1)), reading(picture(0), 1, true), reading(pass(0))});
    }
};

TEST_F(PassEffectTest, ANewSizeForgetsAndTheSameSizeDoesNot)
{
    KEXSDK::GpuEffect effect = delay(30, 20);
    const auto draw = [&](const Picture& source) {
        Picture target(source.width(), source.height());
        effect->setSize(source.width(), source.height());
        effect->setInput(source.record(), 0);
        EXPECT_TRUE(effect.draw(target)) << effect->problem() << read("Ogre.log");
        return target.bytes();
    };
    const auto first = Picture::noise(30, 20, 1);
    const auto second = Picture::noise(30, 20, 2);
    const auto larger = Picture::noise(301, 70, 3);
    const std::vector<u8> nothing(30 * 20 * 4);
    EXPECT_TRUE(draw(*first) == nothing);
    EXPECT_TRUE(draw(*second) == first->bytes());
    ogre(effect).setReadBackMode(KEXSDK::ReadBackMode::packBuffer); // everything else is set up anew
    EXPECT_TRUE(draw(*first) == second->bytes());
    EXPECT_TRUE(draw(*larger) == std::vector<u8>(301 * 70 * 4));
    EXPECT_TRUE(draw(*larger) == larger->bytes());
    EXPECT_TRUE(draw(*first) == nothing);
    EXPECT_TRUE(draw(*second) == first->bytes());
    effect->forgetFrames();
    EXPECT_TRUE(draw(*first) == nothing);
    EXPECT_TRUE(draw(*second) == first->bytes());
}

TEST_F(PassEffectTest, PicturesOfOtherEffectsAreReadWhileTheyLast)
{
    const auto source = Picture::noise(16, 16, 1);
    Picture between(16, 16);
    Picture target(16, 16);
    KEXSDK::GpuEffect reader = effectOfPasses(16, 16, {DescriptorPass(), reading(pass(0))});
    {
        KEXSDK::GpuEffect first = effectOf(16, 16);
        first->setInput(source->record(), 0);
        ASSERT_TRUE(first.draw(between));
        reader->setInput(between.record(), 0);
        std::fill_n(between.pixels(), between.byteSize(), u8(1)); // the texture is read, not the memory
        ASSERT_TRUE(reader.draw(target));
        EXPECT_TRUE(target.bytes() == source->bytes());
    }
    ASSERT_TRUE(reader.draw(target));
    EXPECT_TRUE(target.bytes() == source->bytes()) << "the other effect has ended";
    // Its own picture.
    KEXSDK::GpuEffect loop = effectOfPasses(16, 16, {reading(picture(0), 0.5), reading(picture(0))});
    loop->setInput(source->record(), 0);
    ASSERT_TRUE(loop.draw(target));
    loop->setInput(target.record(), 0);
    ASSERT_TRUE(loop.draw(target));
    EXPECT_TRUE(target.bytes() == source->bytes());
}

TEST_F(PassEffectTest, MemoryStaysFlatWhileTheyComeAndGo)
{
    const auto source = Picture::noise(320, 240, 5);
    Picture target(320, 240);
    const auto cycles = [&](int count) {
        for (int i = 0; i < count; ++i) {
            KEXSDK::GpuEffect effect = delay(320, 240);
            effect->setInput(source->record(), 0);
            ASSERT_TRUE(effect.draw(target));
        }
    };
    cycles(60);
    const std::size_t before = residentKilobytes();
    cycles(200);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // One leaked target a cycle would be 60 MB.
    EXPECT_LT(residentKilobytes(), before + 4 * 1024);
#else
    static_cast<void>(before); // sanitizers keep what was freed
#endif
}

} // namespace
