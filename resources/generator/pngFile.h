// Saving of painted pictures as PNG files.
#pragma once

#include "Picture.h"

#include <filesystem>

namespace artwork {

/// Writes the picture in the smallest fitting kind: grey or colour, with alpha only where some pixel is not
/// opaque. The file appears complete or not at all. Throws std::runtime_error.
void save(const Picture& picture, const std::filesystem::path& file);

} // namespace artwork
