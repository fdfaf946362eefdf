// The scan of descriptor directories.
#include "descriptors/descriptorFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
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

void claim(const std::string& path, DescriptorMap& map, const Entered& entered)
{
    std::string bytes;
    if (readSmallFile(path, bytes) != SmallFile::read)
        return;
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t end = std::min({rest.find('\n'), kLongestLine, rest.size()});
        const std::string_view guid = guidIn(rest.substr(0, end));
        if (!guid.empty()) {
            const auto [entry, fresh] = map.emplace(guid, path);
            if (fresh && entered)
                entered(entry->first, path, bytes);
            if (fresh)
                return;
        }
        rest.remove_prefix(std::min(rest.size(), end + (end < rest.size() && rest[end] == '\n')));
    }
}

struct Closed {
    int file;
    ~Closed() { close(file); }
};

} // namespace

void scanDescriptors(const std::string& directory, DescriptorMap& map, const Entered& entered)
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
        claim(directory + name, map, entered);
}

SmallFile readSmallFile(const std::string& path, std::string& bytes)
{
    // Dozens of these files are read whenever a program starts, so in as few calls of the system as possible.
    // (A pipe opens at once this way, and is refused.)
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return SmallFile::missing;
    const Closed closed{file};
    struct stat facts { };
    if (fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode))
        return SmallFile::missing;
    if (std::uintmax_t(facts.st_size) > kLargestFile)
        return SmallFile::tooLarge;
    bytes.resize(std::size_t(facts.st_size));
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = read(file, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        filled += std::size_t(got);
    }
    bytes.resize(filled);
    return SmallFile::read;
}

} // namespace shader
