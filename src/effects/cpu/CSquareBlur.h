// The CPU blur; the glow builds on it.
#pragma once

#include "model/CPureCEffect.h"
#include "pixels/BoxBlur.h"

namespace KEXSDK {

class CSquareBlur : public CPureCEffect {
public:
    /// Allocates the table of the box average. Without memory, radii that need it copy the input.
    CSquareBlur(u32 width, u32 height);

    void processFrame(const u8* src, u8* dst) override;

protected:
    static constexpr auto kSize =
        Param<int>{"Size", 2, {0, 100}, "blur radius, 100 for half of the longer side"}.in("percent");

private:
    pixels::BoxBlur box_;
};

} // namespace KEXSDK
