// Makes one list of the effects in the registries, the tables and the descriptor files.
#include "engine/effectList.h"

#include "descriptors/descriptorList.h"
#include "effects/am/library/amCatalog.h"
#include "effects/transitions/transitionTable.h"
#include "facts/effectOrder.h"
#include "model/CSimpleEffect.h"

#include <algorithm>
#include <deque>
#include <iterator>

using KEXSDK::EffectInfo;

namespace {

struct EffectList {
    std::vector<EffectInfo> effects;
    shader::DescriptorList shaders;
};

EffectList gather(shader::DescriptorList shaders)
{
    std::vector<EffectInfo> effects;
    for (const auto& [guid, entry] : KEXSDK::EffectRegistry::instance().entries())
        effects.push_back(entry.info);
    std::ranges::move(KEXSDK::amEffectInfos(), std::back_inserter(effects));
    std::ranges::move(transitions::transitionInfos(), std::back_inserter(effects));
    // An effect whose GUID a descriptor has too is left out: the engine asks the descriptors first.
    std::erase_if(effects, [&](const EffectInfo& effect) { return shaders.contains(effect.guid); });
    for (const auto& [guid, descriptor] : shaders)
        effects.push_back(descriptor.facts);
    putInOrder(effects);
    return {std::move(effects), std::move(shaders)};
}

// All lists of this process, the last one in use. Earlier ones stay because pointers into them were handed
// out; there are earlier ones only where a tool named a resource directory.
std::deque<EffectList>& lists()
{
    static std::deque<EffectList> everyList(1, gather({}));
    return everyList;
}

const std::vector<EffectInfo>& all() { return lists().back().effects; }

} // namespace

void listShaderEffectsOf(const std::string& resourceDirectory)
{
    lists().push_back(gather(shader::listDescriptors(resourceDirectory)));
}

std::vector<EffectInfo> listEffects() { return all(); }

const EffectInfo* findEffect(std::string_view guidOrName)
{
    const auto found = std::ranges::find_if(
        all(), [&](const EffectInfo& e) { return e.guid == guidOrName || e.name == guidOrName; });
    return found == all().end() ? nullptr : &*found;
}

std::vector<const KEXSDK::ParamInfo*> describeParameters(const std::string& guid)
{
    const shader::DescriptorList& shaders = lists().back().shaders;
    if (const auto found = shaders.find(guid); found != shaders.end())
        return shader::describedParameters(*found->second.descriptor);
    const std::unique_ptr<KEXSDK::CSimpleEffect> node(KEXSDK::EffectRegistry::instance().create(guid, 1, 1));
    if (node)
        return node->described();
    std::vector<const KEXSDK::ParamInfo*> params{&KEXSDK::kEnable, &KEXSDK::kGlobalTime, &KEXSDK::kTotalTime};
    if (const KEXSDK::am::EffectRow* row = KEXSDK::findAmRow(guid)) {
        for (const KEXSDK::ParamInfo& param : KEXSDK::amParameters(row->id))
            params.push_back(&param);
    }
    return params;
}
