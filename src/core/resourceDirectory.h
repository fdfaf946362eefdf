// Where the files lie that effects open themselves.
#pragma once

#include <string>

namespace core {

/// The directory that the engine was initialised with last, with its trailing separator; empty, which is the
/// current directory, before that. Safe on every thread.
std::string resourceDirectory();

/// Names it, for effects that are asked for a file from now on.
void setResourceDirectory(const std::string& directory);

} // namespace core
