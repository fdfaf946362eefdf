// The words of the warnings.
#include "effectengine/media/clipWarnings.h"

#include "effectengine/ToolError.h"

namespace tool::media {

void warn(const std::filesystem::path& clip, const std::string& what)
{
    tool::warn(clip.string() + ": " + what);
}

void warnOfDepth(const ClipInfo& clip)
{
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(clip.format);
    const bool highRange = isHighRange(clip.colour.transfer);
    if (format && format->comp[0].depth > 8 && !(format->flags & AV_PIX_FMT_FLAG_PAL))
        warn(clip.file,
            std::to_string(format->comp[0].depth) + " bits a channel become 8"
                + (clip.depth.dither ? " by dithering" : "")
                + (clip.isToneMapped() ? "; its high dynamic range is mapped to BT.709"
                        : highRange
                        ? "; its high dynamic range is kept as it is coded, and effects see the codes"
                        : ""));
}

void warnOfDamage(const ClipReader& reader)
{
    const std::set<long long>& frames = reader.damagedFrames();
    if (frames.empty())
        return;
    std::string which = "damaged at frame " + std::to_string(*frames.begin());
    if (frames.size() > 1)
        which +=
            " and " + std::to_string(frames.size() - 1) + " more up to " + std::to_string(*frames.rbegin());
    warn(reader.info().file, which + "; shown as far as it can be decoded");
}

} // namespace tool::media
