// Looks and runs behind their handles of the host library.
#include "gstreamer/StreamRun.h"

#include <utility>

namespace bridge {

void StreamRun::use(LookSource source)
{
    if (source == source_)
        return;
    source_ = std::move(source);
    run_.reset();
    look_.reset();
}

bool StreamRun::makeLook()
{
    if (look_)
        return true;
    EffectHostLook* look = nullptr;
    if (EffectHostCreateLook(source_.kind, source_.text.c_str(), nullptr, &look) != EFFECTHOST_OK)
        return false;
    look_.reset(look);
    return true;
}

bool StreamRun::dependsOnEarlierFrames(bool& depends)
{
    const EffectHostLookInfo* info = nullptr;
    if (!makeLook() || EffectHostGetLookInfo(look_.get(), &info) != EFFECTHOST_OK)
        return false;
    depends = info->historyFrames != 0;
    return true;
}

bool StreamRun::makeRun(std::int32_t width, std::int32_t height)
{
    if (run_ && width == width_ && height == height_)
        return true;
    run_.reset();
    EffectHostRun* run = nullptr;
    if (!makeLook()
        || EffectHostStartRun(look_.get(), std::uint32_t(width), std::uint32_t(height), &run)
            != EFFECTHOST_OK)
        return false;
    run_.reset(run);
    width_ = width;
    height_ = height;
    runIsNew_ = true;
    fresh_ = false;
    return true;
}

bool StreamRun::run(std::span<const EffectHostPicture> inputs, const EffectHostPicture& output,
    const StreamTime& time, EffectProperties* properties)
{
    if (!makeRun(output.width, output.height))
        return false;
    if (std::exchange(fresh_, false) && EffectHostResetRun(run_.get()) != EFFECTHOST_OK)
        return false;
    if (properties && !properties->apply(run_.get(), runIsNew_))
        return false;
    runIsNew_ = false;
    EffectHostFrame frame{};
    frame.inputs = inputs.data();
    frame.inputCount = inputs.size();
    frame.output = output;
    frame.seconds = time.seconds;
    frame.rate = time.rate;
    frame.duration = time.duration;
    return EffectHostRunFrame(run_.get(), &frame) == EFFECTHOST_OK;
}

} // namespace bridge
