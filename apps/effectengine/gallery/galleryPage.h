// The page of a gallery: one HTML file with the catalogue, the names of the pictures, style and script.
#pragma once

#include "effectengine/gallery/EffectPictures.h"

#include <json/value.h>

#include <span>

namespace tool {

/// The mark in pages of this tool, which it may replace.
inline constexpr const char* kPageMark = "<meta name=\"generator\" content=\"effectengine gallery\">";

/// The facts of the effects as in the catalogue, each with a member "pictures" that names its files, as far
/// as they are in the directory: {"still", "small", "loop", "sweeps": [{"name", "file", "values", "labels"}],
/// "examples": {NAME: VALUE}}. Values are texts for a command line.
Json::Value galleryData(std::span<const KEXSDK::EffectInfo> effects, const GalleryLayout& layout,
    const std::filesystem::path& pictures);

/// The page as HTML. It needs the directory "pictures" beside it and nothing else.
/// @param title  of the picture that the effects are shown on
std::string galleryPage(const Json::Value& data, const std::string& title);

} // namespace tool
