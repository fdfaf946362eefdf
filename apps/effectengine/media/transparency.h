// Whether an output is transparent, and what is said when it cannot be.
#pragma once

#include "effectengine/clipVerbs.h"
#include "effectengine/media/ClipReader.h"
#include "pixels/View.h"

#include <vector>

namespace tool::media {

/// Whether an output is to be transparent where its frames are. For the automatic choice this looks through
/// those clips whose format has room for transparency, up to the first frame with any; of clips that pass
/// once, room is enough. Effects on opaque clips may leave what they like in the alpha channel.
bool keepsAlpha(AlphaChoice choice, const AVCodec& encoder, const std::vector<const ClipInfo*>& clips);

/// Warns once when a picture of the clip is transparent and the output cannot be.
class AlphaWarning {
public:
    AlphaWarning(const ClipInfo& clip, AlphaChoice choice, AVPixelFormat output);
    void look(pixels::ConstView picture);

private:
    const ClipInfo& clip_;
    bool looks_;
};

} // namespace tool::media
