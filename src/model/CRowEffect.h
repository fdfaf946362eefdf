// Base of the effects on the CPU whose rows follow from the same rows of one input.
#pragma once

#include "model/CPureCEffect.h"
#include "model/RowWise.h"

namespace KEXSDK {

/// A derived class overrides prepare() and processRows(), and with them is drawn in strips and as a whole.
class CRowEffect : public CPureCEffect, public RowWise {
public:
    using CPureCEffect::CPureCEffect;

    bool beginRows() override;
    void processFrame(const u8* src, u8* dst) override;

protected:
    /// Reads the parameters of a frame; called once before its rows.
    virtual void prepare() { }
};

} // namespace KEXSDK
