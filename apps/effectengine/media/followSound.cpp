// The way from a clip's sound to the curves of a look.
#include "effectengine/media/followSound.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/ClipReader.h"
#include "effectengine/media/soundLevels.h"

namespace tool::media {

namespace {

double firstFrameOf(const ClipSource& clip)
{
    ClipReader reader(clip);
    const Frame frame = makeFrame();
    reader.next(*frame);
    return double(reader.firstTime()) * av_q2d(reader.info().timeBase);
}

} // namespace

void followSound(LookRun& run, const Look& look, const ClipSource& clip)
{
    const std::span wanted(look.info().bands, look.info().bandCount);
    if (wanted.empty())
        return;
    if (clip.passesOnce() || clip.isRaw())
        throw ToolError(ExitCode::usage,
            clip.name().string()
                + ": parameters that follow sound need a file, whose sound is heard beforehand");
    std::vector<Band> bands;
    for (const EffectHostBand& band : wanted)
        bands.push_back({band.lowHertz, band.highHertz});
    const auto levels = soundLevels(clip.path(), bands, firstFrameOf(clip));
    for (std::size_t i = 0; i < wanted.size(); ++i)
        run.setCurve(wanted[i].name, levels[i], BandMeter::kRate);
}

} // namespace tool::media
