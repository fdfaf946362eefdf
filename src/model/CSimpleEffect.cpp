// Evaluation of filter nodes.
#include "model/CSimpleEffect.h"

#include "core/Log.h"
#include "model/RowChain.h"

namespace KEXSDK {

namespace {

std::string sizeText(u32 width, u32 height) { return std::to_string(width) + " x " + std::to_string(height); }

} // namespace

/// Marks a node as being evaluated: gives it a target, and in the end takes the target and the inputs'
/// textures away.
class CSimpleEffect::Entered {
public:
    Entered(CSimpleEffect& node, CEffectImage* target) : node_(node) { node_.target_ = target; }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;
    ~Entered()
    {
        node_.target_ = nullptr;
        for (auto& [index, connection] : node_.connections_)
            connection.texture = {};
    }

private:
    CSimpleEffect& node_;
};

CSimpleEffect::CSimpleEffect(u32 width, u32 height) : width_(width), height_(height)
{
    declare(kEnable, kGlobalTime, kTotalTime);
    declareVolatile(kGlobalTime.name);
    declareVolatile(kTotalTime.name);
}

CSimpleEffect::~CSimpleEffect() = default;

void CSimpleEffect::setInputImage(CEffectImage* image, i32 index)
{
    inputs_[index] = image;
    // The host's image may have the address of one that the connection fed; connect() must not remove it.
    if (const auto connection = connections_.find(index); connection != connections_.end())
        connection->second.fed = nullptr;
}

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
    // The texture lease in the answer ends here: hosts may write the memory of a picture whenever no
    // evaluation is under way.
    return evaluateForReader(external).done;
}

CSimpleEffect::Evaluation CSimpleEffect::evaluateForReader(CEffectImage* external)
{
    RowChain rows;
    try {
        Evaluation evaluation = evaluateBeforeRows(external, rows);
        rows.finish();
        return evaluation;
    } catch (...) {
        // What ran before the failure has drawn its picture.
        rows.finish();
        throw;
    }
}

// All of an evaluation but the rows of the last nodes of a chain, which the caller finishes or goes on from.
CSimpleEffect::Evaluation CSimpleEffect::evaluateBeforeRows(CEffectImage* external, RowChain& rows)
{
    // A cycle has led back to this node: the node that asks reads what is being written.
    if (target_)
        return {false, target_, {}};
    if (external && (external->width() != width_ || external->height() != height_))
        return {false, nullptr, {}};
    if (!external && !output_) {
        ownOutput_ = std::make_unique<CEffectImage>(width_, height_, 0, 32, nullptr);
        output_ = ownOutput_.get();
    }
    const Entered entered(*this, external ? external : output_);
    evaluateUpstream(external, rows);
    if (inputs_.empty())
        return {false, external ? nullptr : output_, {}};
    CEffectImage* written = target_;
    if (getParamInt(kEnable.name, 0)) {
        output_ = target_;
        draw(rows);
        written = getOutputImage();
    } else {
        passThrough(rows);
    }
    paramsChanged = 0;
    return {true, written, written ? TextureLease(*written->record()) : TextureLease()};
}

void CSimpleEffect::evaluateUpstream(CEffectImage* external, RowChain& rows)
{
    const bool alone = connections_.size() == 1;
    for (auto& [index, connection] : connections_) {
        // A node of another size cannot draw into the host's picture, and draws into its own.
        const bool alike = connection.upstream->width() == width_ && connection.upstream->height() == height_;
        CEffectImage* const target = alike ? external : nullptr;
        // Beside another upstream node's evaluation no rows may be left.
        Evaluation evaluation = alone ? connection.upstream->evaluateBeforeRows(target, rows)
                                      : connection.upstream->evaluateForReader(target);
        connection.fed = inputs_[index] = evaluation.image;
        connection.texture = std::move(evaluation.texture);
    }
}

void CSimpleEffect::draw(RowChain& rows)
{
    const CEffectImage* const source = getInputImage(0);
    if (auto* const byRows = source ? dynamic_cast<RowWise*>(this) : nullptr) {
        rows.goOnFrom(source->view());
        if (byRows->beginRows()) {
            rows.add(*byRows, source->view(), output_->viewToChange());
            return;
        }
    }
    rows.finish();
    const auto before = output_->record()->sharedBuffer;
    run();
    // No new texture: the CPU wrote the picture, and an older texture shows the one before.
    if (output_->record()->sharedBuffer == before)
        output_->record()->dropTexture();
}

void CSimpleEffect::passThrough(RowChain& rows) const
{
    const CEffectImage* const source = getInputImage(0);
    if (!source || source == target_ || source->extent() != target_->extent())
        return;
    rows.goOnFrom(source->view());
    rows.addCopy(source->view(), target_->viewToChange());
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
