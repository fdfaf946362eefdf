// Proposals for mistyped names: the known name that takes the fewest edits, whatever its spelling.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace text {

/// A word without its spaces, hyphens and underscores, and with small letters of ASCII for capitals:
/// "splitsize" for "Split Size" and "split-size".
std::string folded(std::string_view word);

/// The candidate nearest to what was typed, both folded, or "" when there is none; of several the
/// first.
std::string nearest(const std::vector<std::string_view>& candidates, std::string_view typed);

/// `; did you mean "NAME"?`, or "" without candidates.
std::string didYouMean(const std::vector<std::string_view>& candidates, std::string_view typed);

} // namespace text
