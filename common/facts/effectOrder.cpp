// Sorting of effects, and numbers behind repeated names.
#include "facts/effectOrder.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace KEXSDK {

void putInOrder(std::vector<EffectInfo>& effects)
{
    std::set<std::string> taken;
    for (EffectInfo& effect : effects) {
        const std::string name = effect.name;
        for (int number = 2; !taken.insert(effect.name).second; ++number)
            effect.name = name + "-" + std::to_string(number);
    }
    std::ranges::sort(effects, {}, [](const EffectInfo& e) { return std::tie(e.family, e.name); });
}

} // namespace KEXSDK
