// The size at which effects work on a clip.
#pragma once

#include "effectengine/media/ClipReader.h"
#include "pixels/View.h"

namespace tool::media {

/// The size to work at: the named one, or the clip's, scaled down with a warning where it is too large for
/// the engine. Throws ToolError.
pixels::Extent workingSize(const ClipInfo& clip, const std::string& named);

/// The largest part of pictures of a size in which a clip keeps the shape that it is shown in; at least a
/// pixel.
/// @param pixelAspect  of those pictures; 0/1 for square pixels
pixels::Extent shapedLike(const ClipInfo& clip, pixels::Extent size, AVRational pixelAspect);

} // namespace tool::media
