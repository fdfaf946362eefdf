// Modules of the tool for further kinds of pictures and for colours, opened when they are first needed.
#pragma once

#include "effectengine/formats/ColourConversion.h"
#include "effectengine/formats/PictureFormat.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tool {

enum class FurtherKind { webp, avif, tiff, jxl };

/// The kind that a file's first bytes tell, or a name's extension with its dot, in lower case.
std::optional<FurtherKind> furtherKindOf(std::span<const u8> file);
std::optional<FurtherKind> furtherKindNamed(const std::string& extension);

/// What reads and writes pictures of a kind. Throws ToolError when its module or a library of that is
/// missing.
const PictureFormat& formatOf(FurtherKind kind);
const ColourConversion& colourConversion();

} // namespace tool
