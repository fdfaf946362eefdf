// Pages for reading: one for every effect, without scripts, and an index.
#pragma once

#include <json/value.h>

#include <filesystem>

namespace tool {

/// Writes NAME.html for each effect, index.html and style.css into the directory, which must exist; pictures
/// are in "../pictures". Throws ToolError.
/// @param data  what galleryData() gave
void writeEffectPages(const Json::Value& data, const std::filesystem::path& directory);

} // namespace tool
