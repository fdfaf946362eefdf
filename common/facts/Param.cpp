// Titles of parameters from the words of their names.
#include "facts/Param.h"

#include "text/nameWords.h"

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

} // namespace KEXSDK
