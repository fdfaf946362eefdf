// Exported functions that run looks on the caller's pictures.
#include "host/EffectGraph.h"
#include "host/GraphError.h"
#include "host/PictureLayout.h"
#include "host/library.h"
#include "host/lookExports.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

struct EffectHostRun {
    EffectHostRun(const host::GraphDescription& description, unsigned runWidth, unsigned runHeight)
        : graph(description, runWidth, runHeight),
          output(description.output),
          bands(description.bands()),
          width(runWidth),
          height(runHeight),
          own(graph.sources()),
          given(graph.sources())
    {
    }

    std::string nodeOr(const char* node) const { return node ? node : output; }

    host::EffectGraph graph;
    std::string output;                 ///< id of the output's node
    std::vector<host::SoundBand> bands; ///< that parameters follow
    unsigned width;
    unsigned height;
    std::vector<std::optional<host::Image>> own;   ///< converted inputs; empty until one is needed
    std::vector<std::optional<host::Image>> given; ///< the caller's memory during a frame
    host::FrameTime last;
    std::string text;      ///< what EffectHostGetText answered
    std::string unchanged; ///< of the last frame
};

namespace {

using host::require;

bool isMix(std::string_view parameter) { return parameter == host::kMix.name; }

void check(const EffectHostRun& run, const EffectHostPicture& picture)
{
    if (const auto fault = host::faultOf(picture))
        throw host::LibraryFault{EFFECTHOST_BAD_ARGUMENT, *fault};
    if (unsigned(picture.width) != run.width || unsigned(picture.height) != run.height)
        throw host::LibraryFault{EFFECTHOST_BAD_ARGUMENT,
            "a picture of " + std::to_string(picture.width) + " x " + std::to_string(picture.height)
                + " for a run of " + std::to_string(run.width) + " x " + std::to_string(run.height)};
}

void setInput(EffectHostRun& run, unsigned index, const EffectHostPicture& picture)
{
    if (void* const pixels = host::nativePixels(picture)) {
        run.graph.setSource(run.given[index].emplace(pixels, run.width, run.height), index);
        return;
    }
    if (!run.own[index])
        run.own[index].emplace(run.width, run.height);
    host::toNative(picture, run.own[index]->bytes().data());
    run.graph.setSource(*run.own[index], index);
}

void runFrame(EffectHostRun& run, EffectHostFrame& frame)
{
    require(frame.inputs || frame.inputCount == 0, "a frame has no inputs");
    require((frame.flags & ~unsigned(EFFECTHOST_COMPARE)) == 0, "a frame has unknown flags");
    if (frame.inputCount != run.graph.sources())
        throw host::LibraryFault{EFFECTHOST_BAD_ARGUMENT,
            "a frame has " + std::to_string(frame.inputCount) + " pictures; the look needs "
                + std::to_string(run.graph.sources())};
    require(std::isfinite(frame.seconds) && std::isfinite(frame.rate) && std::isfinite(frame.duration)
            && frame.rate > 0,
        "a frame's times are no numbers, or its rate is not above 0");
    check(run, frame.output);
    for (size_t i = 0; i < frame.inputCount; ++i)
        check(run, frame.inputs[i]);
    for (size_t i = 0; i < frame.inputCount; ++i)
        setInput(run, unsigned(i), frame.inputs[i]);
    run.last = {.seconds = frame.seconds, .frameRate = frame.rate, .total = frame.duration};
    void* const pixels = host::nativePixels(frame.output);
    if (pixels && !(frame.flags & EFFECTHOST_COMPARE)) {
        const host::Image target(pixels, run.width, run.height);
        run.graph.runInto(target.handle(), run.last);
        return;
    }
    std::vector<std::string> unchanged;
    const bool compare = (frame.flags & EFFECTHOST_COMPARE) != 0;
    const auto picture = host::bytesOf(run.graph.run(run.last, compare ? &unchanged : nullptr));
    host::fromNative(picture.data(), frame.output);
    if (!compare)
        return;
    run.unchanged.clear();
    for (const std::string& id : unchanged)
        run.unchanged += (run.unchanged.empty() ? "" : "\n") + id;
    frame.unchanged = run.unchanged.c_str();
}

std::vector<double> numbersOf(const EffectHostRun& run, const char* node, const char* parameter)
{
    if (isMix(parameter))
        return {run.graph.mix(run.nodeOr(node), run.last)};
    const auto value = run.graph.parameter(run.nodeOr(node), parameter, run.last);
    const auto* const numbers = value ? std::get_if<std::vector<double>>(&*value) : nullptr;
    if (!numbers)
        throw host::GraphError(host::GraphFault::content,
            std::string("parameter ") + parameter + (value ? " holds a file" : " is not set"));
    return *numbers;
}

} // namespace

EffectHostResult EffectHostStartRun(
    EffectHostLook* look, uint32_t width, uint32_t height, EffectHostRun** run)
{
    return host::guarded([&] {
        require(look && run, "EffectHostStartRun got a null pointer");
        const auto inRange = [](uint32_t side) { return side >= 1 && side <= EFFECTENGINE_LARGEST_SIDE; };
        require(inRange(width) && inRange(height), "a run's size is out of range");
        const std::lock_guard lock(look->mutex);
        const host::GraphDescription& description = look->finished();
        host::startEngine();
        *run = std::make_unique<EffectHostRun>(description, width, height).release();
    });
}

void EffectHostReleaseRun(EffectHostRun* run)
{
    host::guarded([&] { delete run; });
}

EffectHostResult EffectHostSetNumbers(
    EffectHostRun* run, const char* node, const char* parameter, const double* values, size_t count)
{
    return host::guarded([&] {
        require(
            run && parameter && values && count > 0, "EffectHostSetNumbers got a null pointer or no values");
        if (isMix(parameter)) {
            require(count == 1 && std::isfinite(values[0]), "mix takes one number");
            run->graph.setMix(run->nodeOr(node), values[0]);
            return;
        }
        run->graph.setParameter(run->nodeOr(node), parameter, std::vector<double>(values, values + count));
    });
}

EffectHostResult EffectHostSetText(
    EffectHostRun* run, const char* node, const char* parameter, const char* value)
{
    return host::guarded([&] {
        require(run && parameter && value, "EffectHostSetText got a null pointer");
        const std::string id = run->nodeOr(node);
        if (isMix(parameter))
            run->graph.setMix(id, std::get<std::vector<double>>(host::parseValue(host::kMix, value)).front());
        else
            run->graph.setParameter(id, parameter,
                host::parseValue(host::parameterNamed(run->graph.effectOf(id), parameter), value));
    });
}

EffectHostResult EffectHostGetNumbers(
    EffectHostRun* run, const char* node, const char* parameter, double* values, size_t* count)
{
    return host::guarded([&] {
        require(
            run && parameter && count && (values || *count == 0), "EffectHostGetNumbers got a null pointer");
        const std::vector<double> numbers = numbersOf(*run, node, parameter);
        std::copy_n(numbers.begin(), std::min(numbers.size(), *count), values);
        *count = numbers.size();
    });
}

EffectHostResult EffectHostGetText(
    EffectHostRun* run, const char* node, const char* parameter, const char** value)
{
    return host::guarded([&] {
        require(run && parameter && value, "EffectHostGetText got a null pointer");
        if (isMix(parameter)) {
            run->text = host::valueText(std::vector<double>{run->graph.mix(run->nodeOr(node), run->last)});
        } else {
            const auto held = run->graph.parameter(run->nodeOr(node), parameter, run->last);
            run->text = held ? host::valueText(*held) : "";
        }
        *value = run->text.c_str();
    });
}

EffectHostResult EffectHostSetCurve(
    EffectHostRun* run, const char* band, const float* samples, size_t count, double rate)
{
    return host::guarded([&] {
        require(run && band && (samples || count == 0), "EffectHostSetCurve got a null pointer");
        require(std::isfinite(rate) && rate > 0, "a curve's rate is not above 0");
        const auto known = std::ranges::find(run->bands, std::string_view(band), host::bandText);
        if (known == run->bands.end())
            throw host::GraphError(
                host::GraphFault::content, std::string("nothing follows the band ") + band);
        run->graph.setCurve(*known, {samples, count}, rate);
    });
}

EffectHostResult EffectHostRunFrame(EffectHostRun* run, EffectHostFrame* frame)
{
    return host::guarded([&] {
        require(run && frame, "EffectHostRunFrame got a null pointer");
        runFrame(*run, *frame);
    });
}

EffectHostResult EffectHostResetRun(EffectHostRun* run)
{
    return host::guarded([&] {
        require(run, "EffectHostResetRun got a null pointer");
        run->graph.reset();
    });
}
