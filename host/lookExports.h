// What stands behind the handle of a look.
#pragma once

#include "EffectEngine/EffectEngineHost.h"
#include "host/GraphDescription.h"

#include <deque>
#include <mutex>
#include <vector>

struct EffectHostLook {
    /// The description, completed and checked; the mutex is held. Throws GraphError.
    const host::GraphDescription& finished();

    std::mutex mutex; ///< of all that follows: threads may ask for it at the same time
    host::GraphDescription graph;
    bool complete = false;

    // What EffectHostGetLookInfo() answered, until the look changes.
    bool described = false;
    EffectHostLookInfo info{};
    std::deque<std::string> texts;
    std::vector<EffectHostNode> nodes;
    std::vector<EffectHostBand> bands;
    std::vector<const char*> warnings;
    std::vector<const char*> fromStart;
};
