// The one place where exceptions become result codes.
#pragma once

#include "EffectEngine/EffectEngine.h"
#include "core/Log.h"

#include <exception>

/// Runs body() and answers its result; whatever escapes is logged under the exported function's name and
/// becomes `escaped`.
template <class Body>
unsigned int guarded(const char* function, Body body, unsigned int escaped = EFFECTENGINE_FAILED) noexcept
{
    try {
        return body();
    } catch (const std::exception& error) {
        logging::error(function, error.what());
    } catch (...) {
        logging::error(function, "unknown exception");
    }
    return escaped;
}
