// The way from a clip's sound to the curves of a look.
#include "effectengine/media/followSound.h"

#include "effectengine/media/ClipReader.h"
#include "effectengine/media/soundLevels.h"

namespace tool::media {

namespace {

double firstFrameOf(const std::filesystem::path& clip)
{
    ClipReader reader(clip);
    const Frame frame = makeFrame();
    reader.next(*frame);
    return double(reader.firstTime()) * av_q2d(reader.info().timeBase);
}

} // namespace

void followSound(LookRun& run, const Look& look, const std::filesystem::path& clip)
{
    const std::span wanted(look.info().bands, look.info().bandCount);
    if (wanted.empty())
        return;
    std::vector<Band> bands;
    for (const EffectHostBand& band : wanted)
        bands.push_back({band.lowHertz, band.highHertz});
    const auto levels = soundLevels(clip, bands, firstFrameOf(clip));
    for (std::size_t i = 0; i < wanted.size(); ++i)
        run.setCurve(wanted[i].name, levels[i], BandMeter::kRate);
}

} // namespace tool::media
