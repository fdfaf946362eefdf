// The library's own life: opened and closed, the engine that it starts, and results in place of exceptions.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <functional>
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

/// Runs the body of an exported function: exceptions become a code, and words for EffectHostLastError().
EffectHostResult guarded(const std::function<void()>& body) noexcept;

/// Throws LibraryFault with EFFECTHOST_BAD_ARGUMENT unless the condition holds.
void require(bool condition, const char* words);

} // namespace host
