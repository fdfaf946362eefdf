// The engine's way from a GUID to a node, for effects that are made of other effects.
#pragma once

#include "model/CSimpleEffect.h"

#include <memory>

namespace KEXSDK {

using NodeMaker = std::unique_ptr<CSimpleEffect> (*)(const char* guid, u32 width, u32 height);

/// Sets the function that makeNode calls; the engine does so while the library loads.
void setNodeMaker(NodeMaker maker);

/// An initialised node, or null when there is no engine or nothing of that GUID. Throws std::bad_alloc.
std::unique_ptr<CSimpleEffect> makeNode(const char* guid, u32 width, u32 height);

} // namespace KEXSDK
