// A directory for one test's files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace test {

class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        char name[] = "/tmp/effectengine-test-XXXXXX";
        path_ = std::string(mkdtemp(name)) + "/";
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    /// The path, with a trailing separator.
    const std::string& path() const { return path_; }

    /// Writes a file, and makes the directories on its way.
    void write(const std::string& name, const std::string& bytes) const
    {
        const std::filesystem::path file = path_ + name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const
    {
        std::ostringstream text;
        text << std::ifstream(path_ + name, std::ios::binary).rdbuf();
        return text.str();
    }

private:
    std::string path_;
};

} // namespace test
