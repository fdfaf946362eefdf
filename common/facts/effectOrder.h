// The order of effects in lists, and names that differ.
#pragma once

#include "facts/EffectInfo.h"

#include <vector>

namespace KEXSDK {

/// Gives effects whose name an effect before them has a number, "wash-2", and sorts them by family and name.
void putInOrder(std::vector<EffectInfo>& effects);

} // namespace KEXSDK
