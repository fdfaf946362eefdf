// Which GUID stands for which id of the numeric effect library, and what tools may know about it.
#pragma once

#include "core/Types.h"
#include "model/EffectRegistry.h"
#include "model/Param.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KEXSDK {

struct AmCatalogRow {
    i32 id;
    const char* name; ///< label; two rows may share one
    const char* guid;
    const char* texture; ///< picture file that goes with the effect, or null
};

/// All 155 rows, those without an effect behind them included.
std::span<const AmCatalogRow> amCatalog();

/// The row with exactly this GUID, or null.
const AmCatalogRow* findAmRow(std::string_view guid);

/// The parameters that an id reads, with the defaults of its block, in the order in which nodes declare
/// them. The objects live as long as the process; empty for ids without a row.
std::span<const ParamInfo> amParameters(i32 id);

/// Catalogue entries of the rows that have an effect behind them, in the order of the table.
std::vector<EffectInfo> amEffectInfos();

/// "FlipLR" -> "flip-lr": how a catalog name is typed on a command line.
std::string amCommandName(std::string_view catalogName);

} // namespace KEXSDK
