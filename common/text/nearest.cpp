// The search by edit distance, which counts letters put in, left out and replaced.
#include "text/nearest.h"

#include <algorithm>
#include <numeric>

namespace text {

namespace {

std::size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string folded(std::string_view word)
{
    std::string text;
    for (const char c : word) {
        if (c != ' ' && c != '-' && c != '_')
            text += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
    }
    return text;
}

std::string nearest(const std::vector<std::string_view>& candidates, std::string_view typed)
{
    const auto best = std::ranges::min_element(
        candidates, {}, [&](std::string_view c) { return editDistance(folded(c), folded(typed)); });
    return best == candidates.end() ? std::string() : std::string(*best);
}

std::string didYouMean(const std::vector<std::string_view>& candidates, std::string_view typed)
{
    const std::string name = nearest(candidates, typed);
    return name.empty() ? name : "; did you mean \"" + name + "\"?";
}

} // namespace text
