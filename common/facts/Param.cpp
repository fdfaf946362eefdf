// Titles of parameters from the words of their names, and the values of modes.
#include "facts/Param.h"

#include "text/nameWords.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace KEXSDK {

std::string titleOf(const ParamInfo& info)
{
    std::string_view name = info.name;
    if (*info.title)
        return info.title;
    if (name.starts_with("u_")) // how shader programs mark their uniforms
        name.remove_prefix(2);
    std::string title;
    for (const std::string_view word : wordsOf(name)) {
        title += title.empty() ? "" : " ";
        title += word[0] >= 'a' && word[0] <= 'z' ? char(word[0] - 'a' + 'A') : word[0];
        title += word.substr(1);
    }
    return title.empty() ? info.name : title;
}

std::vector<std::pair<int, std::string>> choicesOf(const ParamInfo& info)
{
    std::vector<std::pair<int, std::string>> choices;
    std::string_view rest = info.choices;
    while (!rest.empty()) {
        const std::string_view one = rest.substr(0, rest.find(", "));
        rest.remove_prefix(std::min(rest.size(), one.size() + 2));
        int value = 0;
        const auto [end, error] = std::from_chars(one.data(), one.data() + one.size(), value);
        const std::string_view label = one.substr(std::size_t(end - one.data()));
        if (error == std::errc() && label.starts_with(' '))
            choices.emplace_back(value, label.substr(1));
    }
    return choices;
}

} // namespace KEXSDK
