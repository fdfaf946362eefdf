// The table of CPU effect classes.
#include "model/EffectRegistry.h"

namespace KEXSDK {

EffectRegistry& EffectRegistry::instance()
{
    static EffectRegistry registry;
    return registry;
}

void EffectRegistry::add(const EffectInfo& info, EffectCreator creator)
{
    entries_.emplace(info.guid, Entry{info, creator});
}

CSimpleEffect* EffectRegistry::create(std::string_view guid, u32 width, u32 height) const
{
    const auto entry = entries_.find(guid);
    return entry == entries_.end() ? nullptr : entry->second.creator(width, height);
}

} // namespace KEXSDK
