// One rule for every word that stands for an effect or a parameter.
#include "host/names.h"

#include "host/GraphError.h"
#include "text/nearest.h"

#include <algorithm>

namespace host {

std::optional<std::size_t> meant(const std::vector<Named>& all, std::string_view word)
{
    if (const auto exact = std::ranges::find(all, word, &Named::name); exact != all.end())
        return exact - all.begin();
    const std::string wanted = text::folded(word);
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < all.size() && !wanted.empty(); ++i) {
        if (text::folded(all[i].name) != wanted && text::folded(all[i].title) != wanted)
            continue;
        const auto shown = [&](std::size_t at) { return all[at].name + " (" + all[at].title + ")"; };
        if (found)
            throw GraphError(GraphFault::content,
                '"' + std::string(word) + "\" can mean " + shown(*found) + " or " + shown(i));
        found = i;
    }
    return found;
}

std::string didYouMean(const std::vector<Named>& candidates, std::string_view typed)
{
    std::vector<std::string_view> words; // of a name and a title equally near, the name
    for (const Named& one : candidates)
        words.push_back(one.name);
    for (const Named& one : candidates)
        words.push_back(one.title);
    return text::didYouMean(words, typed);
}

} // namespace host
