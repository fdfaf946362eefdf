// A reader of GLSL's words: it follows no meaning, and knows a few phrases that have one meaning only.
#include "EffectTovOgre/GlslReads.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace glslReads {

namespace {

constexpr std::string_view kPlace = "textureCoord";
constexpr std::string_view kLineEnds = "\r\n";
constexpr std::string_view kDirective = "#"; // the word that stands for a whole line of the preprocessor

bool isWordCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// A text as words and single signs, without comments.
class Words {
public:
    explicit Words(std::string_view text)
        : isPlain_(text.find('\\') == std::string_view::npos) // lines that go on
    {
        bool lineBegins = true;
        for (std::size_t i = 0; i < text.size();) {
            const std::string_view rest = text.substr(i);
            std::size_t length = 1;
            if (rest.starts_with("//")) {
                length = std::min(rest.find_first_of(kLineEnds), rest.size());
            } else if (rest.starts_with("/*")) {
                length = std::min(rest.find("*/", 2), rest.size() - 2) + 2;
            } else if (rest[0] == '#' && lineBegins) {
                length = std::min(rest.find_first_of(kLineEnds), rest.size());
                isPlain_ = isPlain_ && isHarmless(rest.substr(1, length - 1));
                words_.push_back(kDirective);
            } else if (kLineEnds.find(rest[0]) != std::string_view::npos) {
                lineBegins = true;
                ++i;
                continue;
            } else if (isWordCharacter(rest[0])) {
                length = std::size_t(std::ranges::find_if_not(rest, isWordCharacter) - rest.begin());
                words_.push_back(rest.substr(0, length));
                lineBegins = false;
            } else if (rest[0] != ' ' && rest[0] != '\t') {
                isPlain_ = isPlain_ && rest[0] != '#';
                words_.push_back(rest.substr(0, 1));
                lineBegins = false;
            }
            i += length;
        }
    }

    /// False when the preprocessor may put other words in the place of these.
    bool isPlain() const { return isPlain_; }
    std::size_t size() const { return words_.size(); }
    std::string_view operator[](std::size_t i) const { return i < words_.size() ? words_[i] : ""; }

    /// Whether these words stand at a place, one after the other.
    template <std::size_t count>
    bool haveAt(std::size_t place, const std::array<std::string_view, count>& phrase) const
    {
        for (std::size_t i = 0; i < count; ++i)
            if ((*this)[place + i] != phrase[i])
                return false;
        return true;
    }

private:
    static bool isHarmless(std::string_view directive)
    {
        directive.remove_prefix(std::min(directive.find_first_not_of(" \t"), directive.size()));
        constexpr std::array kHarmless =
            std::to_array<std::string_view>({"version", "extension", "pragma", "line", "if", "el", "endif"});
        return directive.find("/*") == std::string_view::npos
            && std::ranges::any_of(
                kHarmless, [&](std::string_view word) { return directive.starts_with(word); });
    }

    std::vector<std::string_view> words_;
    bool isPlain_;
};

/// Whether a call of a function that reads a texture begins at the place. A definition of one's own is none.
bool readsAt(const Words& words, std::size_t place)
{
    if ((words[place] != "texture2D" && words[place] != "texture") || words[place + 1] != "(" || place == 0)
        return false;
    const std::string_view before = words[place - 1];
    return before == "return" || !isWordCharacter(before[0]);
}

bool definesReading(const Words& words)
{
    for (std::size_t i = 1; i < words.size(); ++i)
        if ((words[i] == "texture2D" || words[i] == "texture") && !readsAt(words, i))
            return true;
    return false;
}

/// Whether "textureCoord" is what the vertex program hands over wherever it is named.
bool placeIsTheVarying(const Words& words)
{
    constexpr std::array kValueFollows = std::to_array<std::string_view>(
        {"(", "=", "+", "-", "*", "/", "<", ">", "!", "?", ":", "{", "[", "&", "|", "return"});
    int declarations = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] != kPlace)
            continue;
        const bool begins =
            i == 2 || (i > 2 && (words[i - 3] == ";" || words[i - 3] == "}" || words[i - 3] == kDirective));
        if (begins && (words[i - 2] == "varying" || words[i - 2] == "in") && words[i - 1] == "vec2"
            && words[i + 1] == ";") {
            ++declarations;
            continue;
        }
        const bool isRead = i >= 4 && words[i - 1] == "," && words[i + 1] == ")" && readsAt(words, i - 4);
        const bool isValue = i > 0 && std::ranges::find(kValueFollows, words[i - 1]) != kValueFollows.end();
        if (!isRead && !isValue)
            return false;
    }
    return declarations == 1;
}

bool isReadAtOwnPixelOnly(const Words& words, std::string_view sampler)
{
    int declarations = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] != sampler)
            continue;
        if (i >= 2 && words.haveAt<4>(i - 2, {"uniform", "sampler2D", sampler, ";"}))
            ++declarations;
        else if (i < 2 || !readsAt(words, i - 2) || !words.haveAt<3>(i + 1, {",", kPlace, ")"}))
            return false;
    }
    return declarations == 1;
}

} // namespace

std::set<std::string> atOwnPixelOnly(const std::string& source)
{
    const Words words(source);
    std::set<std::string> found;
    if (!words.isPlain() || definesReading(words) || !placeIsTheVarying(words))
        return found;
    for (std::size_t i = 2; i < words.size(); ++i)
        if (words.haveAt<2>(i - 2, {"uniform", "sampler2D"}) && isReadAtOwnPixelOnly(words, words[i]))
            found.emplace(words[i]);
    return found;
}

} // namespace glslReads
