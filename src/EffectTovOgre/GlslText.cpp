// Digests of source texts, and their includes.
#include "EffectTovOgre/GlslText.h"

#include "EffectTovOgre/ResourceFiles.h"
#include "core/Types.h"

#include <nettle/md5.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace glslText {

namespace {

std::string digestOf(const std::string& text)
{
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, text.size(), reinterpret_cast<const u8*>(text.data()));
    std::array<u8, MD5_DIGEST_SIZE> digest;
    md5_digest(&context, digest.size(), digest.data());
    std::string hexadecimal;
    for (const u8 byte : digest) {
        hexadecimal += "0123456789abcdef"[byte >> 4];
        hexadecimal += "0123456789abcdef"[byte & 15];
    }
    return hexadecimal;
}

constexpr std::string_view kBlanks = " \t\v\f\r";

std::string_view withoutBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text;
}

/// The file that a directive behind its "#" includes; empty for another directive.
std::string_view includedBy(std::string_view directive)
{
    constexpr std::string_view kWord = "include";
    directive = withoutBlanks(directive);
    if (!directive.starts_with(kWord))
        return {};
    directive = withoutBlanks(directive.substr(kWord.size()));
    if (directive.empty() || (directive[0] != '"' && directive[0] != '<'))
        return {};
    const std::size_t end = directive.find(directive[0] == '<' ? '>' : '"', 1);
    return end == std::string_view::npos ? std::string_view{} : directive.substr(1, end - 1);
}

/// Copies texts, and puts files in the places of the directives that include them. It tells comments from
/// code and nothing else: a file is included even where "#if" leaves its directive out.
class Includes {
public:
    void add(std::string_view text)
    {
        const std::size_t number = files_++;
        std::size_t line = 1;
        for (std::size_t at = 0; at < text.size();) {
            const std::string_view rest = text.substr(at);
            std::size_t length = 1;
            if (rest.starts_with("/*")) {
                length = std::min(rest.find("*/", 2), rest.size() - 2) + 2;
            } else if (rest.starts_with("//")) {
                length = endOfLine(rest);
                lineHasCode_ = true;
            } else if (rest[0] == '#' && !lineHasCode_) {
                const auto name = includedBy(rest.substr(1, endOfLine(rest) - 1));
                lineHasCode_ = true;
                if (!name.empty()) {
                    include(std::string(name));
                    append("\n#line " + std::to_string(line) + " " + std::to_string(number) + " ");
                    at = std::size_t(name.data() + name.size() + 1 - text.data());
                    continue;
                }
            } else if (kBlanks.find(rest[0]) == std::string_view::npos) {
                lineHasCode_ = rest[0] != '\n';
            }
            append(rest.substr(0, length));
            line += std::size_t(std::ranges::count(rest.substr(0, length), '\n'));
            at += length;
        }
    }

    void addFile(const std::string& name)
    {
        if (std::ranges::find(open_, name) != open_.end())
            throw std::runtime_error("The file " + name + " includes itself.");
        if (files_ == kMostFiles)
            throw std::runtime_error(
                "A program includes more than " + std::to_string(kMostFiles) + " files.");
        open_.push_back(name);
        add(resourceFiles::readText(name));
        open_.pop_back();
    }

    const std::string& text() const { return text_; }

private:
    /// Length of the text's first line, with the lines that backslashes at line ends join to it.
    static std::size_t endOfLine(std::string_view text)
    {
        std::size_t end = text.find('\n');
        while (end != std::string_view::npos && end > 0
            && (text[end - 1] == '\\' || (end > 1 && text[end - 1] == '\r' && text[end - 2] == '\\')))
            end = text.find('\n', end + 1);
        return std::min(end, text.size());
    }

    void include(const std::string& name)
    {
        // Nothing may stand before an included file that comes first: it may begin with "#version".
        if (text_.find_first_not_of(" \t\r\n") != std::string::npos)
            append("#line 0 " + std::to_string(files_) + "\n");
        lineHasCode_ = false;
        addFile(name);
        lineHasCode_ = true;
    }

    void append(std::string_view part)
    {
        if (text_.size() + part.size() > resourceFiles::kLongestText)
            throw std::runtime_error("A program with its includes is too long.");
        text_ += part;
    }

    static constexpr std::size_t kMostFiles = 1000;

    std::string text_;
    std::vector<std::string> open_; ///< files, each including the next
    std::size_t files_ = 0;         ///< for the line numbers in the driver's messages
    bool lineHasCode_ = false;
};

} // namespace

std::string programName(const std::string& text, bool isFragment, bool isSourceText)
{
    const std::string base = isSourceText ? digestOf(text) : text.substr(0, text.rfind('.'));
    return base + (isFragment ? "_FRAG_GLSL" : "_VERT_GLSL");
}

std::string complete(const std::string& text, bool isSourceText)
{
    Includes includes;
    if (isSourceText)
        includes.add(text);
    else
        includes.addFile(text);
    return includes.text();
}

} // namespace glslText
