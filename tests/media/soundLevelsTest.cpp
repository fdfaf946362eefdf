// Curves of loudness against clips with sounds at known times, made by ffmpeg.
#include "effectengine/media/soundLevels.h"

#include "support/TemporaryDirectory.h"

extern "C" {
#include <libavutil/cpu.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using tool::media::Band;
using Levels = std::vector<std::vector<float>>;

constexpr Band kBass{20, 250};
constexpr Band kMid{250, 4000};
constexpr Band kTreble{4000, 16000};
constexpr Band kBands[]{kBass, kMid, kTreble};

/// Seconds, less than a frame of a clip; MP3 begins with the delay of its encoder.
constexpr double kClose = 0.025;

/// Swells of 60 Hz around second 1, of 1 kHz around 2.5, and of 8 kHz, much softer, around 4.
constexpr double kSwells[]{1, 2.5, 4};
const std::string kThreeSwells = "-f lavfi -i \"aevalsrc='0.8*sin(2*PI*60*t)*exp(-pow((t-1)/0.05,2))"
                                 "+0.3*sin(2*PI*1000*t)*exp(-pow((t-2.5)/0.05,2))"
                                 "+0.03*sin(2*PI*8000*t)*exp(-pow((t-4)/0.05,2))':s=48000:d=5\" ";

class SoundLevels : public testing::Test {
protected:
    /// The path of a file that ffmpeg makes with these arguments.
    std::string make(const std::string& name, const std::string& arguments) const
    {
        const std::string file = files_.path() + name;
        const std::string command = "ffmpeg -v error -y " + arguments + " " + file;
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return file;
    }

    Levels levels(const std::string& file, double origin = 0, int track = 0) const
    {
        return tool::media::soundLevels(file, kBands, origin, track);
    }

    test::TemporaryDirectory files_;
};

float at(const std::vector<float>& curve, double seconds)
{
    const auto sample = std::size_t(std::lround(seconds * tool::media::BandMeter::kRate));
    return sample < curve.size() ? curve[sample] : 0;
}

double peakOf(const std::vector<float>& curve)
{
    return double(std::ranges::max_element(curve) - curve.begin()) / tool::media::BandMeter::kRate;
}

/// Each band is loudest at its own swell, where the others are silent.
void expectSwells(const Levels& levels, double shift = 0)
{
    for (std::size_t band = 0; band < std::size(kBands); ++band) {
        ASSERT_FALSE(levels[band].empty());
        EXPECT_NEAR(peakOf(levels[band]), kSwells[band] + shift, kClose) << "band " << band;
        EXPECT_EQ(std::ranges::max(levels[band]), 1.0F);
        for (std::size_t other = 0; other < std::size(kBands); ++other)
            EXPECT_EQ(at(levels[other], kSwells[band] + shift) < 0.1F, other != band)
                << other << " at " << band;
    }
}

TEST_F(SoundLevels, OfEachBandPeakWhereItIsLoudestWhateverTheFile)
{
    const std::string picture = "-f lavfi -i testsrc2=s=32x32:r=25:d=5 ";
    const std::pair<const char*, std::string> kFiles[]{
        {"float.wav", "-c:a pcm_f32le"},
        {"small.wav", "-ar 22050 -ac 1 -c:a pcm_u8"},
        {"stereo.mp3", "-ac 2"},
        {"surround.ac3", "-ac 6"},
        {"deep.flac", "-ar 96000 -sample_fmt s32"},
        {"plain.ogg", "-ac 2 -c:a libvorbis"},
        {"speech.opus", "-c:a libopus"},
        {"clip.mp4", picture + "-ac 2 -ar 44100"},
        {"clip.webm", picture + "-c:v libvpx -c:a libopus"},
        {"clip.mkv", picture + "-c:a pcm_s24le"},
        {"clip.avi", picture + "-c:v mpeg4 -c:a mp2"},
    };
    for (const auto& [name, arguments] : kFiles) {
        SCOPED_TRACE(name);
        const std::string file = make(name, kThreeSwells + arguments);
        const Levels found = levels(file);
        if (std::string_view(name) == "small.wav") // 8 bits are too coarse for the soft sounds
            EXPECT_NEAR(peakOf(found[0]), kSwells[0], kClose);
        else
            expectSwells(found);
    }
}

TEST_F(SoundLevels, AreHalvedByTwelveDecibelsAndZeroAtSixty)
{
    const std::string file = make("steps.wav",
        "-f lavfi -i \"aevalsrc='sin(2*PI*1000*t)*(lt(t,1)+between(t,1,2)/3.981+between(t,2,3)/31.62"
        "+between(t,3,4)/1050)':s=48000:d=4\" -c:a pcm_f32le");
    const std::vector<float> mid = levels(file)[1];
    EXPECT_NEAR(at(mid, 0.5), 1, 1e-3);
    EXPECT_NEAR(at(mid, 1.5), (0.5012 - 0.0316) / (1 - 0.0316), 1e-3);
    EXPECT_NEAR(at(mid, 2.5), (0.1778 - 0.0316) / (1 - 0.0316), 1e-3);
    EXPECT_EQ(at(mid, 3.5), 0);
    EXPECT_EQ(mid.back(), 0) << "behind the end it is silent";
}

TEST_F(SoundLevels, CountFromTheOriginAndKeepTheirPlacesAcrossHoles)
{
    const std::string plain = make("plain.wav", kThreeSwells);
    expectSwells(levels(plain, -0.75), 0.75);
    const std::vector<float> mid = levels(plain, 1.3)[1];
    EXPECT_NEAR(peakOf(mid), 1.2, kClose) << "second 0 lies within the sound";
    // A second is missing before the second swell; the samples before and after are told apart by times
    // alone.
    const std::string hole =
        make("hole.mkv", kThreeSwells + "-c:a pcm_s16le -bsf:a \"setts=ts=TS+1000*gte(N\\,84)\"");
    const Levels found = levels(hole);
    EXPECT_NEAR(peakOf(found[0]), 1, kClose);
    EXPECT_NEAR(peakOf(found[1]), 3.5, kClose);
    EXPECT_NEAR(peakOf(found[2]), 5, kClose);
}

TEST_F(SoundLevels, OfATrackThatWasChosen)
{
    const std::string file = make("two.mkv",
        kThreeSwells
            + "-f lavfi -i \"aevalsrc='sin(2*PI*1000*t)*exp(-pow((t-0.5)/0.05,2))':d=1\" -map 0 -map 1");
    expectSwells(levels(file, 0, 0));
    EXPECT_NEAR(peakOf(levels(file, 0, 1)[1]), 0.5, kClose);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(levels(file, 0, 2)[1].empty());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("no sound"), std::string::npos);
}

TEST_F(SoundLevels, AreZeroInSilentBands)
{
    const auto loudest = [](const std::vector<float>& curve) { return std::ranges::max(curve); };
    const std::string tone =
        make("tone.wav", "-f lavfi -i sine=1000:d=2 -af afade=d=0.3,afade=out:st=1.7:d=0.3 -c:a pcm_f32le");
    const Levels ofTone = levels(tone);
    EXPECT_EQ(loudest(ofTone[0]), 0) << "what leaks into other bands is no sound";
    EXPECT_EQ(loudest(ofTone[1]), 1);
    EXPECT_EQ(loudest(ofTone[2]), 0);
    for (const char* silence : {"anullsrc=d=1", "anoisesrc=d=1:a=0.00002"})
        for (const std::vector<float>& curve :
            levels(make("silence.wav", "-f lavfi -i " + std::string(silence) + " -c:a pcm_f32le")))
            EXPECT_EQ(loudest(curve), 0) << silence;
}

TEST_F(SoundLevels, OfBandsNarrowerThanTheTransformTells)
{
    const std::string file = make("two.wav",
        "-f lavfi -i \"aevalsrc='sin(2*PI*440*t)*lt(t,1)+sin(2*PI*880*t)*gt(t,1.5)':s=48000:d=3\" -c:a "
        "pcm_f32le");
    constexpr Band kNarrow[]{{439.9, 440.1}, {879.9, 880.1}, {30000, 40000}};
    const Levels found = tool::media::soundLevels(file, kNarrow, 0);
    EXPECT_GT(at(found[0], 0.5), 0.99);
    EXPECT_LT(at(found[0], 2.5), 0.01);
    EXPECT_LT(at(found[1], 0.5), 0.01);
    EXPECT_GT(at(found[1], 2.5), 0.99);
    EXPECT_EQ(std::ranges::max(found[2]), 0) << "above what the file can hold";
}

TEST_F(SoundLevels, AreTheSameOnEveryProcessor)
{
    for (const char* name : {"clip.m4a", "clip.mp3", "clip.ac3", "clip.flac", "clip.wav"}) {
        const std::string file =
            make(name, kThreeSwells + "-f lavfi -i anoisesrc=d=5:seed=3 -lavfi amix -ac 2");
        const Levels usual = levels(file);
        av_force_cpu_flags(0);
        const Levels plain = levels(file);
        av_force_cpu_flags(-1);
        EXPECT_EQ(usual, plain) << name;
        EXPECT_GT(usual[0].size(), 490U);
    }
}

TEST_F(SoundLevels, OfDamagedSoundAreThoseOfTheRest)
{
    const std::string file = make("damaged.mkv",
        kThreeSwells + "-c:a libmp3lame -bsf:a \"noise=amount=if(between(n\\,60\\,64)\\,2\\,0)\"");
    const Levels found = levels(file);
    EXPECT_NEAR(peakOf(found[0]), kSwells[0], kClose);
    EXPECT_GT(at(found[2], kSwells[2]), 0.5);
}

} // namespace
