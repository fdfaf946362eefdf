// Sizes from the command line, the engine's limits and the clip's shape.
#include "effectengine/media/workingSize.h"

#include "effectengine/media/clipWarnings.h"
#include "effectengine/pictureFiles.h"

#include <algorithm>
#include <cmath>

namespace tool::media {

pixels::Extent workingSize(const ClipInfo& clip, const std::string& named)
{
    PictureSize size{unsigned(clip.width), unsigned(clip.height)};
    if (!named.empty()) {
        size = parseSize(named);
    } else {
        size = fitted(size);
        if (int(size.width) != clip.width || int(size.height) != clip.height)
            warn(clip.file,
                "scaled from " + std::to_string(clip.width) + " x " + std::to_string(clip.height) + " to "
                    + std::to_string(size.width) + " x " + std::to_string(size.height));
    }
    return {int(size.width), int(size.height)};
}

pixels::Extent shapedLike(const ClipInfo& clip, pixels::Extent size, AVRational pixelAspect)
{
    const auto ratio = [](AVRational aspect) {
        return aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1.0;
    };
    const double shape = double(clip.width) / clip.height * ratio(clip.sampleAspect) / ratio(pixelAspect);
    const auto rounded = [](double side, int most) {
        return int(std::clamp(std::round(side), 1.0, double(most)));
    };
    if (size.height * shape < size.width)
        return {rounded(size.height * shape, size.width), size.height};
    return {size.width, rounded(size.width / shape, size.height)};
}

} // namespace tool::media
