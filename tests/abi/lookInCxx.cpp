// A C++ host of both libraries: looks give the bytes that wired filters give, parameters move over time, a
// run that was reset goes on as a new one, and an engine that the host started itself is used and left
// running.
#include "check.h"
#include "lookOwners.h"
#include <EffectEngine/EffectEngine.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr Size kSize{37, 21};
constexpr const char* kHueShift = "12E5BC38-3508-44b0-AD1A-D0B37D19289F";

/// The frame that the hue shift gives when the engine is used directly.
Pixels hueShifted(Pixels frame, int hue)
{
    const ImageCreateInfo info{kSize.width, kSize.height, {}, frame.data()};
    CEffectImage* input = nullptr;
    CEffectImage* output = nullptr;
    CSimpleEffect* filter = nullptr;
    void* bytes = nullptr;
    if (CreateImage(&info, &input) || GetFilter(kHueShift, int(kSize.width), int(kSize.height), &filter)
        || setParamIntValue(filter, "Hue", hue) || SetInputImage(filter, input, 0)
        || DoFilter(filter, &output) || LockImageData(output, &bytes))
        std::abort();
    const auto* const begin = static_cast<unsigned char*>(bytes);
    Pixels result(begin, begin + frame.size());
    ReleaseFilter(filter);
    ReleaseImage(input);
    return result;
}

int looksGiveTheBytesOfFilters()
{
    const Look look = makeLook(EFFECTHOST_LOOK_EFFECT, "hue-shift");
    const Run run = startRun(look, kSize.width, kSize.height);
    for (const int hue : {20, 77}) {
        const Pixels input = painted(kSize, unsigned(hue));
        const double number = hue;
        CHECK(EffectHostSetNumbers(run.get(), nullptr, "Hue", &number, 1) == EFFECTHOST_OK);
        const Pixels shown = runFrame(run, {input}, kSize, 0);
        CHECK(shown == hueShifted(input, hue) && shown != input);
    }
    const double none = 0;
    CHECK(EffectHostSetNumbers(run.get(), nullptr, "mix", &none, 1) == EFFECTHOST_OK);
    CHECK(runFrame(run, {painted(kSize, 3)}, kSize, 0) == painted(kSize, 3));
    return 0;
}

int keyframesMoveUntilAValueIsSet()
{
    const Look look = makeLook(EFFECTHOST_LOOK_JSON, R"({"effectengine": 1, "nodes": [{"effect": "hue-shift",
        "parameters": {"Hue": {"keyframes": [{"time": 0, "value": 0}, {"time": 4, "value": 100}]}}}]})");
    const Run run = startRun(look, kSize.width, kSize.height);
    const Pixels input = painted(kSize, 9);
    for (const int frame : {0, 25, 50, 99, 10}) { // frames of an effect without history in any order
        CHECK(runFrame(run, {input}, kSize, frame) == hueShifted(input, frame));
        double now = -1;
        std::size_t count = 1;
        CHECK(EffectHostGetNumbers(run.get(), nullptr, "Hue", &now, &count) == EFFECTHOST_OK && now == frame);
    }
    CHECK(EffectHostSetText(run.get(), nullptr, "Hue", "60") == EFFECTHOST_OK);
    for (const int frame : {25, 75})
        CHECK(runFrame(run, {input}, kSize, frame) == hueShifted(input, 60));
    CHECK(EffectHostResetRun(run.get()) == EFFECTHOST_OK); // what was set stays
    CHECK(runFrame(run, {input}, kSize, 25) == hueShifted(input, 60));
    return 0;
}

int bandsFollowTheirCurves()
{
    const Look look = makeLook(EFFECTHOST_LOOK_JSON, R"({"effectengine": 2, "nodes": [{"effect": "hue-shift",
        "parameters": {"Hue": {"audio": {"band": "bass", "to": [0, 100], "smooth": 0}}}}]})");
    const EffectHostLookInfo* info = nullptr;
    CHECK(EffectHostGetLookInfo(look.get(), &info) == EFFECTHOST_OK);
    CHECK(info->bandCount == 1 && !std::strcmp(info->bands[0].name, "bass"));
    CHECK(info->bands[0].lowHertz > 0 && info->bands[0].lowHertz < info->bands[0].highHertz);
    const Run run = startRun(look, kSize.width, kSize.height);
    const Pixels input = painted(kSize, 5);
    CHECK(runFrame(run, {input}, kSize, 25) == hueShifted(input, 0)); // silence
    std::vector<float> samples(400, 0.0f);
    std::fill(samples.begin() + 100, samples.end(), 1.0f);
    CHECK(EffectHostSetCurve(run.get(), "bass", samples.data(), samples.size(), 100) == EFFECTHOST_OK);
    samples.assign(samples.size(), 0.0f); // the run has its own copy
    CHECK(runFrame(run, {input}, kSize, 10) == hueShifted(input, 0));
    CHECK(runFrame(run, {input}, kSize, 50) == hueShifted(input, 100));
    CHECK(
        EffectHostSetCurve(run.get(), "bass", samples.data(), samples.size(), 0) == EFFECTHOST_BAD_ARGUMENT);
    CHECK(EffectHostSetCurve(run.get(), "no such band", samples.data(), 1, 100) == EFFECTHOST_BAD_CONTENT);
    return 0;
}

/// An effect that remembers its frames: after a reset a run shows what a new one shows.
int resetRunsBeginAnew()
{
    const Look look = makeLook(EFFECTHOST_LOOK_EFFECT, "echo");
    const auto frames = [&](const Run& run) {
        std::vector<Pixels> shown;
        for (int i = 0; i < 24; ++i)
            shown.push_back(runFrame(run, {painted(kSize, unsigned(i))}, kSize, i));
        return shown;
    };
    const Run run = startRun(look, kSize.width, kSize.height);
    const std::vector<Pixels> first = frames(run);
    const std::vector<Pixels> later = frames(run);
    CHECK(later != first); // otherwise there is nothing to forget
    CHECK(EffectHostResetRun(run.get()) == EFFECTHOST_OK);
    CHECK(frames(run) == first);
    return 0;
}

int transitionsTakeTwoPictures()
{
    const Look look = makeLook(EFFECTHOST_LOOK_EFFECT, "fade");
    const Run run = startRun(look, kSize.width, kSize.height);
    const Pixels from = painted(kSize, 1);
    const Pixels to = painted(kSize, 2);
    CHECK(runFrame(run, {from, to}, kSize, 0) == from);
    CHECK(runFrame(run, {from, to}, kSize, 100) == to);
    return 0;
}

int aRunningEngineIsUsed(const char* resources, const char* logs)
{
    CHECK(InitializeEngine(resources, logs) == 0);
    CHECK(EffectHostOpen(resources, logs) == EFFECTHOST_OK);
    CHECK(looksGiveTheBytesOfFilters() == 0);
    EffectHostClose();
    CHECK(hueShifted(painted(kSize, 1), 20) != painted(kSize, 1)); // the engine is still there
    CHECK(UninitializeEngine() == 0);
    return 0;
}

int anEngineOfTheLibraryEndsWithIt(const char* resources)
{
    CHECK(EffectHostOpen(resources, nullptr) == EFFECTHOST_OK);
    CHECK(looksGiveTheBytesOfFilters() == 0 && keyframesMoveUntilAValueIsSet() == 0);
    CHECK(bandsFollowTheirCurves() == 0 && resetRunsBeginAnew() == 0 && transitionsTakeTwoPictures() == 0);
    EffectHostClose();
    CSimpleEffect* filter = nullptr;
    CHECK(GetFilter(kHueShift, 4, 4, &filter) != 0);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    CHECK(argc == 3);
    return anEngineOfTheLibraryEndsWithIt(argv[1]) || aRunningEngineIsUsed(argv[1], argv[2])
        || anEngineOfTheLibraryEndsWithIt(argv[1]);
}
