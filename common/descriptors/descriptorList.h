// The facts of all shader effects of a resource directory, for tools.
#pragma once

#include "descriptors/ShaderDescriptor.h"

#include <map>

namespace shader {

struct ListedDescriptor {
    KEXSDK::EffectInfo facts; ///< complete: what the file leaves out is made up from its name and place
    DescriptorPtr descriptor;
};

/// Descriptors by their GUID.
using DescriptorList = std::map<std::string, ListedDescriptor, std::less<>>;

/// Every descriptor of the three directories that can be read and has a well-formed GUID.
DescriptorList listDescriptors(const std::string& resourceDirectory);

/// What a node made from the descriptor reads, standard parameters first. Valid as long as the descriptor.
std::vector<const KEXSDK::ParamInfo*> describedParameters(const ShaderDescriptor& descriptor);

} // namespace shader
