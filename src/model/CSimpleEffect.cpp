// Evaluation of filter nodes.
#include "model/CSimpleEffect.h"

#include "core/Log.h"
#include "pixels/rows.h"

namespace KEXSDK {

namespace {

class Entered {
public:
    explicit Entered(bool& flag) : flag_(flag) { flag_ = true; }
    ~Entered() { flag_ = false; }

private:
    bool& flag_;
};

std::string sizeText(u32 width, u32 height) { return std::to_string(width) + " x " + std::to_string(height); }

} // namespace

CSimpleEffect::CSimpleEffect(u32 width, u32 height) : width_(width), height_(height)
{
    declare(kEnable, kGlobalTime, kTotalTime);
    declareVolatile(kGlobalTime.name);
    declareVolatile(kTotalTime.name);
}

CSimpleEffect::~CSimpleEffect() = default;

void CSimpleEffect::setInputImage(CEffectImage* image, i32 index) { inputs_[index] = image; }

void CSimpleEffect::connect(CSimpleEffect* upstream, i32 index)
{
    if (upstream) {
        connections_[index] = {upstream, nullptr};
        return;
    }
    // The upstream node may be gone already: only remembered addresses are compared.
    const auto connection = connections_.find(index);
    if (connection == connections_.end())
        return;
    const auto input = inputs_.find(index);
    if (input != inputs_.end() && connection->second.fed && input->second == connection->second.fed)
        inputs_.erase(input);
    connections_.erase(connection);
}

CEffectImage* CSimpleEffect::getInputImage(i32 index) const
{
    const auto input = inputs_.find(index);
    return input == inputs_.end() ? nullptr : input->second;
}

bool CSimpleEffect::evaluate(CEffectImage* external)
{
    const bool done = evaluateForReader(external);
    // Hosts may write the memory of a picture whenever no evaluation is under way.
    for (CEffectImage* const image : {external, getOutputImage()})
        if (image && !evaluating_)
            image->forgetTexture();
    return done;
}

bool CSimpleEffect::evaluateForReader(CEffectImage* external)
{
    // Entered again through a cycle: the node that asks uses the current output.
    if (evaluating_)
        return false;
    if (external && (external->width() != width_ || external->height() != height_))
        return false;
    const Entered entered(evaluating_);

    if (!external && !output_) {
        ownOutput_ = std::make_unique<CEffectImage>(width_, height_, 0, 32, nullptr);
        output_ = ownOutput_.get();
    }
    evaluateUpstream(external);
    if (inputs_.empty())
        return false;
    if (getParamInt(kEnable.name, 0)) {
        if (external)
            output_ = external;
        runKeepingTextures();
    } else {
        passThrough(external ? external : output_);
    }
    for (const auto& [index, connection] : connections_)
        if (connection.fed && connection.fed != getOutputImage() && connection.fed != external)
            connection.fed->forgetTexture();
    paramsChanged = 0;
    return true;
}

void CSimpleEffect::evaluateUpstream(CEffectImage* external)
{
    for (auto& [index, connection] : connections_) {
        // A node of another size cannot draw into the host's picture, and draws into its own.
        const bool alike = connection.upstream->width() == width_ && connection.upstream->height() == height_;
        connection.upstream->evaluateForReader(alike ? external : nullptr);
        connection.fed = connection.upstream->getOutputImage();
        inputs_[index] = connection.fed;
    }
}

void CSimpleEffect::runKeepingTextures()
{
    const auto before = output_->record()->sharedBuffer;
    run();
    // What the CPU wrote is in memory only, even over a picture that the GPU had drawn.
    if (output_->record()->sharedBuffer == before)
        output_->forgetTexture();
}

void CSimpleEffect::passThrough(CEffectImage* target) const
{
    const CEffectImage* const source = getInputImage(0);
    if (source && target && source != target && source->extent() == target->extent()) {
        target->forgetTexture();
        pixels::rows::copy(source->view(), target->view());
    }
}

bool CSimpleEffect::fits(const CEffectImage& image)
{
    if (image.width() == width_ && image.height() == height_)
        return true;
    if (!warnedOfSize_) {
        warnedOfSize_ = true;
        logging::warning("KEXSDK::CSimpleEffect::fits",
            "Input of " + sizeText(image.width(), image.height()) + " pixels ignored by a node of "
                + sizeText(width_, height_) + ".");
    }
    return false;
}

} // namespace KEXSDK
