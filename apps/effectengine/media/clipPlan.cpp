// Clips in the words of a plan.
#include "effectengine/media/clipPlan.h"

namespace tool::media {

PlannedFile plannedInput(ClipReader& reader)
{
    const ClipInfo& clip = reader.info();
    PlannedFile file{clip.source.file, PictureSize{unsigned(clip.width), unsigned(clip.height)}};
    file.facts.emplace_back("codec", avcodec_get_name(clip.codec));
    file.facts.emplace_back("pixelFormat", av_get_pix_fmt_name(clip.format));
    file.facts.emplace_back("rate", clip.rate());
    if (!clip.source.passesOnce())
        file.facts.emplace_back("frames", Json::Int64(reader.table().count()));
    if (clip.duration > 0)
        file.facts.emplace_back("seconds", clip.duration);
    return file;
}

PlannedFile plannedOutput(const std::filesystem::path& out, const ClipPart& part, pixels::Extent size)
{
    PlannedFile file{out, PictureSize{unsigned(size.width), unsigned(size.height)}};
    file.facts.emplace_back("firstFrame", Json::Int64(part.frames.first));
    if (part.frames.last != FrameRange::kOpen)
        file.facts.emplace_back("lastFrame", Json::Int64(part.frames.last));
    if (part.times.start > 0)
        file.facts.emplace_back("start", part.times.start);
    if (part.times.end != TimeRange().end)
        file.facts.emplace_back("end", part.times.end);
    return file;
}

PlannedStep plannedStep(ClipReader& reader, CompanionClips& companions)
{
    PlannedStep step;
    step.reads.push_back(plannedInput(reader));
    for (ClipReader* const companion : companions.readers())
        step.reads.push_back(plannedInput(*companion));
    return step;
}

} // namespace tool::media
