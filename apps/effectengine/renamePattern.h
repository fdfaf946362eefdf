// Names of results by a pattern such as "{name}-{effect}.{ext}": --rename.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

class RenamePattern {
public:
    /// {name}, {effect}, {ext}, {parent} and {index} stand for a file's facts, {{ and }} for braces. Throws
    /// ToolError: another field, a single brace, a slash.
    explicit RenamePattern(const std::string& pattern);

    struct Facts {
        std::string name;   ///< of the source, without its extension
        std::string effect; ///< of the look
        std::string ext;    ///< of the result, without a dot
        std::string parent; ///< the folder that the source is in
        std::string index;  ///< the source's place in the list
    };
    /// The name of a result. Throws ToolError when it would be none: empty, "." or "..".
    std::string nameFor(const Facts& facts) const;

    /// Whether the names of different files of a folder differ, as far as the pattern can tell.
    bool hasName() const { return has(&Facts::name); }
    bool hasIndex() const { return has(&Facts::index); }

private:
    /// Text as it stands, or a field.
    struct Part {
        std::string text;
        std::string Facts::*field = nullptr;
    };

    bool has(std::string Facts::*field) const;

    std::vector<Part> parts_;
};

} // namespace tool
