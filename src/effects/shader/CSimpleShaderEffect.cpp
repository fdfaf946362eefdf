// Makes a GPU effect from a descriptor file and draws the node's frames with it.
#include "effects/shader/CSimpleShaderEffect.h"

#include "core/Log.h"
#include "effects/gpu/uniforms.h"
#include "graphics/GraphicsService.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace KEXSDK {

namespace {

constexpr const char* kInitTag = "CSimpleShaderEffect::init";
constexpr const char* kRunTag = "CSimpleShaderEffect::run";

/// No scene is stepped through more frames than these, whatever time a host names.
constexpr int kLastFrame = 1'000'000;

// Frames per second that a scene can be stepped with: emitters count what one step emits in 16 bits.
constexpr float kSlowest = 0.1f;
constexpr float kFastest = 1000;

/// The number limited to what a scene can be built from, and 0 for NaN: OGRE ends the process over a bounding
/// box with NaN in it.
float bounded(float number)
{
    constexpr float kFarthest = 1e5f;
    return std::isnan(number) ? 0 : std::clamp(number, -kFarthest, kFarthest);
}

/// Offsets in texture coordinates to the 3 x 3 pixels around a pixel and including it, row by row.
std::array<float, 18> neighbourOffsets(u32 width, u32 height)
{
    std::array<float, 18> offsets{};
    auto next = offsets.begin();
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x) {
            *next++ = float(x) / float(width);
            *next++ = float(y) / float(height);
        }
    return offsets;
}

} // namespace

CSimpleShaderEffect::CSimpleShaderEffect(u32 width, u32 height, std::string descriptorPath)
    : CSimpleEffect(width, height),
      descriptorPath_(std::move(descriptorPath))
{
    declare(shader::kRotate, shader::kScale, shader::kTranslate);
    const float resolution[] = {float(width), float(height)};
    setParamFloatArrayValue("u_resolution", resolution, 2);
    declareVolatile("u_resolution");
    const auto offsets = neighbourOffsets(width, height);
    setParamFloatArrayValue("u_offset", offsets.data(), int(offsets.size()));
    declareVolatile("u_offset");
}

void CSimpleShaderEffect::init()
{
    graphics().start();
    const shader::DescriptorFile file = shader::readDescriptor(descriptorPath_);
    if (!file.descriptor) {
        logging::error(kInitTag,
            (file.status == shader::DescriptorStatus::missing ? "Can't find shader file ["
                                                              : "Read json error [")
                + descriptorPath_ + "]");
        return;
    }
    descriptor_ = file.descriptor;
    inputCount_ = descriptor_->inputs;
    if (descriptor_->passFault.empty()) // else nothing could be drawn
        gpu_ = GpuEffect::create();
    if (gpu_) {
        takePrograms();
        if (!descriptor_->particleTemplate.empty()) {
            gpu_->particleTemplate = descriptor_->particleTemplate;
            logging::debug(kInitTag,
                [&] { return "Load ParticalUniverse template [" + descriptor_->particleTemplate + "]"; });
        }
        gpu_->setSize(width(), height());
        bindTextures();
    }
    if (!descriptor_->particleTemplate.empty())
        declare(shader::kFrameRate);
    for (const ParamInfo& param : descriptor_->params)
        describe(param);
}

void CSimpleShaderEffect::takePrograms()
{
    const auto report = [](const std::string& file) {
        if (!file.empty())
            logging::debug(kInitTag, [&] { return "Load shader file [" + file + "]"; });
    };
    gpu_->passes = descriptor_->passes;
    for (const shader::DescriptorPass& pass : descriptor_->passes)
        report(pass.shader);
    if (!descriptor_->passes.empty() || descriptor_->shader.empty())
        return;
    gpu_->setShaderSource(descriptor_->shader.c_str(), true, false);
    report(descriptor_->shader);
}

void CSimpleShaderEffect::bindTextures()
{
    for (const shader::DescriptorTexture& texture : descriptor_->textures) {
        logging::debug(kInitTag, [&] { return "add texture file [" + texture.file + "]"; });
        gpu_->loadPicture(texture.file.c_str(), i32(texture.index));
        nameSampler(*this, i32(texture.index));
    }
}

void CSimpleShaderEffect::run()
{
    graphics().start();
    if (gpu_) {
        boundInputs_.bind(*gpu_.get(), *this, inputs());
        placePicture();
        setTime();
        setUniforms(*gpu_.get(), *this, kRunTag);
        logging::write(logging::Severity::verbose, kRunTag, "DoFilter_Begin");
        const bool drawn = gpu_.draw(*getOutputImage());
        logging::write(logging::Severity::verbose, kRunTag, "DoFilter_End");
        if (drawn) {
            if (getOutputImage()->flipsOnUnlock())
                getOutputImage()->reverseRows();
            return;
        }
    }
    if (descriptor_)
        reportProblem();
    copyFirstInput();
}

void CSimpleShaderEffect::placePicture()
{
    PictureTransform& picture = gpu_->transform;
    picture = {};
    if (float degrees; getParamFloatValue(shader::kRotate.name, &degrees, 0)) {
        picture.axis[1] = 0;
        picture.axis[2] = 1;
        picture.angle = bounded(degrees);
    }
    if (const auto scale = get(shader::kScale); scale.size() >= 2)
        std::ranges::transform(scale.first(2), picture.scale, bounded);
    if (const auto translation = get(shader::kTranslate); translation.size() >= 2)
        std::ranges::transform(translation.first(2), picture.translation, bounded);
}

void CSimpleShaderEffect::setTime()
{
    // Whoever goes back wants to see what was there before, and no traces of what comes later.
    const float seconds = getParamFloat(kGlobalTime.name, 0);
    if (!(seconds >= latestSeconds_))
        gpu_->forgetFrames();
    latestSeconds_ = seconds;
    // A scene without particles stands still, and need not be stepped through the frames between.
    if (descriptor_->particleTemplate.empty())
        return;
    float rate = get(shader::kFrameRate);
    rate = rate > 0 ? std::clamp(rate, kSlowest, kFastest) : shader::kFrameRate.fallback;
    const double time = seconds + descriptor_->lead;
    gpu_->setFrameRate(rate);
    gpu_->setFrameIndex(u32(std::clamp(pixels::roundHalfUp(time * rate), 0, kLastFrame)));
}

void CSimpleShaderEffect::copyFirstInput()
{
    const CEffectImage* const source = getInputImage(0);
    CEffectImage& target = *getOutputImage();
    if (!source || source == &target)
        return;
    const pixels::Extent from = source->extent();
    const pixels::Extent to = target.extent();
    if (from == to)
        pixels::rows::copy(source->view(), target.view());
    else
        pixels::sample(source->view(), target.view(), [=](int x, int y) {
            return pixels::Point{x * from.width / to.width, y * from.height / to.height};
        });
}

void CSimpleShaderEffect::reportProblem()
{
    if (std::exchange(reported_, true))
        return;
    std::string reason = descriptor_->passFault;
    if (gpu_)
        reason = gpu_->problem();
    if (reason.empty())
        reason = "nothing was drawn; the rendering library's log may tell more";
    const bool hasPasses = !descriptor_->passes.empty() || !descriptor_->passFault.empty();
    logging::error(kRunTag,
        "Shader effect [" + descriptorPath_ + "]"
            + (hasPasses ? "" : " with shader [" + descriptor_->shader + "]")
            + " passes its input through: " + reason);
}

bool CPaticalUniverseEffect::setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value)
{
    // Effects that can draw particles hold the attributes in a parameter store of their own.
    auto* const particles = dynamic_cast<CEffectBaseParam*>(gpuEffect());
    const std::string_view text = name;
    if (text.starts_with('.') || text.starts_with(':'))
        return particles && particles->setParamVariant(name, value);

    const bool isTime =
        text == kGlobalTime.name || text == kTotalTime.name || text == shader::kFrameRate.name;
    if (!isTime || !particles || !value)
        return CSimpleShaderEffect::setParamVariant(name, value);
    const float number = value->holds(ParamType::integer) ? float(value->value.integer) : value->value.real;
    const bool isNumber = value->holds(ParamType::integer) || value->holds(ParamType::real);
    const bool stored = CSimpleShaderEffect::setParamVariant(name, value);
    return isNumber ? particles->setParamFloatValue(name, number) : stored;
}

} // namespace KEXSDK
