// The plain CPU node as an effect: its pixel routine does nothing, so its output stays transparent black.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"

namespace KEXSDK {
namespace {

const Registration<CPureCEffect> registered{{
    .guid = "0FC7D998-AAB0-4f2e-89F9-2FAD04CA0B24",
    .name = "blank",
    .title = "Blank",
    .family = "utility",
    .summary = "Writes nothing; the output stays transparent black.",
    .alpha = Alpha::computed,
    .keepsOutput = true,
}};

} // namespace
} // namespace KEXSDK
