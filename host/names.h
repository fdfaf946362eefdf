// What people may call effects and parameters: by name or title, in any spelling.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Something with a name and a title.
struct Named {
    std::string name;
    std::string title;
};

/// Index of what a word means: the one of exactly this name, otherwise the one whose name or title is the
/// same when folded (text/nearest.h); no value when there is none. Throws GraphError that names them when
/// there are several.
std::optional<std::size_t> meant(const std::vector<Named>& all, std::string_view word);

/// `; did you mean "NAME"?` with the name or the title nearest to what was typed, or "" without candidates.
std::string didYouMean(const std::vector<Named>& candidates, std::string_view typed);

} // namespace host
