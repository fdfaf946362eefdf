// Lookup tables as files: the Cube text format and the 3DL format.
#pragma once

#include "core/Types.h"

#include <array>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace lut {

/// How a file was read; the numbers are those of the Cube format's sample parser.
enum class LutStatus : i32 {
    success = 0,
    notInitialised = 1,
    readError = 10,
    prematureEnd = 12,
    lineError = 13,
    badKeyword = 20,
    titleWithoutQuote = 21,
    domainReversed = 22,
    sizeOutOfRange = 23,
    unusableTable = 24,
};

/// Entries per axis that the table of a node has room for.
inline constexpr int kLargestLut = 64;

/// Output colour on a 0..255 scale; nothing limits it to that range.
struct LutEntry {
    float r, g, b;
    friend constexpr bool operator==(LutEntry, LutEntry) = default;
};

/// What a file holds, or why it was refused.
struct LutFile {
    LutStatus status = LutStatus::notInitialised;
    int line = 0;       ///< that a refusal is about; 0 when it is about the whole file
    std::string reason; ///< of a refusal

    std::string title;
    int size = 0; ///< N, entries per axis
    std::array<float, 3> domainMin{0, 0, 0};
    std::array<float, 3> domainMax{1, 1, 1};
    std::vector<LutEntry> entries; ///< N x N x N in the order of the file; empty after a refusal
    int incompleteLines = 0;       ///< table lines with fewer than three numbers; the missing ones are 0
    int firstIncompleteLine = 0;
};

// Every input gives a result; memory is asked for only after the size was found to be in range. They throw
// std::bad_alloc. Numbers are read as in the C locale.
LutFile parseCube(std::istream& stream);
LutFile parse3dl(std::istream& stream);

enum class LutFormat { none, cube, threeDl };

/// What the characters from the last dot of the path on name, in any letter case.
LutFormat formatOf(std::string_view path);

/// Opens a file for reading; false for everything that is no readable regular file.
bool openLut(const std::string& path, std::ifstream& stream);

} // namespace lut
