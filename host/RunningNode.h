// One node of a graph that runs.
#pragma once

#include "host/GraphDescription.h"
#include "host/MaskPlane.h"
#include "host/mixing.h"
#include "hosting/Host.h"

#include <optional>
#include <span>
#include <vector>

namespace host {

class RunningNode;

/// What a node reads and writes in one frame; all pictures have the graph's size.
struct NodePictures {
    std::vector<CEffectImage*> inputs;
    /// A node that was held and is evaluated with this one; feeds the first input, which is null then.
    const RunningNode* upstream = nullptr;
    CEffectImage* mask = nullptr;   ///< of a mask that is another node's picture
    CEffectImage* target = nullptr; ///< receives the result in place of an image of the node, unless null
};

/// An effect, its parameters over time, and what mixes its picture with its input. Pictures that it is given
/// are read only; the target may be one of them. The functions throw GraphError.
class RunningNode {
public:
    /// Makes the effect, stores what stays, and loads the mask's file.
    RunningNode(const GraphNode& node, unsigned width, unsigned height);

    const GraphNode& node() const { return node_; }
    /// The picture of the last run: the target, or an image of the node; null before.
    CEffectImage* output() const { return output_; }

    /// Sets times and parameters and evaluates the effect once.
    void run(const FrameTime& time, const NodePictures& pictures);

    /// Whether the frame's picture is the effect's own, and the effect could be evaluated with the one before
    /// it or after it in one image: it works row by row.
    bool chains(const FrameTime& time) const;
    /// Sets times, parameters and inputs, and leaves the evaluation to the node that this one is upstream of;
    /// the target is not looked at. Both nodes must chain. Afterwards output() is what it was.
    void hold(const FrameTime& time, const NodePictures& pictures);

    /// Makes the effect anew, without what it remembers. Values that were set stay.
    void restart();

    /// Makes a parameter of the effect a constant.
    void setParameter(const KEXSDK::ParamInfo& info, const ParameterValue& value);
    /// What the effect has or will have at that time; no value when nobody has stored one, or for a file that
    /// no description names.
    std::optional<ParameterValue> parameter(const KEXSDK::ParamInfo& info, const FrameTime& time) const;

    /// See GraphNode.
    void setCurve(const SoundBand& band, std::span<const float> samples, double rate)
    {
        node_.setCurve(band, samples, rate);
    }

    void setMix(double mix);
    /// 0..1.
    float mix(const FrameTime& time) const;

private:
    Filter makeFilter() const;
    void loadMask();
    void setTimes(const FrameTime& time);
    void approach(const FrameTime& time);
    void storeParameters(const FrameTime& time);
    bool writesInputs() const;
    void setInputs(const NodePictures& pictures);
    bool reads(CEffectImage* target) const;
    CEffectImage* draw(const FrameTime& time, CEffectImage* target);
    void drawAlone(const FrameTime& time, const NodePictures& pictures, CEffectImage* target);
    void drawMixed(const FrameTime& time, const NodePictures& pictures, float share);
    CEffectImage* imageOfItsOwn(std::optional<Image>& image) const;
    pixels::Extent extent() const { return {int(width_), int(height_)}; }

    GraphNode node_;
    unsigned width_;
    unsigned height_;
    std::vector<ParameterValue> stored_; ///< of node_.parameters, as the effect was given them
    bool drew_ = false;                  ///< since the effect was made
    CEffectImage* output_ = nullptr;
    std::vector<CEffectImage*> inputs_;     ///< of this frame, without what upstream_ feeds
    const RunningNode* upstream_ = nullptr; ///< of this frame
    bool connected_ = false;                ///< the filter to another node's filter, which may be gone
    const KEXSDK::ParamInfo* writesInput_ = nullptr; ///< the parameter of EffectInfo::writesInput
    std::vector<Image> inputCopies_;                 ///< for frames in which the effect writes to its inputs
    std::optional<Image> drawn_;                     ///< what the effect draws into, if it takes any image
    std::optional<Image> mixed_;
    std::optional<MaskPlane> mask_;
    std::optional<MixShares> shares_;
    Filter filter_; ///< ends before the images that it reads and writes
};

} // namespace host
