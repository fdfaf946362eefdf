// Nodes of a chain whose rows are computed together.
#pragma once

#include "model/RowWise.h"

#include <array>
#include <span>

namespace KEXSDK {

/// Collects nodes during an evaluation, each reading what the one before it writes, and computes their rows
/// in the end: strip by strip, all nodes on one strip before the next one. Pictures end with the bytes that
/// they have after one node after the other. A variable of the evaluation.
class RowChain {
public:
    RowChain() = default;
    RowChain(const RowChain&) = delete;
    RowChain& operator=(const RowChain&) = delete;
    ~RowChain() { end(); }

    /// Prepares for a node that reads `source`: computes what was collected unless the node goes on from it.
    void goOnFrom(pixels::ConstView source);

    /// Adds a node that has begun its rows, of input 0 and of its output, which have one size; goOnFrom()
    /// came before.
    void add(RowWise& node, pixels::ConstView source, pixels::View target);
    /// Adds a plain copy.
    void addCopy(pixels::ConstView source, pixels::View target);

    /// Computes what was collected. Call it before anything else touches pixels.
    void finish();

private:
    struct Step {
        RowWise* node = nullptr; ///< null copies
        pixels::ConstView source;
        pixels::View target;

        void process(pixels::ConstView src, pixels::View dst, int first) const;
    };

    std::span<const Step> steps() const { return {steps_.data(), count_}; }
    bool mayGoByStrips() const;
    void processStrips() const;
    void end();

    std::array<Step, 16> steps_;
    std::size_t count_ = 0;
};

} // namespace KEXSDK
