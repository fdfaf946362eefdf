// Which GUID stands for which id of the numeric effect library, and what tools may know about it.
#pragma once

#include "effects/am/library/amRow.h"
#include "facts/Param.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KEXSDK {

/// The effects that have a GUID, in the order of their places.
std::span<const am::Listed> amCatalog();

/// The row with exactly this GUID, or null.
const am::EffectRow* findAmRow(std::string_view guid);

/// The parameters that an id reads, with the defaults of its block, in the order in which nodes declare
/// them. The objects live as long as the process; empty for ids without a GUID.
std::span<const ParamInfo> amParameters(i32 id);

/// The entries of amCatalog() as tools read them, in its order.
std::vector<EffectInfo> amEffectInfos();

/// "FlipLR" -> "flip-lr": how a catalog name is typed on a command line.
std::string amCommandName(std::string_view catalogName);

} // namespace KEXSDK
