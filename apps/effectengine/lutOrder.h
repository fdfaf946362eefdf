// A guess at the order in which the entries of a lookup table stand.
#pragma once

#include "lut/LutFile.h"

namespace tool {

/// Whether blue varies fastest, judged by what the table does: along the axis that the file varies fastest
/// blue changes clearly more than red, and along the slowest axis red more than blue. False for tables that
/// do not tell, such as those that make grey of everything.
bool looksBlueFirst(const lut::LutFile& file);

} // namespace tool
