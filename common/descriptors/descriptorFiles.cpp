// The scan of descriptor directories.
#include "descriptors/descriptorFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace shader {

namespace {

constexpr std::uintmax_t kLargestFile = 1 << 20;
constexpr std::size_t kLongestLine = 199; // longer ones are read as several
constexpr std::string_view kKey = "\"GUID\":";
constexpr std::size_t kGuidLength = 36;

/// The GUID that a line gives: it follows the key's colon and one quote. Empty for none.
std::string_view guidIn(std::string_view line)
{
    const std::size_t key = line.find(kKey);
    if (key == std::string_view::npos || line.size() < key + kKey.size() + 1 + kGuidLength)
        return {};
    return line.substr(key + kKey.size() + 1, kGuidLength);
}

void claim(const std::string& path, DescriptorMap& map)
{
    std::string bytes;
    if (readSmallFile(path, bytes) != SmallFile::read)
        return;
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t end = std::min({rest.find('\n'), kLongestLine, rest.size()});
        const std::string_view guid = guidIn(rest.substr(0, end));
        if (!guid.empty() && map.emplace(guid, path).second)
            return;
        rest.remove_prefix(std::min(rest.size(), end + (end < rest.size() && rest[end] == '\n')));
    }
}

} // namespace

void scanDescriptors(const std::string& directory, DescriptorMap& map)
{
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (name.find(".conf") != std::string::npos)
            names.push_back(std::move(name));
    }
    std::ranges::sort(names); // file systems list them in orders of their own
    for (const std::string& name : names)
        claim(directory + name, map);
}

SmallFile readSmallFile(const std::string& path, std::string& bytes)
{
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return SmallFile::missing;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return SmallFile::missing;
    const std::uintmax_t size = fs::file_size(path, error);
    if (error || size > kLargestFile)
        return SmallFile::tooLarge;
    bytes.resize(std::size_t(size));
    file.read(bytes.data(), std::streamsize(bytes.size()));
    bytes.resize(std::size_t(file.gcount()));
    return SmallFile::read;
}

} // namespace shader
