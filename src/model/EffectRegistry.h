// What the engine knows about an effect besides its code, and the table of the CPU effect classes.
#pragma once

#include "facts/EffectInfo.h"

#include <map>
#include <string>
#include <string_view>

namespace KEXSDK {

class CSimpleEffect;

/// Makes a node of the given working size; the caller owns it. Null only when the effect refuses.
using EffectCreator = CSimpleEffect* (*)(u32 width, u32 height);

/// One table per process, filled while the library loads and only read afterwards.
class EffectRegistry {
public:
    struct Entry {
        EffectInfo info;
        EffectCreator creator;
    };

    /// Made on first use, by whichever comes first of a registration and a lookup.
    static EffectRegistry& instance();

    /// Adds an effect class; a GUID that is registered already keeps its first class.
    void add(const EffectInfo& info, EffectCreator creator);

    /// The creator's node, or null when no effect is registered under exactly this GUID.
    CSimpleEffect* create(std::string_view guid, u32 width, u32 height) const;

    const std::map<std::string, Entry, std::less<>>& entries() const { return entries_; }

private:
    std::map<std::string, Entry, std::less<>> entries_;
};

/// A namespace-scope object of this type makes an effect class known.
template <class Effect> struct Registration {
    explicit Registration(const EffectInfo& info)
    {
        EffectRegistry::instance().add(
            info, [](u32 width, u32 height) -> CSimpleEffect* { return new Effect(width, height); });
    }
};

} // namespace KEXSDK
