// The files behind symbolic links.
#pragma once

#include <filesystem>

namespace files {

/// The file that a name stands for: behind links, if it is one, and whether or not it exists. A file that
/// replaces another is given this name, so that links stay.
std::filesystem::path behindLinks(std::filesystem::path path);

} // namespace files
