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

    bool draw(GpuEffect& effect, Picture& target) const
    {
        effect->setInput(input_->record(), 0);
        effect->setInput(second_->record(), 1);
        effect->setIntParam(ShaderParameter::fragment, "mSample1", 1);
        if (ShaderParameters* const uniforms = effect->getShaderParameters())
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
    GpuEffect older = effectOf(kWidth, kHeight, programOf(0).c_str());
    Picture target(kWidth, kHeight);
    ASSERT_TRUE(draw(older, target));
    ASSERT_TRUE(target.bytes() == input_->bytes());
    int lost = 0;
    bool failed = true;
    for (long number = 1; failed; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        const std::string program = programOf(number);
        test::failAllocation(number);
        GpuEffect unlucky = GpuEffect::create();
        if (unlucky) {
            unlucky->setSize(kWidth, kHeight);
            unlucky->setShaderSource(program.c_str(), true, true);
        }
        lost += unlucky && draw(unlucky, target) ? 0 : 1;
        failed = test::allocationFailed();
        GpuEffect next = effectOf(kWidth, kHeight, program.c_str());
        for (GpuEffect* const effect : {&unlucky, &next, &older, &unlucky}) {
            if (!*effect) // it could not be made
                continue;
            std::fill_n(target.pixels(), target.byteSize(), u8(1));
            ASSERT_TRUE(draw(*effect, target)) << (*effect)->problem() << read("Ogre.log");
            ASSERT_TRUE(target.bytes() == input_->bytes());
        }
    }
    EXPECT_GT(lost, 100);
}

} // namespace
