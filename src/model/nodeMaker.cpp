// Keeps the engine's function that makes nodes.
#include "model/nodeMaker.h"

namespace KEXSDK {

namespace {

constinit NodeMaker maker = nullptr;

} // namespace

void setNodeMaker(NodeMaker engine) { maker = engine; }

std::unique_ptr<CSimpleEffect> makeNode(const char* guid, u32 width, u32 height)
{
    return maker ? maker(guid, width, height) : nullptr;
}

} // namespace KEXSDK
