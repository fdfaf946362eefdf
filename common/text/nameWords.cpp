// Splits names into words: a word starts where upper case follows lower case, and at the last capital of
// several.
#include "text/nameWords.h"

namespace KEXSDK {

namespace {

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isInWord(char c) { return isUpper(c) || isLower(c) || (c >= '0' && c <= '9'); }

} // namespace

std::vector<std::string_view> wordsOf(std::string_view name)
{
    const auto at = [&](std::size_t i) { return i < name.size() ? name[i] : '\0'; };
    const auto endsBefore = [&](std::size_t i) {
        return !isInWord(at(i))
            || (isUpper(at(i)) && (isLower(at(i - 1)) || (isUpper(at(i - 1)) && isLower(at(i + 1)))));
    };
    std::vector<std::string_view> words;
    for (std::size_t first = 0; first < name.size();) {
        std::size_t end = first + 1;
        if (isInWord(name[first])) {
            while (!endsBefore(end))
                ++end;
            words.push_back(name.substr(first, end - first));
        }
        first = end;
    }
    return words;
}

} // namespace KEXSDK
