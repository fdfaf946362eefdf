// The filter node: inputs, connections, an output image, and the evaluation of graphs.
#pragma once

#include "facts/nodeParameters.h"
#include "graphics/TextureLease.h"
#include "model/CEffectBaseParam.h"
#include "model/CEffectImage.h"

#include <map>

namespace KEXSDK {

class RowChain;

/// Every effect is such a node. It never owns its inputs or the nodes it is connected to; they must
/// outlive its evaluations. One thread evaluates a graph at a time.
class CSimpleEffect : public CEffectBaseParam {
public:
    /// @param width, height  working size in pixels, 1..pixels::kLargestSide, fixed for the node's life
    CSimpleEffect(u32 width, u32 height);
    ~CSimpleEffect() override;

    /// Called once by the engine after construction. Override it to set up what needs the render thread.
    virtual void init() { }

    /// Inputs that the node expects; hosts show them. Index 0 is the first.
    virtual u32 getInputCount() = 0;

    /// The node's result; null before the first evaluation. Override it only when another node inside
    /// this one holds the result.
    virtual CEffectImage* getOutputImage() { return output_; }

    /// Computes the output from the inputs. Called by evaluate() while the node is enabled: the output
    /// image exists then and has the node's size. Write every pixel or leave the output as it was; allocate
    /// on the first frame only. Afterwards paramsChanged is cleared by the caller.
    virtual void run() = 0;

    /// Stores an image under an input index, replacing an earlier one.
    void setInputImage(CEffectImage* image, i32 index);
    /// Feeds an input from another node's output; null removes the connection and what it fed.
    void connect(CSimpleEffect* upstream, i32 index);
    /// The image under an index, or null.
    CEffectImage* getInputImage(i32 index) const;

    /// Evaluates the connected nodes, depth first in the order of their indices, then this node. With an
    /// external image only images of this evaluation are touched, so one that an earlier evaluation wrote may
    /// be gone.
    /// @param external  becomes the output of this node and of those before it that are enabled and have its
    ///                  size; null for the present outputs
    /// @return false without any input, or for an external image of another size (nothing is written then)
    bool evaluate(CEffectImage* external);

    /// The result of an evaluation.
    struct Evaluation {
        bool done;            ///< as evaluate() answers
        CEffectImage* image;  ///< what the node wrote, and its readers read; null when it has nothing to read
        TextureLease texture; ///< of the image, if the GPU drew it
    };

    /// Evaluates as evaluate() does, for a node inside another node's run: what the GPU drew stays at hand as
    /// a texture while the answer lives.
    Evaluation evaluateForReader(CEffectImage* external);

    u32 width() const { return width_; }
    u32 height() const { return height_; }

protected:
    /// Every input that is set or connected, by index; null where an upstream node has no output.
    const std::map<i32, CEffectImage*>& inputs() const { return inputs_; }

    /// True when the image has the node's size. Otherwise false, with one warning line per node.
    bool fits(const CEffectImage& image);

private:
    struct Connection {
        CSimpleEffect* upstream;
        CEffectImage* fed;      ///< the input that the last evaluation stored; may be gone afterwards
        TextureLease texture{}; ///< of what is fed, until this node has run
    };
    class Entered;

    Evaluation evaluateBeforeRows(CEffectImage* external, RowChain& rows);
    void evaluateUpstream(CEffectImage* external, RowChain& rows);
    void draw(RowChain& rows);
    void passThrough(RowChain& rows) const;

    std::map<i32, CEffectImage*> inputs_;
    std::map<i32, Connection> connections_;
    CEffectImage* output_ = nullptr;
    const u32 width_;
    const u32 height_;
    /// The image that this node made. It stays until the node's end even when an external image has
    /// replaced it, so addresses handed out earlier remain valid.
    std::unique_ptr<CEffectImage> ownOutput_;
    /// What the evaluation under way writes; null while there is none.
    CEffectImage* target_ = nullptr;
    bool warnedOfSize_ = false;
};

} // namespace KEXSDK
