// Base of the effects that compute one input's pixels on the CPU.
#pragma once

#include "model/CSimpleEffect.h"

namespace KEXSDK {

class CPureCEffect : public CSimpleEffect {
public:
    using CSimpleEffect::CSimpleEffect;

    u32 getInputCount() final { return 1; }

    /// Hands input 0 to processFrame. Without an input of the node's size the output stays as it is. Override
    /// run for an effect that the GPU may draw, and call this version when the GPU does not.
    void run() override;

    /// The effect's pixel routine; the default leaves the output as it is (transparent black at first).
    /// @param src  input 0, width x height pixels of 4 bytes, rows packed, bottom row first; read only
    /// @param dst  the output, same layout. It may be the memory of src when the host runs a chain in place
    virtual void processFrame(const u8* src, u8* dst);

protected:
    pixels::Extent extent() const { return {int(width()), int(height())}; }
    pixels::ConstView input(const u8* src) const { return {src, extent()}; }
    pixels::View output(u8* dst) const { return {dst, extent()}; }
};

} // namespace KEXSDK
