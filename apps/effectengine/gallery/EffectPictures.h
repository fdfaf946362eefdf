// The pictures of one effect in a gallery: a still, a loop in motion, and a sweep of each parameter.
#pragma once

#include "effectengine/gallery/GalleryScene.h"
#include "effectengine/gallery/Strip.h"
#include "effectengine/gallery/sweepSteps.h"
#include "hosting/Host.h"

namespace tool {

/// How a loop is recorded and played.
inline constexpr unsigned kLoopFrames = 24;
inline constexpr unsigned kLoopRate = 12;

/// The moment that stands for an effect that moves, and the duration of the effect, in seconds: the middle,
/// and late enough for particles to have filled the picture.
inline constexpr unsigned kMoment = 4;
inline constexpr unsigned kDuration = 2 * kMoment;

// File names of the pictures that effects are shown on. No effect has such a name.
inline constexpr const char* kOriginalFile = "first.input.jpg";
inline constexpr const char* kSecondFile = "second.input.jpg";

// File names of an effect's pictures. Not every effect has a loop, and not every parameter a sweep.
std::string stillFile(const KEXSDK::EffectInfo& effect);
std::string thumbnailFile(const KEXSDK::EffectInfo& effect);
std::string loopFile(const KEXSDK::EffectInfo& effect);
/// @param parameter  its place in describeParameters()
std::string sweepFile(const KEXSDK::EffectInfo& effect, std::size_t parameter);

/// Makes the files of effects, one after another.
class EffectPictures {
public:
    /// Throws ToolError.
    EffectPictures(
        const GalleryLayout& layout, GalleryScene& scene, std::filesystem::path directory, bool sweeps);

    /// Saves what the effects are shown on. Throws ToolError.
    void saveInputs();

    /// Throws ToolError and host::Failure.
    void make(const KEXSDK::EffectInfo& effect);

private:
    /// The frames that an effect is shown by, counted from a fresh start.
    struct Course {
        unsigned first;  ///< the first frame that is recorded
        unsigned count;  ///< how many are recorded
        unsigned poster; ///< the frame that stands for all
        unsigned stride = 1;
        bool drifting = false;
    };
    struct Recording {
        Strip still;
        Strip thumbnail;
        Strip loop;
    };
    class Run;

    Course courseOf(const KEXSDK::EffectInfo& effect);
    bool moves(const KEXSDK::EffectInfo& effect);
    Recording record(const KEXSDK::EffectInfo& effect, const Course& course);
    void makeSweeps(const KEXSDK::EffectInfo& effect, Course course);
    void makeSweep(const KEXSDK::EffectInfo& effect, const Course& course, const KEXSDK::ParamInfo& param,
        const std::string& file);

    GalleryLayout layout_;
    GalleryScene& scene_;
    std::filesystem::path directory_;
    bool sweeps_;
};

} // namespace tool
