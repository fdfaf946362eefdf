// Evaluation of one node: values, inputs, the effect's picture, and the mix with the input.
#include "host/RunningNode.h"

#include "host/GraphError.h"
#include "host/effectList.h"
#include "hosting/imageView.h"
#include "hosting/opacity.h"
#include "pixels/rows.h"

#include <algorithm>
#include <filesystem>
#include <utility>

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace host {

namespace {

[[noreturn]] void fail(GraphFault fault, const GraphNode& node, const std::string& what)
{
    throw GraphError(fault, "effect " + node.id + ": " + what);
}

void requireFile(const GraphNode& node, const std::string& user, const std::string& path)
{
    if (!path.empty() && !std::filesystem::exists(path))
        fail(GraphFault::missingFile, node, user + ": no such file: " + path);
}

void storeOrFail(Filter& filter, const GraphNode& node, const ParamInfo& info, const ParameterValue& value)
{
    const auto* const path = std::get_if<std::string>(&value);
    const bool maybeInPack = path && mayBeInPack(info, *path);
    if (path && !maybeInPack)
        requireFile(node, "parameter " + std::string(info.name), *path);
    if (store(filter, info, value))
        return;
    if (maybeInPack && !std::filesystem::exists(*path))
        fail(GraphFault::missingFile, node,
            "parameter " + std::string(info.name) + ": no such file, and none in the pack's "
                + info.packFolder + ": " + *path);
    fail(GraphFault::effectFailed, node,
        "refuses the value of " + std::string(info.name) + (path ? ": " + *path : ""));
}

// What a filter holds under a parameter's name, by one of the functions that read it.
template <class T, class Read>
std::optional<ParameterValue> storedNumbers(const Filter& filter, const ParamInfo& info, Read read)
{
    std::array<T, ParamInfo::kMaxElements> values{};
    int count = int(values.size());
    if (read(filter.handle(), info.name, values.data(), &count) != EFFECTENGINE_OK)
        return std::nullopt;
    return std::vector<double>(values.begin(), values.begin() + std::min(count, int(values.size())));
}

template <class T, class Read>
std::optional<ParameterValue> storedNumber(const Filter& filter, const ParamInfo& info, Read read)
{
    return storedNumbers<T>(filter, info, [&](CSimpleEffect* handle, const char* name, T* value, int* count) {
        *count = 1;
        return read(handle, name, value);
    });
}

std::optional<ParameterValue> storedValue(const Filter& filter, const ParamInfo& info)
{
    switch (info.type) {
    case ParamType::integer:
        return storedNumber<int>(filter, info, KEXSDK::getParamIntValue);
    case ParamType::real:
        return storedNumber<float>(filter, info, KEXSDK::getParamFloatValue);
    case ParamType::integerArray:
        return storedNumbers<int>(filter, info, KEXSDK::getParamIntArrayValue);
    case ParamType::realArray:
        return storedNumbers<float>(filter, info, KEXSDK::getParamFloatArrayValue);
    case ParamType::filePath:
        break;
    }
    return std::nullopt;
}

double secondsOf(const GraphNode& node, const FrameTime& time)
{
    return node.window ? std::clamp(time.seconds - node.window->start, 0.0, node.window->duration)
                       : time.seconds;
}

// Whether a frame that nobody sees may be left out. What needs the GPU runs on: its particle scenes simulate
// what was left out, but only so much of it.
bool mayMissFrames(const EffectInfo& effect)
{
    return effect.history.frames == 0 && !effect.random && !effect.shared && !effect.needsGpu;
}

bool shareMemory(const std::vector<CEffectImage*>& pictures, CEffectImage* target)
{
    return std::ranges::any_of(
        pictures, [&](CEffectImage* one) { return bytesOf(one).data() == bytesOf(target).data(); });
}

auto trackOf(std::vector<ParameterTrack>& tracks, const ParamInfo& info)
{
    return std::ranges::find_if(tracks, [&](const ParameterTrack& t) { return &t.info() == &info; });
}

} // namespace

RunningNode::RunningNode(const GraphNode& node, unsigned width, unsigned height)
    : node_(node),
      width_(width),
      height_(height),
      stored_(node_.parameters.size()),
      filter_(makeFilter())
{
    for (std::size_t i = 0; i < stored_.size(); ++i) {
        if (node_.parameters[i].constant())
            stored_[i] = node_.parameters[i].at({});
    }
    for (const ParamInfo* const info : describeParameters(node_.effect->guid)) {
        if (info->name == node_.effect->writesInput)
            writesInput_ = info;
    }
    if (node_.mask)
        loadMask();
}

Filter RunningNode::makeFilter() const
{
    const auto make = [&]() -> Filter {
        try {
            return {node_.effect->guid, int(width_), int(height_)};
        } catch (const Failure&) {
            fail(GraphFault::effectFailed, node_,
                node_.effect->needsGpu ? "is not available here; it needs the GPU" : "is not available here");
        }
    };
    Filter filter = make();
    for (const ParameterTrack& track : node_.parameters) {
        if (track.constant())
            storeOrFail(filter, node_, track.info(), track.at({}));
    }
    return filter;
}

void RunningNode::loadMask()
{
    mask_.emplace(extent(), node_.mask->invert, node_.mask->feather);
    const std::string& path = node_.mask->picture;
    if (path.empty())
        return;
    requireFile(node_, "mask", path);
    const Image picture = Image::load(path, width_, height_);
    if (!picture)
        fail(GraphFault::unreadable, node_, "mask: cannot read " + path);
    mask_->take(viewOf(picture));
}

void RunningNode::restart()
{
    filter_ = makeFilter();
    for (std::size_t i = 0; i < stored_.size(); ++i) {
        if (!node_.parameters[i].constant())
            stored_[i] = {};
    }
    drew_ = false;
    connected_ = false;
}

void RunningNode::setParameter(const ParamInfo& info, const ParameterValue& value)
{
    try {
        ParameterTrack track(info, value);
        storeOrFail(filter_, node_, info, value);
        const auto found = trackOf(node_.parameters, info);
        const std::size_t index = std::size_t(found - node_.parameters.begin());
        if (found == node_.parameters.end()) {
            node_.parameters.push_back(std::move(track));
            stored_.push_back(value);
        } else {
            *found = std::move(track);
            stored_[index] = value;
        }
    } catch (const GraphError& error) {
        if (error.fault() != GraphFault::content)
            throw;
        fail(error.fault(), node_, error.what());
    }
}

std::optional<ParameterValue> RunningNode::parameter(const ParamInfo& info, const FrameTime& time) const
{
    const auto& tracks = node_.parameters;
    const auto track =
        std::ranges::find_if(tracks, [&](const ParameterTrack& t) { return &t.info() == &info; });
    return track == tracks.end() ? storedValue(filter_, info) : track->at(time);
}

void RunningNode::setMix(double mix)
{
    try {
        node_.mix = ParameterTrack(kMix, std::vector<double>{mix});
    } catch (const GraphError& error) {
        fail(error.fault(), node_, error.what());
    }
}

float RunningNode::mix(const FrameTime& time) const
{
    if (!node_.mix)
        return 1;
    return float(std::clamp(std::get<std::vector<double>>(node_.mix->at(time)).front(), 0.0, 1.0));
}

// Sets the effect's clock, except for times that the description sets itself.
void RunningNode::setTimes(const FrameTime& time)
{
    const auto set = [&](const char* name, double value) {
        const auto named = [&](const ParameterTrack& t) { return std::string_view(t.info().name) == name; };
        if (std::ranges::none_of(node_.parameters, named))
            filter_.set(name, float(value));
    };
    set(kEffectFrameRate, time.frameRate);
    set(kEffectTotalTime, node_.window ? node_.window->duration : time.total);
    set(kEffectCurrentTime, secondsOf(node_, time));
}

void RunningNode::storeParameters(const FrameTime& time)
{
    for (std::size_t i = 0; i < stored_.size(); ++i) {
        const ParameterTrack& track = node_.parameters[i];
        if (track.constant())
            continue;
        ParameterValue value = track.at(time);
        if (value == stored_[i])
            continue;
        storeOrFail(filter_, node_, track.info(), value);
        stored_[i] = std::move(value);
    }
}

// Whether the effect, with the values that it holds, writes to the pictures that it is given.
bool RunningNode::writesInputs() const
{
    const auto value = writesInput_ ? storedValue(filter_, *writesInput_) : std::nullopt;
    return value && std::get<std::vector<double>>(*value).front() != 0;
}

void RunningNode::setInputs(const NodePictures& pictures)
{
    const bool copies = writesInputs();
    upstream_ = pictures.upstream;
    inputs_.clear();
    if (upstream_)
        ConnectFilter(upstream_->filter_.handle(), filter_.handle(), 0);
    else if (connected_)
        ConnectFilter(nullptr, filter_.handle(), 0);
    connected_ = upstream_ != nullptr;
    for (unsigned i = upstream_ ? 1 : 0; i < pictures.inputs.size(); ++i) {
        CEffectImage* input = pictures.inputs[i];
        inputs_.push_back(input);
        if (copies) {
            if (i == inputCopies_.size())
                inputCopies_.emplace_back(width_, height_);
            pixels::rows::copy(viewOf(input), viewOf(inputCopies_[i]));
            input = inputCopies_[i].handle();
        }
        SetInputImage(filter_.handle(), input, i);
    }
}

// Whether the picture is an input of this node or of one that is evaluated with it.
bool RunningNode::reads(CEffectImage* target) const
{
    return shareMemory(inputs_, target) || (upstream_ && upstream_->reads(target));
}

// Leads a new effect to its time in steps. A particle scene simulates what passed before its first frame, but
// only so many frames in one go.
void RunningNode::approach(const FrameTime& time)
{
    constexpr double kFrames = 2500; // well below what a scene simulates for one frame
    constexpr double kFarthest =
        5e6; // a day at 60 frames a second: what was before that does not show any more
    const double wanted = secondsOf(node_, time) * time.frameRate;
    for (double frame = std::max(kFrames, wanted - kFarthest); frame < wanted; frame += kFrames) {
        FrameTime before = time;
        before.seconds = time.seconds - (wanted - frame) / time.frameRate;
        setTimes(before);
        draw(before, nullptr);
    }
    setTimes(time);
}

CEffectImage* RunningNode::imageOfItsOwn(std::optional<Image>& image) const
{
    if (!image)
        image.emplace(width_, height_);
    return image->handle();
}

// The effect's picture, in the target if the effect takes any image and otherwise in the one that it keeps.
CEffectImage* RunningNode::draw(const FrameTime& time, CEffectImage* target)
{
    if (!std::exchange(drew_, true) && node_.effect->needsGpu)
        approach(time);
    try {
        if (node_.effect->keepsOutput)
            return filter_.run();
        // Never with DoFilter, which would go on writing to the target of an earlier frame.
        CEffectImage* const image = target ? target : imageOfItsOwn(drawn_);
        filter_.runInto(image);
        return image;
    } catch (const Failure& failure) {
        fail(GraphFault::effectFailed, node_, failure.what());
    }
}

void RunningNode::drawAlone(const FrameTime& time, const NodePictures& pictures, CEffectImage* target)
{
    const bool opaque = node_.effect->alpha == KEXSDK::Alpha::loose && areOpaque(pictures.inputs);
    output_ = draw(time, target && !reads(target) ? target : nullptr);
    if (opaque)
        makeOpaque(output_);
    if (target && target != output_) {
        pixels::rows::copy(viewOf(output_), viewToChange(target));
        output_ = target;
    }
}

void RunningNode::drawMixed(const FrameTime& time, const NodePictures& pictures, float share)
{
    if (pictures.mask)
        mask_->take(viewOf(pictures.mask));
    CEffectImage* const to = pictures.target ? pictures.target : imageOfItsOwn(mixed_);
    const pixels::ConstView input = viewOf(pictures.inputs.front());
    if (share == 0 && mayMissFrames(*node_.effect)) {
        pixels::rows::copy(input, viewToChange(to));
    } else {
        drawAlone(time, pictures, nullptr);
        if (!mask_) {
            mixPictures(input, viewOf(output_), share, viewToChange(to));
        } else {
            if (!shares_ || shares_->mix() != share)
                shares_.emplace(share);
            mixPictures(input, viewOf(output_), *shares_, *mask_, viewToChange(to));
        }
    }
    output_ = to;
}

void RunningNode::run(const FrameTime& time, const NodePictures& pictures)
{
    setTimes(time);
    storeParameters(time);
    setInputs(pictures);
    if (const float share = mix(time); mask_ || share != 1)
        drawMixed(time, pictures, share);
    else
        drawAlone(time, pictures, pictures.target);
}

bool RunningNode::chains(const FrameTime& time) const
{
    const EffectInfo& effect = *node_.effect;
    return effect.byRows && effect.alpha != KEXSDK::Alpha::loose && effect.writesInput.empty() && !mask_
        && mix(time) == 1;
}

void RunningNode::hold(const FrameTime& time, const NodePictures& pictures)
{
    setTimes(time);
    storeParameters(time);
    setInputs(pictures);
}

} // namespace host
