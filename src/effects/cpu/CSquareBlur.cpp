// Blur: Stack Blur below pixels::kMostStackRadius, a box average from there on.
#include "effects/cpu/CSquareBlur.h"

#include "model/EffectRegistry.h"
#include "pixels/StackBlur.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

namespace KEXSDK {

CSquareBlur::CSquareBlur(u32 w, u32 h) : CPureCEffect(w, h), box_(extent()) { declare(kSize); }

void CSquareBlur::processFrame(const u8* src, u8* dst)
{
    const int radius = std::max(0, pixels::truncated(std::max(width(), height()) * 0.5 * get(kSize) / 100));
    if (radius < pixels::kMostStackRadius)
        pixels::stackBlur(input(src), output(dst), radius);
    else if (box_.ready())
        box_.apply(input(src), output(dst), radius);
    else
        pixels::rows::copy(input(src), output(dst));
}

namespace {

const Registration<CSquareBlur> registered{{
    .guid = "3DC7BBD0-E1EA-4c23-8947-51BF32442581",
    .name = "blur",
    .title = "Blur",
    .family = "blur",
    .summary = "Softens the picture; very large sizes become a plain average over a square.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
