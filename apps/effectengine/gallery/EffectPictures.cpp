// Recording of effects: stills, loops and sweeps, each from a fresh node.
#include "effectengine/gallery/EffectPictures.h"

#include "effectengine/Look.h"
#include "effectengine/effectList.h"
#include "effectengine/interruption.h"
#include "hosting/exampleValues.h"
#include "hosting/opacity.h"

#include <algorithm>
#include <array>

namespace tool {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;

namespace {

// Duration of transitions: the nodes' own default, since some transitions run at a speed of their own.
constexpr float kTransitionSeconds = 5;
constexpr unsigned kWarmUp = 24; ///< frames after which an effect with a history shows its usual look
// The frame that stands for a transition: before the middle, where many transitions show one flat colour.
constexpr unsigned kTransitionPoster = 10;
// The frame at which a sweep shows effects with a history: late enough to see it, and soon reached.
constexpr unsigned kSweepFrames = 12;
// Frames that tell whether an effect moves: the first, and others that are no multiples of one period.
constexpr std::array<unsigned, 4> kProbes{0, 17, 40, 53};

bool remembers(const EffectInfo& effect) { return effect.history.frames != 0; }
bool isTransition(const EffectInfo& effect) { return effect.inputs > 1; }

} // namespace

std::string stillFile(const EffectInfo& effect) { return effect.name + ".jpg"; }
std::string thumbnailFile(const EffectInfo& effect) { return effect.name + ".small.jpg"; }
std::string loopFile(const EffectInfo& effect) { return effect.name + ".loop.jpg"; }
std::string sweepFile(const EffectInfo& effect, std::size_t parameter)
{
    return effect.name + ".sweep-" + std::to_string(parameter) + ".jpg";
}

// One run of a fresh node, from frame to frame. With the gallery's seed its random numbers start anew, so an
// effect's pictures do not depend on the effects before it.
class EffectPictures::Run {
public:
    Run(const EffectInfo& effect, const GalleryLayout& layout, GalleryScene& scene)
        : effect_(effect),
          size_(layout.work()),
          scene_(scene),
          filter_(effect.guid, int(size_.width), int(size_.height)),
          target_(size_.width, size_.height)
    {
        // Some transitions write colours only, and leave the alpha of their output as it was.
        host::makeOpaque(target_.handle());
        host::setExampleValues(filter_, describeParameters(effect), size_.width, size_.height);
        for (unsigned i = 0; i < effect.inputs; ++i)
            filter_.setInput(scene.input(i), i);
    }

    host::Filter& filter() { return filter_; }

    /// @return the output's pixels, until the next frame
    pixels::ConstView frame(unsigned number, bool drifting)
    {
        stopIfAsked();
        scene_.show(drifting ? std::optional(number) : std::nullopt);
        const bool transition = isTransition(effect_);
        const float total = transition ? kTransitionSeconds : float(kDuration);
        const float step = transition ? kTransitionSeconds / (kLoopFrames - 1) : 1.0f / kLoopRate;
        filter_.set(kEffectFrameRate, 1 / step);
        filter_.set(kEffectTotalTime, total);
        filter_.set(kEffectCurrentTime, float(number) * step);
        const bool opaque = effect_.alpha == KEXSDK::Alpha::loose && scene_.isOpaque(effect_.inputs);
        if (DoFilterEx(filter_.handle(), target_.handle()) != EFFECTENGINE_OK)
            throw host::Failure("could not be run");
        if (opaque)
            host::makeOpaque(target_.handle());
        return {target_.bytes().data(), {int(size_.width), int(size_.height)}};
    }

private:
    const EffectInfo& effect_;
    PictureSize size_;
    GalleryScene& scene_;
    host::Filter filter_;
    host::Image target_;
};

EffectPictures::EffectPictures(
    const GalleryLayout& layout, GalleryScene& scene, std::filesystem::path directory, bool sweeps)
    : layout_(layout),
      scene_(scene),
      directory_(std::move(directory)),
      sweeps_(sweeps)
{
}

void EffectPictures::saveInputs()
{
    scene_.show(std::nullopt);
    for (const unsigned index : {0u, 1u}) {
        Strip picture(layout_.work(), 1, 1);
        picture.add(
            {scene_.input(index).bytes().data(), {int(layout_.work().width), int(layout_.work().height)}});
        picture.save(directory_ / (index == 0 ? kOriginalFile : kSecondFile));
    }
}

void EffectPictures::make(const EffectInfo& effect)
{
    Course course = courseOf(effect);
    Recording recording = record(effect, course);
    // An effect that only mixes a picture with earlier ones has nothing to show on one that stands still.
    if (remembers(effect) && !isTransition(effect) && !recording.loop.changes()) {
        course.drifting = true;
        recording = record(effect, course);
    }
    recording.still.save(directory_ / stillFile(effect));
    recording.thumbnail.save(directory_ / thumbnailFile(effect));
    if (recording.loop.changes())
        recording.loop.save(directory_ / loopFile(effect));
    if (sweeps_)
        makeSweeps(effect, course);
}

EffectPictures::Course EffectPictures::courseOf(const EffectInfo& effect)
{
    if (isTransition(effect))
        return {0, kLoopFrames, kTransitionPoster};
    if (remembers(effect))
        return {kWarmUp, kLoopFrames, kWarmUp + kLoopFrames - 1};
    constexpr unsigned middle = kMoment * kLoopRate;
    return moves(effect) ? Course{middle - kLoopFrames / 2, kLoopFrames, middle} : Course{middle, 1, middle};
}

// Whether the effect's frames differ from each other: no effect declares whether it depends on the time.
bool EffectPictures::moves(const EffectInfo& effect)
{
    Run run(effect, layout_, scene_);
    Strip probes(layout_.cell, layout_.scale, kProbes.size());
    for (const unsigned number : kProbes)
        probes.add(run.frame(number, false));
    return probes.changes();
}

EffectPictures::Recording EffectPictures::record(const EffectInfo& effect, const Course& course)
{
    Recording recording{Strip(layout_.work(), 1, 1), Strip(layout_.cell, layout_.scale, 1),
        Strip(layout_.cell, layout_.scale, course.count)};
    Run run(effect, layout_, scene_);
    // An effect without a history needs no frames before the first one.
    for (unsigned i = remembers(effect) ? 0 : course.first; i < course.first + course.count; ++i) {
        const auto picture = run.frame(i, course.drifting);
        if (i >= course.first)
            recording.loop.add(picture);
        if (i == course.poster) {
            recording.still.add(picture);
            recording.thumbnail.add(picture);
        }
    }
    return recording;
}

void EffectPictures::makeSweeps(const EffectInfo& effect, Course course)
{
    if (remembers(effect) && !isTransition(effect)) {
        course.poster = kSweepFrames;
        course.stride = 2;
    }
    const auto params = describeParameters(effect);
    for (std::size_t i = 0; i < params.size(); ++i)
        makeSweep(effect, course, *params[i], (directory_ / sweepFile(effect, i)).string());
}

void EffectPictures::makeSweep(
    const EffectInfo& effect, const Course& course, const ParamInfo& param, const std::string& file)
{
    const auto steps = sweepOf(param, layout_.work());
    Strip strip(layout_.cell, layout_.scale, unsigned(steps.size()));
    for (const SweepStep& step : steps) {
        Run run(effect, layout_, scene_);
        if (!host::store(run.filter(), param, step.value))
            return;
        for (unsigned i = 0; remembers(effect) && i < course.poster; ++i)
            run.frame(i * course.stride, course.drifting);
        strip.add(run.frame(course.poster * course.stride, course.drifting));
    }
    if (strip.changes())
        strip.save(file);
}

} // namespace tool
