// The node that runs any transition of the table.
#pragma once

#include "effects/transitions/TransitionFrame.h"
#include "model/CSimpleEffect.h"

namespace KEXSDK {

class CTransitionEffect final : public CSimpleEffect {
public:
    CTransitionEffect(u32 width, u32 height, transitions::TransitionFunc* algorithm)
        : CSimpleEffect(width, height),
          algorithm_(algorithm)
    {
    }

    u32 getInputCount() override { return 2; }

    /// Shows input 0 turning into input 1 as u_global_time runs from 0 to u_total_time. Without both inputs
    /// in the node's size the output stays as it is.
    void run() override;

private:
    transitions::TransitionFunc* const algorithm_;
};

} // namespace KEXSDK
