// What stands behind the handle of a look.
#pragma once

#include "EffectEngine/EffectEngineHost.h"
#include "host/GraphDescription.h"

#include <deque>
#include <vector>

struct EffectHostLook {
    /// The description, completed and checked. Throws GraphError.
    const host::GraphDescription& finished();

    host::GraphDescription graph;
    bool complete = false;

    // What EffectHostGetLookInfo() answered last.
    EffectHostLookInfo info{};
    std::deque<std::string> texts;
    std::vector<EffectHostNode> nodes;
    std::vector<EffectHostBand> bands;
    std::vector<const char*> warnings;
    std::vector<const char*> fromStart;
};
