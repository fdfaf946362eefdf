// Names of files.
#pragma once

#include <filesystem>

namespace files {

/// Where a name leads: itself, unless it is a link, which may lead to a file that is not there yet. What
/// replaces a file takes this name, so that links stay.
std::filesystem::path behindLinks(std::filesystem::path path);

} // namespace files
