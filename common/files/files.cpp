// The walk along a chain of links.
#include "files/files.h"

namespace files {

std::filesystem::path behindLinks(std::filesystem::path path)
{
    constexpr int kMostLinks = 40; // as the system follows
    std::error_code error;
    for (int links = 0; links < kMostLinks && std::filesystem::is_symlink(path, error); ++links)
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
    return path;
}

} // namespace files
