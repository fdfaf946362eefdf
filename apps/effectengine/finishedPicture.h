// Results that an earlier run has finished: what --skip-existing leaves as it is.
#pragma once

#include "effectengine/pictureList.h"

namespace tool {

/// Whether the file is a picture that is there to its end. What the structure does not tell is decoded.
bool isWholePicture(const std::filesystem::path& file);

/// Whether the job's output is there, whole, and not older than its input.
bool isFinished(const PictureJob& job);

} // namespace tool
