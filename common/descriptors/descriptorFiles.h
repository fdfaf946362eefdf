// Where descriptor files are found, and how much of them is read.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace shader {

/// GUID to path of the descriptor file.
using DescriptorMap = std::map<std::string, std::string, std::less<>>;

/// The directories of descriptors below the resource directory, in the order in which they claim GUIDs.
inline constexpr const char* kShaderDirectory = "Shader/";
inline constexpr const char* kLookupDirectory = "Shader/lookup/";
inline constexpr const char* kTransitionDirectory = "Transitions/";
inline constexpr std::array kDescriptorDirectories{kShaderDirectory, kLookupDirectory, kTransitionDirectory};

/// Receives an entry of the map with the whole file.
using Entered = std::function<void(const std::string& guid, const std::string& path, std::string_view bytes)>;

/// Enters every descriptor of one directory, by file name, under the first GUID in it that nobody has
/// claimed. Only files whose names hold ".conf" count, and no directories below this one. A directory that is
/// missing counts as empty.
/// @param directory  with its trailing separator; stands before the file names as it is
/// @param entered    called for each new entry
void scanDescriptors(const std::string& directory, DescriptorMap& map, const Entered& entered = {});

enum class SmallFile { read, missing, tooLarge };

/// The bytes of a regular file of at most 1 MiB: reading anything else could take for ever.
SmallFile readSmallFile(const std::string& path, std::string& bytes);

} // namespace shader
