// What a descriptor file says about a shader effect. The format is explained in docs/descriptors.md.
#pragma once

#include "descriptors/DescriptorPass.h"
#include "facts/EffectInfo.h"
#include "facts/Param.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace shader {

/// Picture inputs and further pictures of one effect together; the texture units that OGRE has.
constexpr u32 kMaxTextures = 16;

struct DescriptorTexture {
    std::string file;
    u32 index = 0;
};

/// The contents of one descriptor file. Types and ranges have been checked, and of passes that they fit
/// together; nothing else.
struct ShaderDescriptor {
    std::string shader; ///< file of the fragment program; empty for one that draws input 0
    std::vector<DescriptorTexture> textures;
    u32 inputs = 1;                     ///< at most kMaxTextures
    std::string particleTemplate;       ///< empty for none
    double lead = 0;                    ///< seconds that have passed in the particle scene at time 0
    std::vector<DescriptorPass> passes; ///< drawn in the place of `shader`, unless there are none
    std::string
        passFault; ///< what is wrong with the passes, one line: the effect cannot be drawn; else empty

    KEXSDK::EffectInfo facts; ///< without the GUID; an empty name, title or family stands for none given
    /// What the effect reads. The texts that they point to belong to the descriptor.
    std::vector<KEXSDK::ParamInfo> params;

    ShaderDescriptor() = default;
    ShaderDescriptor(const ShaderDescriptor&) = delete;
    ShaderDescriptor& operator=(const ShaderDescriptor&) = delete;

    std::deque<std::string> texts;
};

using DescriptorPtr = std::shared_ptr<const ShaderDescriptor>;

/// The descriptor in a text, or null when it is no JSON object. A member of another type than it should be,
/// or out of its range, counts as absent. Throws nothing, whatever the text: what memory cannot hold is null.
DescriptorPtr parseDescriptor(std::string_view json) noexcept;

enum class DescriptorStatus {
    read,
    missing, ///< no such file, or one that cannot be opened
    broken   ///< no JSON object, or far too large
};

struct DescriptorFile {
    DescriptorStatus status = DescriptorStatus::missing;
    DescriptorPtr descriptor; ///< null unless read
};

/// Reads and parses the file at a path. Throws nothing.
DescriptorFile readDescriptor(const std::string& path) noexcept;

} // namespace shader
