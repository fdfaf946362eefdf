// gallery: a page that shows every effect on the user's picture.
#include "effectengine/EffectChoice.h"
#include "effectengine/PartialFile.h"
#include "effectengine/Progress.h"
#include "effectengine/ToolError.h"
#include "effectengine/Workers.h"
#include "effectengine/commands.h"
#include "effectengine/gallery/StagedDirectory.h"
#include "effectengine/gallery/effectPages.h"
#include "effectengine/gallery/galleryPage.h"
#include "effectengine/interruption.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <thread>

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr const char* kPage = "index.html";
constexpr const char* kPictures = "pictures";
constexpr const char* kPages = "pages";
constexpr long long kSeed = 1; ///< of random looks, so that one picture gives the same gallery every time

struct Options {
    fs::path directory;
    fs::path picture;
    std::optional<fs::path> second;
    EffectChoice choice;
    bool sweeps = true;
    bool pages = false;
    int processes = 0; ///< 0: one for each processor
    ProgressKind progress = ProgressKind::automatic;
};

bool isGallery(const fs::path& page)
{
    std::ifstream file(page, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.find(kPageMark) != std::string::npos;
}

// Refuses a directory that holds files of others: a gallery replaces an earlier gallery and nothing else.
void checkDirectory(const fs::path& directory)
{
    if (isGallery(directory / kPage))
        return;
    for (const char* const name : {kPage, kPictures, kPages}) {
        if (fs::exists(directory / name))
            throw ToolError(ExitCode::cannotWrite,
                (directory / name).string() + " is in the way; it belongs to no gallery");
    }
}

ExitCode makePictures(const Options& options, const SessionOptions& session,
    const std::vector<KEXSDK::EffectInfo>& effects, const GalleryLayout& layout, const fs::path& directory)
{
    struct Studio {
        Studio(const Options& o, const SessionOptions& s, const GalleryLayout& l, const fs::path& d)
            : session(s),
              scene(l, o.picture, o.second),
              pictures(l, scene, d, o.sweeps)
        {
        }
        Session session;
        GalleryScene scene;
        EffectPictures pictures;
    };
    const int processors = std::max(1, int(std::thread::hardware_concurrency()));
    const int processes =
        std::min(options.processes > 0 ? options.processes : processors, int(effects.size()));
    const Workers workers(effects.size(), [&](std::size_t i) { return "effect " + effects[i].name; });
    Progress progress(options.progress, "effects", int(effects.size()));
    const Workers::Result result = workers.run(
        processes,
        [&]() -> Workers::Work {
            const auto studio = std::make_shared<Studio>(options, session, layout, directory);
            return [studio, &effects](std::size_t i) {
                if (i == 0)
                    studio->pictures.saveInputs();
                studio->pictures.make(effects[i]);
                return Workers::Piece::done;
            };
        },
        progress);
    stopIfAsked();
    return result.code();
}

void gallery(const Options& options, SessionOptions session)
{
    const auto effects = chosen(options.choice);
    if (effects.empty())
        throw ToolError(ExitCode::usage, "no effect is left to show");
    const GalleryLayout layout = layoutFor(sizeOf(options.picture));
    if (options.second)
        sizeOf(*options.second);
    checkDirectory(options.directory);
    if (!session.seed)
        session.seed = kSeed;

    StagedDirectory staged(options.directory);
    const fs::path pictures = staged.path() / kPictures;
    makeDirectory(pictures);
    const ExitCode code = makePictures(options, session, effects, layout, pictures);
    // A gallery without the effects that failed is still of use; after other failures there is none.
    if (code != ExitCode::success && code != ExitCode::effectFailed && code != ExitCode::internal)
        throw AlreadyReported(code);
    const Json::Value data = galleryData(effects, layout, pictures);
    writeTextFile(staged.path() / kPage, galleryPage(data, options.picture.filename().string()));
    if (options.pages) {
        makeDirectory(staged.path() / kPages);
        writeEffectPages(data, staged.path() / kPages);
    }
    staged.publish({kPictures, kPages, kPage});
    if (code != ExitCode::success)
        throw AlreadyReported(code);
}

} // namespace

void addGalleryCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand(
        "gallery", "Makes a page of effects on a picture, with loops and parameter sweeps.");
    command
        ->add_option("DIR", options->directory,
            "where index.html and its pictures go; an earlier gallery there is replaced")
        ->required()
        ->type_name("");
    command->add_option("PICTURE", options->picture, "picture that the effects are shown on")
        ->required()
        ->type_name("");
    command
        ->add_option("--with", options->second,
            "second picture of transitions (default: PICTURE mirrored, without colour)")
        ->type_name("FILE");
    command->add_option("-e,--effect", options->choice.names, "only this effect; repeat for more")
        ->allow_extra_args(false)
        ->type_name("EFFECT");
    addChoiceOptions(*command, options->choice);
    command->add_flag("!--no-sweeps", options->sweeps, "leave the parameter sweeps out");
    command->add_flag("--pages", options->pages, "write a page for every effect as well, without scripts");
    command->add_option("-j,--jobs", options->processes, "processes (default: processors)")
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
    addProgressOption(*command, options->progress);
    command->footer("Examples:\n"
                    "  effectengine gallery looks/ photo.jpg\n"
                    "  effectengine gallery transitions/ a.jpg --with b.jpg --kind transition");
    command->callback([options, &session] { interruptibly([&] { gallery(*options, session); }); });
}

} // namespace tool
