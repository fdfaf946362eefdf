// Allocations that fail while an effect is built and drawn: at most its own frame is lost.
#include "gpu/GpuEffectTest.h"
#include "support/allocationCount.h"

namespace {

using test::Picture;

class FailingMemoryTest : public test::GpuEffectTest {
protected:
    static constexpr u32 kWidth = 21;
    static constexpr u32 kHeight = 13;

    /// Shows its first input. Every number makes another program.
    static std::string programOf(long number)
    {
        return "#version 120\nuniform sampler2D mSample0, mSample1; varying vec2 textureCoord;"
               "uniform float gain = 1.0; uniform vec4 add[2]; void main() { gl_FragColor = "
               "texture2D(mSample0, textureCoord) * gain + add[1] + min(texture2D(mSample1, textureCoord), "
               "0.0); } // "
            + std::to_string(number);
    }

    /// One that hands the first input on, one with two textures, and the last, which shows the first's.
    static std::vector<shader::DescriptorPass> passes()
    {
        using Input = shader::PassInput;
        std::vector<shader::DescriptorPass> all(3);
        all[0].inputs = {Input{Input::Source::picture, 0}};
        all[1].inputs = {Input{Input::Source::lastFrame, 1}, Input{Input::Source::picture, 2}};
        all[1].persistent = true;
        all[2].inputs = {Input{Input::Source::pass, 0}};
        return all;
    }

    bool draw(KEXSDK::GpuEffect& effect, Picture& target) const
    {
        effect->setInput(input_->record(), 0);
        effect->setInput(second_->record(), 1);
        ogre(effect).setIntParam(KEXSDK::ShaderParameter::fragment, "mSample1", 1);
        if (KEXSDK::ShaderParameters* const uniforms = effect->getShaderParameters())
            effect->setShaderParameters(*uniforms);
        return effect.draw(target);
    }

    const std::unique_ptr<Picture> input_ = Picture::noise(kWidth, kHeight, 1);
    const std::unique_ptr<Picture> second_ = Picture::noise(8, 9, 2);
};

TEST_F(FailingMemoryTest, TheNextFrameAndTheNextEffectOfThatProgramAreRight)
{
    if (!test::kCountsAllocations)
        GTEST_SKIP() << "the sanitizers allocate for themselves";
    const struct {
        const char* particles;
        u32 frame;
        bool inRenderingLibrary; ///< which cannot destroy a particle system whose pool did not come about
        bool hasPasses;
    } rows[] = {{"", 0, true, false}, {"snow", 3, false, false}, {"", 0, true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hasPasses ? "passes" : row.particles);
        const auto make = [&](const std::string& program) {
            KEXSDK::GpuEffect effect = KEXSDK::GpuEffect::create();
            if (effect) {
                effect->setSize(kWidth, kHeight);
                effect->setShaderSource(program.c_str(), true, true);
                effect->particleTemplate = row.particles;
                if (row.hasPasses)
                    effect->passes = passes();
            }
            return effect;
        };
        const auto drawFrame = [&](KEXSDK::GpuEffect& effect, Picture& target) {
            effect->setFrameIndex(row.frame);
            return draw(effect, target);
        };
        KEXSDK::GpuEffect older = make(programOf(0));
        Picture expected(kWidth, kHeight);
        ASSERT_TRUE(drawFrame(older, expected));
        EXPECT_EQ(expected.bytes() == input_->bytes(), row.frame == 0);
        int lost = 0;
        bool failed = true;
        for (long number = 1; failed; ++number) {
            SCOPED_TRACE("allocation " + std::to_string(number));
            const std::string program = programOf(number);
            Picture target(kWidth, kHeight);
            test::failAllocation(number, row.inRenderingLibrary);
            KEXSDK::GpuEffect unlucky = make(program);
            lost += unlucky && drawFrame(unlucky, target) ? 0 : 1;
            failed = test::allocationFailed();
            KEXSDK::GpuEffect next = make(program);
            for (KEXSDK::GpuEffect* const effect : {&unlucky, &next, &older, &unlucky}) {
                if (!*effect) // it could not be made
                    continue;
                std::fill_n(target.pixels(), target.byteSize(), u8(1));
                ASSERT_TRUE(drawFrame(*effect, target)) << (*effect)->problem() << read("Ogre.log");
                ASSERT_TRUE(target.bytes() == expected.bytes());
            }
        }
        EXPECT_GT(lost, 30);
    }
}

} // namespace
