// What hosts rely on when they give effects their own pictures: every effect leaves its inputs alone and
// writes all of any image, except those whose facts say otherwise; and graphs make up for these.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "engine/effectList.h"
#include "host/effectList.h"
#include "hosting/exampleValues.h"
#include "support/GraphFixture.h"
#include "support/GuardedFrame.h"
#include "support/paths.h"

#include <memory>
#include <set>

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using KEXSDK::ParamType;
using test::Bytes;

constexpr int kFrames = 6;
constexpr int kFramesOfShared = 24; // after so many frames of all nodes the camcorder's light is where it was

// Of a clip of two seconds; the last frame lies behind its end.
host::FrameTime timeOf(int frame) { return {.seconds = frame * 0.45, .total = 2}; }

// A value for a parameter that has no example.
struct Setting {
    const ParamInfo* param = nullptr;
    double value = 0;
};

std::ostream& operator<<(std::ostream& out, const Setting& setting)
{
    return setting.param ? out << setting.param->name << " = " << setting.value : out << "examples";
}

std::vector<Setting> settingsOf(const EffectInfo& effect)
{
    constexpr double kMost = 2e9; // for whole numbers
    std::vector<Setting> settings(1);
    for (const ParamInfo* const param : host::describeParameters(effect.guid)) {
        if (param->type != ParamType::filePath && param->low < param->high) {
            for (const double value : {param->low, param->high, param->low - 1, param->high * 3 + 1})
                settings.push_back({param, std::clamp(value, -kMost, kMost)});
        }
    }
    return settings;
}

host::GraphDescription graphWith(const EffectInfo& effect, const Setting& setting, pixels::Extent size)
{
    host::GraphDescription graph;
    host::GraphNode& node = graph.append(effect.guid);
    if (setting.param) {
        node.parameters.emplace_back(
            *setting.param, std::vector<double>(setting.param->elements, setting.value));
    }
    for (const KEXSDK::ParamInfo* const info : host::describeParameters(effect.guid)) {
        if (!info->declared && !node.sets(*info) && !*info->packExample) // the pack may not be there
            node.parameters.emplace_back(
                *info, host::exampleValue(*info, unsigned(size.width), unsigned(size.height)));
    }
    graph.finish();
    return graph;
}

// Pictures with other noise in each frame.
class Sources {
public:
    Sources(u32 count, pixels::Extent size)
    {
        for (u32 i = 0; i < count; ++i)
            frames_.push_back(std::make_unique<test::GuardedFrame>(size.width, size.height));
    }
    void paint(int frame)
    {
        for (std::size_t i = 0; i < frames_.size(); ++i)
            frames_[i]->fillWithNoise(unsigned(frame) * 10 + unsigned(i));
        before_ = bytes();
    }
    bool untouched() const { return bytes() == before_; }
    CEffectImage* image(u32 index) const { return frames_[index]->image(); }

private:
    std::vector<Bytes> bytes() const
    {
        std::vector<Bytes> all;
        for (const auto& frame : frames_)
            all.push_back(frame->bytes());
        return all;
    }
    std::vector<std::unique_ptr<test::GuardedFrame>> frames_;
    std::vector<Bytes> before_;
};

struct Shown {
    std::vector<Bytes> frames;
    bool wroteInput = false;
};

// All frames of one effect by `draw`, which is given the sources and a frame's number and answers its bytes.
template <class Draw> Shown showAll(const EffectInfo& effect, pixels::Extent size, Draw draw)
{
    Shown shown;
    Sources sources(effect.inputs, size);
    for (int frame = 0; frame < (effect.shared ? kFramesOfShared : kFrames); ++frame) {
        sources.paint(frame);
        shown.frames.push_back(draw(sources, frame));
        shown.wroteInput |= !sources.untouched();
    }
    return shown;
}

// The bytes that `draw` leaves in an image that held noise.
template <class Draw> Bytes drawnOverNoise(pixels::Extent size, int frame, Draw draw)
{
    test::GuardedFrame target(size.width, size.height);
    target.fillWithNoise(1000 + unsigned(frame));
    draw(target.image());
    EXPECT_TRUE(target.guardsIntact());
    return target.bytes();
}

// Without a graph.
Shown showFilter(const host::GraphDescription& graph, pixels::Extent size, bool overNoise)
{
    test::restartSharedState();
    const host::GraphNode& node = graph.nodes.front();
    host::Filter filter(node.effect->guid, size.width, size.height);
    for (const host::ParameterTrack& track : node.parameters)
        host::store(filter, track.info(), track.at({}));
    return showAll(*node.effect, size, [&](const Sources& sources, int frame) {
        const auto set = [&](const char* name, double value) {
            if (std::ranges::none_of(node.parameters,
                    [&](const auto& track) { return std::string_view(track.info().name) == name; }))
                filter.set(name, float(value));
        };
        set(kEffectFrameRate, timeOf(frame).frameRate);
        set(kEffectTotalTime, timeOf(frame).total);
        set(kEffectCurrentTime, timeOf(frame).seconds);
        for (u32 i = 0; i < node.effect->inputs; ++i)
            SetInputImage(filter.handle(), sources.image(i), i);
        if (!overNoise)
            return test::copyOf(filter.run());
        return drawnOverNoise(size, frame, [&](CEffectImage* target) { filter.runInto(target); });
    });
}

Shown showGraph(const host::GraphDescription& description, pixels::Extent size, bool overNoise)
{
    test::restartSharedState();
    host::EffectGraph graph(description, unsigned(size.width), unsigned(size.height));
    return showAll(*description.nodes.front().effect, size, [&](const Sources& sources, int frame) {
        for (u32 i = 0; i < graph.sources(); ++i)
            graph.setSource(sources.image(i), i);
        if (!overNoise)
            return test::copyOf(graph.run(timeOf(frame)));
        return drawnOverNoise(
            size, frame, [&](CEffectImage* target) { graph.runInto(target, timeOf(frame)); });
    });
}

// Compares every way to run an effect, and remembers whose facts were needed.
class Promises {
public:
    void check(const EffectInfo& effect, const Setting& setting, pixels::Extent size)
    {
        SCOPED_TRACE(testing::Message()
            << effect.name << ", " << setting << ", " << size.width << " x " << size.height);
        const auto graph = graphWith(effect, setting, size);
        const Shown expected = showFilter(graph, size, false);
        if (expected.wroteInput) {
            EXPECT_FALSE(effect.writesInput.empty()) << "it wrote to an input";
            needed_.insert(effect.name);
        }
        if (effect.keepsOutput && showFilter(graph, size, true).frames != expected.frames)
            needed_.insert(effect.name);
        for (const bool overNoise : {false, true}) {
            const Shown shown = showGraph(graph, size, overNoise);
            EXPECT_TRUE(shown.frames == expected.frames) << (overNoise ? "in an image that held noise" : "");
            EXPECT_FALSE(shown.wroteInput) << "the caller's picture";
        }
    }
    void checkThatFactsWereNeeded() const
    {
        for (const EffectInfo& effect : listEffects())
            EXPECT_EQ(!effect.writesInput.empty() || effect.keepsOutput, needed_.contains(effect.name))
                << effect.name;
    }

private:
    std::set<std::string> needed_;
};

class CallersPictures : public test::GraphFixture {
protected:
    // Here effects find overlays and textures, too.
    void SetUp() override
    {
        GraphFixture::SetUp();
        std::mt19937 random(7);
        test::files.others.resize(1009);
        for (pixels::Bgra& p : test::files.others)
            p = {u8(random()), u8(random()), u8(random()), u8(random())};
    }
};

TEST_F(CallersPictures, AreWrittenWhollyAndInputsAreLeftAloneWithoutAGpu)
{
    Promises promises;
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        for (const Setting& setting : settingsOf(effect)) {
            for (const pixels::Extent size : {pixels::Extent{33, 17}, {8, 5}})
                promises.check(effect, setting, size);
        }
    }
    promises.checkThatFactsWereNeeded();
}

TEST(CallersPicturesWithGpu, AreWrittenWhollyAndInputsAreLeftAlone)
{
    core::pinTime(1'700'000'000);
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    listShaderEffectsOf(test::kResourceDirectory);
    {
        const host::Engine engine(test::kResourceDirectory, nullptr);
        ASSERT_TRUE(KEXSDK::gpuAvailable());
        Promises promises;
        for (const EffectInfo& effect : listEffects())
            promises.check(effect, {}, {33, 17});
    }
    listShaderEffectsOf("");
    core::pinTime(std::nullopt);
}

} // namespace
