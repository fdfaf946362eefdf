// The library's own life: opened and closed, the engine that it starts, and results in place of exceptions.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <string>

namespace host {

/// Throws GraphError unless the library is open.
void requireOpen();

/// Starts the engine unless it runs. Throws LibraryFault.
void startEngine();

/// A failure with a code of its own.
struct LibraryFault {
    EffectHostResult code;
    std::string words;
};

/// Calls function(context): exceptions become a code, and words for EffectHostLastError().
EffectHostResult callGuarded(void (*function)(void*), void* context) noexcept;

/// Runs the body of an exported function in the same way. (A std::function would take memory before the
/// guard.)
template <class Body> EffectHostResult guarded(Body body) noexcept
{
    return callGuarded([](void* context) { (*static_cast<Body*>(context))(); }, &body);
}

/// Throws LibraryFault with EFFECTHOST_BAD_ARGUMENT unless the condition holds.
void require(bool condition, const char* words);

} // namespace host
