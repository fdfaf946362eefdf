// Opening and closing, which are counted, and the words of the last error of each thread.
#include "host/library.h"

#include "host/GraphError.h"
#include "host/effectList.h"
#include "hosting/Host.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <new>
#include <optional>

namespace fs = std::filesystem;

namespace host {

namespace {

struct Library {
    std::mutex mutex;
    int opened = 0;
    std::string resources; ///< with a separator at its end
    std::optional<std::string> logs;
    bool startedEngine = false;
};

Library& library()
{
    static Library theLibrary;
    return theLibrary;
}

thread_local std::string lastError;

EffectHostResult codeOf(GraphFault fault)
{
    switch (fault) {
    case GraphFault::content:
        return EFFECTHOST_BAD_CONTENT;
    case GraphFault::missingFile:
        return EFFECTHOST_MISSING_FILE;
    case GraphFault::unreadable:
        return EFFECTHOST_UNREADABLE;
    case GraphFault::effectFailed:
        return EFFECTHOST_EFFECT_FAILED;
    }
    return EFFECTHOST_INTERNAL;
}

/// The directory of the file that holds this code: the library, or a program that it is built into.
fs::path ownDirectory()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&EffectHostOpen), &info) == 0 || !info.dli_fname)
        return {};
    std::error_code error;
    const fs::path file = fs::canonical(info.dli_fname, error);
    return file.parent_path();
}

/// The first of some places beside this library where a file lies.
std::optional<fs::path> besideThis(std::initializer_list<const char*> places)
{
    for (const char* const place : places) {
        fs::path path = (ownDirectory() / place).lexically_normal();
        if (fs::exists(path))
            return path;
    }
    return std::nullopt;
}

/// A variable of the environment; null when it is not set, or empty.
const char* given(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value && *value ? value : nullptr;
}

void setUnlessGiven(const char* variable, const char* value)
{
    if (!given(variable))
        setenv(variable, value, 1);
}

/// The directory with a separator at its end; empty when none was named or is there.
std::string resourcesOf(const char* named)
{
    if (!named)
        named = given("EFFECTENGINE_RESOURCES");
    if (named) {
        if (!fs::is_directory(named))
            throw GraphError(GraphFault::missingFile, std::string("no resource directory ") + named);
        return (fs::path(named) / "").lexically_normal().string();
    }
    // Beside a library in lib/, in lib/ARCHITECTURE/, or in a build tree.
    const auto file = besideThis({"../share/effectengine/resources.cfg",
        "../../share/effectengine/resources.cfg", "../resources/resources.cfg"});
    return file ? file->parent_path().string() + "/" : std::string();
}

fs::path catalogueFile()
{
    const auto file = besideThis({"effectengine/effects.json", "../lib/effectengine/effects.json"});
    if (!file)
        throw GraphError(
            GraphFault::missingFile, "no catalogue effectengine/effects.json in " + ownDirectory().string());
    return *file;
}

void open(const char* resources, const char* logs)
{
    Library& own = library();
    const std::lock_guard lock(own.mutex);
    if (own.opened > 0) {
        if (resources && resourcesOf(resources) != own.resources)
            throw LibraryFault{
                EFFECTHOST_BAD_ARGUMENT, "the library is open with the resource directory " + own.resources};
        ++own.opened;
        return;
    }
    std::string directory = resourcesOf(resources);
    readCatalogue(catalogueFile(), directory);
    own.resources = std::move(directory);
    own.logs.reset();
    if (logs)
        own.logs = std::string(logs) + "/";
    own.opened = 1;
}

} // namespace

void requireOpen()
{
    Library& own = library();
    const std::lock_guard lock(own.mutex);
    if (own.opened == 0)
        throw LibraryFault{EFFECTHOST_NO_ENGINE, "the library is not open"};
}

void startEngine()
{
    Library& own = library();
    const std::lock_guard lock(own.mutex);
    if (own.opened == 0)
        throw LibraryFault{EFFECTHOST_NO_ENGINE, "the library is not open"};
    if (own.startedEngine)
        return;
    if (own.resources.empty())
        throw LibraryFault{EFFECTHOST_NO_ENGINE, "no resource directory beside " + ownDirectory().string()};
    setUnlessGiven("EFFECTENGINE_PATH", "auto");
    setUnlessGiven("EFFECTENGINE_GRAPHICS", "when-needed");
    const unsigned result = InitializeEngine(own.resources.c_str(), own.logs ? own.logs->c_str() : nullptr);
    own.startedEngine = result == EFFECTENGINE_OK;
    if (!own.startedEngine && result != EFFECTENGINE_ALREADY_INITIALIZED)
        throw LibraryFault{EFFECTHOST_NO_ENGINE, "the engine does not start"};
}

EffectHostResult callGuarded(void (*function)(void*), void* context) noexcept
{
    const auto say = [](EffectHostResult code, const char* words) {
        try {
            lastError = words;
            std::ranges::replace_if(
                lastError, [](unsigned char c) { return c < ' ' || c == 127; }, ' ');
        } catch (const std::bad_alloc&) {
            lastError.clear();
        }
        return code;
    };
    try {
        function(context);
        return EFFECTHOST_OK;
    } catch (const GraphError& error) {
        return say(codeOf(error.fault()), error.what());
    } catch (const LibraryFault& fault) {
        return say(fault.code, fault.words.c_str());
    } catch (const Failure& failure) {
        return say(EFFECTHOST_EFFECT_FAILED, failure.what());
    } catch (const fs::filesystem_error& error) { // a path that no file can have
        return say(EFFECTHOST_UNREADABLE, error.what());
    } catch (const std::bad_alloc&) {
        return say(EFFECTHOST_NO_MEMORY, "not enough memory");
    } catch (const std::exception& error) {
        return say(EFFECTHOST_INTERNAL, error.what());
    } catch (...) {
        return say(EFFECTHOST_INTERNAL, "an unknown fault");
    }
}

void require(bool condition, const char* words)
{
    if (!condition)
        throw LibraryFault{EFFECTHOST_BAD_ARGUMENT, words};
}

} // namespace host

EffectHostResult EffectHostOpen(const char* resourceDirectory, const char* logDirectory)
{
    return host::guarded([&] { host::open(resourceDirectory, logDirectory); });
}

void EffectHostClose(void)
{
    host::guarded([] {
        host::Library& own = host::library();
        const std::lock_guard lock(own.mutex);
        if (own.opened == 0 || --own.opened > 0)
            return;
        if (own.startedEngine)
            UninitializeEngine();
        own.startedEngine = false;
    });
}

const char* EffectHostLastError(void) { return host::lastError.c_str(); }
