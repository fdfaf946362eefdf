// Repair of lookup tables: reads them more leniently than the engine, and writes what the engine reads.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct LutRepair {
    std::string text;                 ///< a Cube file
    std::vector<std::string> changes; ///< "line 3: the title had no quotes", in order; empty: only layout
};

struct LutRepairOptions {
    bool blueFirst = false; ///< blue varies fastest in the file, as in most 3DL files
};

/// Repairs the text of a lookup table as far as the right contents follow from the file. Throws ToolError
/// that names the line where they do not: missing entries, entries that are no three numbers.
LutRepair repairLut(const std::filesystem::path& file, const LutRepairOptions& options);

} // namespace tool
