// "Did you mean": the name that takes the fewest edits.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The candidate nearest to what was typed, or "" when there is none.
std::string nearest(const std::vector<std::string_view>& candidates, std::string_view typed);

/// `; did you mean "NAME"?`, or "" without candidates.
std::string didYouMean(const std::vector<std::string_view>& candidates, std::string_view typed);

} // namespace host
