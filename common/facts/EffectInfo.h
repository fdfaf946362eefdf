// Facts of an effect, for catalogues and tools.
#pragma once

#include "core/Types.h"

#include <string>

namespace KEXSDK {

/// How far back a frame's pixels depend on earlier frames.
struct History {
    static constexpr int kFromStart = -1;
    int frames = 0; ///< 0 none, n the last n frames, kFromStart everything since the first frame
};

/// The alpha of what an effect draws.
enum class Alpha {
    kept,     ///< the source's at the same place
    opaque,   ///< 255
    computed, ///< anything else; opaque inputs become transparent only where the effect means it
    loose,    ///< anything else; opaque inputs should stay opaque, but may not everywhere
};

/// Facts for catalogues and tools; the engine itself needs only the GUID.
struct EffectInfo {
    std::string guid;  ///< exact, case-sensitive
    std::string name;  ///< for command lines: lower case with hyphens
    std::string title; ///< for menus
    std::string family;
    std::string summary; ///< one sentence
    u32 inputs = 1;
    bool random = false;
    bool shared = false; ///< all nodes of the process share state: a frame depends on what other nodes showed
    bool needsGpu = false;
    History history{};
    Alpha alpha = Alpha::kept;
    std::string
        writesInput{}; ///< the parameter that, unless it is 0, changes the pictures that are given; or empty
    bool keepsOutput = false; ///< leaves bytes of its output image as they were, so it needs one and the same
    bool byRows =
        false; ///< a row of the output depends on the same rows of the inputs alone; they may be one image
    std::string descriptor{}; ///< its file in the resource directory; empty for effects of the library itself
};

} // namespace KEXSDK
