// The transitions between two pictures: their table, and the nodes made from it.
#pragma once

#include "effects/transitions/CTransitionEffect.h"
#include "effects/transitions/TransitionFrame.h"
#include "model/EffectRegistry.h"

#include <memory>
#include <span>
#include <vector>

namespace transitions {

struct TransitionTableEntry {
    char name[64]; ///< for menus
    TransitionFunc* algorithm;
    char guid[128]; ///< compared byte by byte
};

extern const std::span<const TransitionTableEntry> transitionTable;

/// Makes the table known to createTransition. Called once, while the engine starts; another call changes
/// nothing.
void transitionMgrInit();

/// A node of the given working size, or null for a GUID that transitionMgrInit() has not made known.
std::unique_ptr<KEXSDK::CTransitionEffect> createTransition(u32 width, u32 height, const char* guid);

/// The rows as tools list them, in the table's order.
std::vector<KEXSDK::EffectInfo> transitionInfos();

} // namespace transitions
