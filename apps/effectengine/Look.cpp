// Calls of the host library.
#include "effectengine/Look.h"

#include <sstream>

namespace tool {

namespace {

EffectHostPicture pictureOf(const host::Image& image)
{
    return {.pixels = image.bytes().data(),
        .stride = std::ptrdiff_t(image.width()) * 4,
        .width = int(image.width()),
        .height = int(image.height()),
        .format = EFFECTHOST_BGRA,
        .flags = EFFECTHOST_BOTTOM_UP};
}

} // namespace

void succeed(EffectHostResult result)
{
    if (result != EFFECTHOST_OK)
        throw LookError(result, EffectHostLastError());
}

Look::Look() : Look(EFFECTHOST_LOOK_EMPTY, nullptr) { }

Look::Look(EffectHostLookSource source, const char* text)
{
    EffectHostLook* look = nullptr;
    succeed(EffectHostCreateLook(source, text, nullptr, &look));
    handle_.reset(look);
}

Look Look::fromFile(const std::filesystem::path& file) { return {EFFECTHOST_LOOK_FILE, file.c_str()}; }

Look Look::fromJson(const std::string& text) { return {EFFECTHOST_LOOK_JSON, text.c_str()}; }

void Look::append(const std::string& effect)
{
    succeed(EffectHostAppendEffect(handle_.get(), effect.c_str()));
}

void Look::assign(const std::string& assignment)
{
    succeed(EffectHostAssign(handle_.get(), assignment.c_str()));
}

const EffectHostLookInfo& Look::info() const
{
    const EffectHostLookInfo* info = nullptr;
    succeed(EffectHostGetLookInfo(handle_.get(), &info));
    return *info;
}

LookRun::LookRun(const Look& look, unsigned width, unsigned height)
    : inputs_(look.info().inputs),
      output_(width, height)
{
    restart(look);
}

void LookRun::restart(const Look& look)
{
    handle_.reset(); // first: the random numbers of new nodes start anew when no others are at work
    EffectHostRun* run = nullptr;
    succeed(EffectHostStartRun(look.handle_.get(), output_.width(), output_.height(), &run));
    handle_.reset(run);
}

void LookRun::setSource(const host::Image& image, unsigned index)
{
    if (index < inputs_.size())
        inputs_[index] = pictureOf(image);
}

void LookRun::setCurve(const std::string& band, std::span<const float> samples, double rate)
{
    succeed(EffectHostSetCurve(handle_.get(), band.c_str(), samples.data(), samples.size(), rate));
}

CEffectImage* LookRun::run(const FrameTime& time, std::vector<std::string>* unchanged)
{
    EffectHostFrame frame{.inputs = inputs_.data(),
        .inputCount = inputs_.size(),
        .output = pictureOf(output_),
        .seconds = time.seconds,
        .rate = time.frameRate,
        .duration = time.total,
        .flags = unchanged ? unsigned(EFFECTHOST_COMPARE) : 0,
        .unchanged = nullptr};
    succeed(EffectHostRunFrame(handle_.get(), &frame));
    if (unchanged && frame.unchanged) {
        std::istringstream lines(frame.unchanged);
        for (std::string id; std::getline(lines, id);)
            unchanged->push_back(id);
    }
    return output_.handle();
}

} // namespace tool
