// What tools tell people about the effects of the catalog.
#pragma once

#include "core/Types.h"

#include <string_view>

namespace KEXSDK::am {

/// Parameters that an effect reads, as bits.
enum Reads : u32 {
    kReadsNothing = 0,
    kReadsPercent = 1,
    kReadsRadius = 2,
    kReadsPosition = 4,
    kReadsBand = 8,
    kReadsColour = 16,
    kReadsDirection = 32,
    kReadsPick = 64,
};

enum Traits : u32 {
    kPlain = 0,
    kRandom = 1,       ///< the picture changes from run to run or from process to process
    kAnimated = 2,     ///< state goes on from frame to frame
    kChangesAlpha = 4, ///< alpha is not the source's at the same place
    kShared = 8,       ///< all nodes of the process share its state
    kLosesAlpha = 16,  ///< nor opaque wherever the source is opaque
};

struct Fact {
    i32 id;
    const char* title;
    const char* summary; ///< one sentence
    u32 reads = kReadsNothing;
    u32 traits = kPlain;
    const char* percentHelp = "strength";
    const char* radiusHelp = "size";
    const char* directions = "";
};

/// Facts of an id; every row of the catalog has them.
const Fact* findFact(i32 id);

} // namespace KEXSDK::am
