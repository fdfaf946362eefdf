// Effects that work row by row: any run of rows gives the rows of the whole picture, and chains of them,
// which evaluation takes strip by strip, leave in every picture what node after node would.
#include "effects/gpu/preferredForm.h"
#include "engine/effectList.h"
#include "hosting/exampleValues.h"
#include "hosting/imageView.h"
#include "model/CSimpleEffect.h"
#include "model/RowWise.h"
#include "pixels/widest.h"
#include "support/EngineFixture.h"
#include "support/FilesInMemory.h"
#include "support/GuardedFrame.h"

#include <tbb/global_control.h>

#include <memory>
#include <random>

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

// Several strips, and no multiple of any vector.
constexpr int kWidth = 333;
constexpr int kHeight = 301;

class RowEffects : public test::EngineWithoutGpu {
protected:
    // Hides the fixture's function of this name: here effects find overlays and textures.
    static void SetUpTestSuite()
    {
        test::useFilesOfNoise();
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
    }
    void SetUp() override
    {
        KEXSDK::preferForm([] { return KEXSDK::EffectForm::cpu; });
    }
    void TearDown() override
    {
        KEXSDK::preferForm([this] { return before_; });
        KEXSDK::preferredForm(); // decided while this object is there
        pixels::limitVectors(pixels::VectorLevel::avx512);
    }

    int below(int end) { return int(random_() % unsigned(end)); }

    // Gives a parameter any value from below its range to above it.
    void storeAny(host::Filter& filter, const ParamInfo& param)
    {
        const double span = param.high - param.low;
        std::uniform_real_distribution<double> any(param.low - 0.2 * span, param.high + 0.2 * span);
        std::vector<double> values(param.elements);
        for (double& value : values)
            value = param.type == ParamType::integer || param.type == ParamType::integerArray
                ? std::floor(any(random_))
                : any(random_);
        if (param.type != ParamType::filePath && std::string_view(param.name) != kEffectEnable)
            host::store(filter, param, values);
    }
    host::Filter open(const EffectInfo& effect)
    {
        host::Filter filter(effect.guid, kWidth, kHeight);
        host::setExampleValues(filter, describeParameters(effect.guid), kWidth, kHeight);
        return filter;
    }
    // Leads a list of filters of the same effects to the same values.
    void storeAny(std::span<host::Filter* const> filters, const EffectInfo& effect)
    {
        const auto before = random_;
        for (host::Filter* const filter : filters) {
            random_ = before;
            for (const ParamInfo* const param : describeParameters(effect.guid))
                storeAny(*filter, *param);
        }
    }

    const KEXSDK::EffectForm before_ = KEXSDK::preferredForm();
    std::mt19937 random_{1};
};

std::vector<EffectInfo> effectsByRows()
{
    std::vector<EffectInfo> effects = listEffects();
    std::erase_if(effects, [](const EffectInfo& effect) { return !effect.byRows || effect.needsGpu; });
    return effects;
}

TEST_F(RowEffects, AreThoseOfTheWholePictureHoweverItIsCut)
{
    EXPECT_GE(effectsByRows().size(), 80u);
    for (const EffectInfo& effect : effectsByRows()) {
        SCOPED_TRACE(effect.name);
        EXPECT_TRUE(!effect.random && !effect.shared && !effect.keepsOutput && effect.history.frames == 0);
        host::Filter filter = open(effect);
        test::GuardedFrame input(kWidth, kHeight);
        input.fillWithNoise(5);
        SetInputImage(filter.handle(), input.image(), 0);
        auto* const node = dynamic_cast<KEXSDK::RowWise*>(filter.handle());
        ASSERT_NE(node, nullptr);
        for (const bool inPlace : {false, true, false}) {
            host::Filter* const filters[] = {&filter};
            storeAny(filters, effect);
            const auto whole = host::bytesOf(filter.run());
            test::GuardedFrame drawn(kWidth, kHeight);
            if (inPlace)
                std::ranges::copy(input.bytes(), drawn.pixels());
            ASSERT_TRUE(node->beginRows());
            for (int first = 0, end = 0; first < kHeight; first = end) {
                end = std::min(first + 1 + below(40), kHeight);
                node->processRows(
                    (inPlace ? drawn : input).view().rows(first, end), drawn.view().rows(first, end), first);
            }
            node->endRows();
            EXPECT_TRUE(std::ranges::equal(drawn.bytes(), whole)) << "in place: " << inPlace;
            EXPECT_TRUE(drawn.guardsIntact());
        }
    }
}

TEST_F(RowEffects, OfOtherEffectsAreNotAskedFor)
{
    const test::GuardedFrame input(kWidth, kHeight);
    for (const EffectInfo& effect : listEffects()) {
        if (effect.byRows || effect.needsGpu)
            continue;
        host::Filter filter = open(effect);
        SetInputImage(filter.handle(), input.image(), 0);
        filter.run();
        auto* const node = dynamic_cast<KEXSDK::RowWise*>(filter.handle());
        EXPECT_FALSE(node && node->beginRows()) << effect.name;
    }
}

TEST_F(RowEffects, OfChainsAreWhatNodeAfterNodeDraws)
{
    std::vector<EffectInfo> effects = effectsByRows();
    for (const char* const name : {"blur", "am-flip-tb", "am-mosaic", "equalize"})
        for (int i = 0; i < 4; ++i)
            effects.push_back(*findEffect(name));
    constexpr std::size_t kThreads[] = {1, 2, 3, 7};
    constexpr pixels::VectorLevel kLevels[] = {
        pixels::VectorLevel::base, pixels::VectorLevel::avx2, pixels::VectorLevel::avx512};
    test::GuardedFrame input(kWidth, kHeight);
    test::GuardedFrame target(kWidth, kHeight);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const tbb::global_control limit(
            tbb::global_control::max_allowed_parallelism, kThreads[round % std::size(kThreads)]);
        const auto count = std::size_t(round % 10 == 9 ? 20 : 2 + below(6));
        std::vector<const EffectInfo*> chosen;
        std::vector<host::Filter> alone;
        std::vector<host::Filter> chain;
        for (std::size_t i = 0; i < count; ++i) {
            chosen.push_back(&effects[std::size_t(below(int(effects.size())))]);
            alone.push_back(open(*chosen[i]));
            chain.push_back(open(*chosen[i]));
            if (i > 0)
                chain[i].connectFrom(chain[i - 1]);
        }
        SetInputImage(chain[0].handle(), input.image(), 0);
        for (int frame = 0; frame < 3; ++frame) {
            input.fillWithNoise(unsigned(round * 10 + frame));
            CEffectImage* last = input.image();
            std::vector<CEffectImage*> expected;
            pixels::limitVectors(pixels::VectorLevel::avx512);
            for (std::size_t i = 0; i < count; ++i) {
                host::Filter* const both[] = {&alone[i], &chain[i]};
                storeAny(both, *chosen[i]);
                const int enabled = below(5) > 0;
                for (host::Filter* const filter : both)
                    filter->set(kEffectEnable, enabled);
                SetInputImage(alone[i].handle(), last, 0);
                expected.push_back(last = alone[i].run());
            }
            pixels::limitVectors(kLevels[(round + frame) % std::size(kLevels)]);
            if (frame == 2) {
                chain.back().runInto(target.image());
                EXPECT_TRUE(std::ranges::equal(target.bytes(), host::bytesOf(last)));
                EXPECT_TRUE(target.guardsIntact());
                continue;
            }
            chain.back().run();
            for (std::size_t i = 0; i < count; ++i)
                EXPECT_TRUE(std::ranges::equal(
                    host::bytesOf(chain[i].handle()->getOutputImage()), host::bytesOf(expected[i])))
                    << chosen[i]->name << ", node " << i << " of " << count << ", frame " << frame;
        }
    }
}

} // namespace
