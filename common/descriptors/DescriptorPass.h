// One of the fragment programs that an effect draws one after another.
#pragma once

#include "core/Types.h"

#include <optional>
#include <string>
#include <vector>

namespace shader {

constexpr std::size_t kMaxPasses = 16;
constexpr std::size_t kMaxPassInputs = 16; ///< the texture units that OGRE has

/// What a sampler of a pass shows.
struct PassInput {
    enum class Source {
        picture,  ///< the effect's input, or further picture, of that index
        pass,     ///< what the pass of that index, an earlier one, drew in this frame
        lastFrame ///< what the persistent pass of that index drew in the frame before
    };
    enum class Wrap { clamp, repeat, mirror };

    Source source = Source::picture;
    u32 index = 0;
    bool nearest = false; ///< else colours between the texels are mixed
    Wrap wrap = Wrap::clamp;

    bool operator==(const PassInput&) const = default;
};

/// The last pass of an effect draws its picture: at full size, in bytes, and not persistent.
struct DescriptorPass {
    std::string name;        ///< empty for none
    std::string shader;      ///< file of the fragment program; empty for one that draws the first input
    double scale = 1;        ///< of the sides of the effect's picture, 1/16..1
    bool persistent = false; ///< its picture stays for the next frame
    bool halfFloats = false; ///< the picture holds half floats instead of bytes
    /// The sampler mSample0 shows the first one, and so on; nothing stands for all pictures of the effect.
    std::optional<std::vector<PassInput>> inputs;
};

} // namespace shader
