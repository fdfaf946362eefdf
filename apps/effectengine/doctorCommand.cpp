// doctor: tells whether everything is there that the engine can use, and what to do where it is not.
#include "effectengine/Session.h"
#include "effectengine/ToolError.h"
#include "effectengine/clipVerbs.h"
#include "effectengine/commands.h"
#include "effectengine/effectList.h"
#include "effectengine/pictureFiles.h"
#include "hosting/exampleValues.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

namespace tool {

namespace fs = std::filesystem;

namespace {

/// Prints a line for each finding, and notes the worst of them for the exit code.
class Examination {
public:
    void good(const std::string& what, const std::string& found) const { line("ok", what, found); }
    void note(const std::string& what, const std::string& found) const { line("note", what, found); }
    void bad(ExitCode code, const std::string& what, const std::string& found, const std::string& remedy)
    {
        line("BAD", what, found);
        std::printf("      %-11s -> %s\n", "", remedy.c_str());
        if (worst_ == ExitCode::success)
            worst_ = code;
    }
    ExitCode worst() const { return worst_; }

private:
    static void line(const char* state, const std::string& what, const std::string& found)
    {
        std::printf("%-5s %-11s %s\n", state, what.c_str(), found.c_str());
        std::fflush(stdout);
    }
    ExitCode worst_ = ExitCode::success;
};

fs::path examineResources(Examination& examination, const SessionOptions& options)
{
    fs::path directory;
    try {
        directory = resourceDirectory(options.resources);
    } catch (const ToolError& error) {
        examination.bad(error.code(), "resources", error.what(),
            "install the resources beside the tool (share/effectengine), or name them with --resources");
        return {};
    }
    examination.good("resources", directory.string());
    for (const char* const name : {"resources.cfg", "plugins.cfg"}) {
        if (!fs::exists(directory / name))
            examination.bad(ExitCode::missingInput, "resources", std::string(name) + " is missing",
                "install the resources anew");
    }
    return directory;
}

std::string logText(const fs::path& directory, const char* name)
{
    std::ifstream stream(directory / name);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// The value behind a key in the logs, such as "llvmpipe" in "GL_RENDERER = llvmpipe": the latest, since
// earlier runs may have left logs in the same directory.
std::string noted(const std::string& log, const std::string& key)
{
    const std::size_t at = log.rfind(key);
    if (at == std::string::npos)
        return {};
    const std::size_t begin = log.find_first_not_of(" =", at + key.size());
    return log.substr(begin, log.find('\n', begin) - begin);
}

// Whether the engine makes effects that need the GPU: without one it does not know them.
bool drawsEffects()
{
    return std::ranges::any_of(listEffects(), [](const KEXSDK::EffectInfo& effect) {
        if (!effect.needsGpu)
            return false;
        try {
            const host::Filter filter(effect.guid, 1, 1);
            return true;
        } catch (const host::Failure&) {
            return false;
        }
    });
}

void examineGraphics(Examination& examination, const fs::path& logs)
{
    const bool draws = drawsEffects();
    std::string log;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(logs, ignored))
        log += logText(logs, entry.path().filename().c_str());
    if (!draws) {
        examination.bad(ExitCode::noGraphics, "graphics",
            "OpenGL did not start; effects that need it are missing",
            "install libegl1, libegl-mesa0 and libgl1-mesa-dri, or run where there is a display; --log-dir "
            "keeps the log that says why");
    } else {
        const std::string renderer = noted(log, "GL_RENDERER");
        examination.good("graphics", renderer.empty() ? "OpenGL" : renderer);
        examination.good("driver",
            noted(log, "GL_VERSION")
                + (noted(log, "- 3D textures:") == "yes" ? " (3D textures)" : " (no 3D textures)"));
        if (renderer.find("llvmpipe") != std::string::npos || renderer.find("softpipe") != std::string::npos)
            examination.note("graphics", "drawn by the processor; a GPU with its driver would be faster");
    }
    if (const std::string paths = noted(log, "Paths: "); !paths.empty())
        examination.good("paths", paths);
}

// Makes every effect once and lets it evaluate a small frame.
void examineEffects(Examination& examination)
{
    constexpr unsigned kSide = 16;
    std::size_t working = 0;
    std::string broken;
    const auto effects = listEffects();
    for (const KEXSDK::EffectInfo& effect : effects) {
        try {
            const host::Image picture(kSide, kSide);
            host::Filter filter(effect.guid, kSide, kSide);
            for (unsigned i = 0; i < effect.inputs; ++i)
                filter.setInput(picture, i);
            filter.run();
            ++working;
        } catch (const host::Failure&) {
            broken += (broken.empty() ? "" : ", ") + effect.name;
        }
    }
    const std::string count = std::to_string(working) + " of " + std::to_string(effects.size()) + " work";
    if (broken.empty())
        examination.good("effects", count);
    else
        examination.bad(ExitCode::effectFailed, "effects", count + "; not: " + broken,
            "effects that need the GPU come back with it");
}

void examinePictures(Examination& examination, const fs::path& directory)
{
    const host::Image image(4, 4);
    std::string kinds;
    for (const std::string& kind : writtenKinds()) {
        const std::string file = (directory / ("picture." + kind)).string();
        if (reportingFailure([&] {
                savePicture(image.handle(), file);
                loadPicture(file, {4, 4});
            })
            == ExitCode::success)
            kinds += (kinds.empty() ? "" : ", ") + kind;
        else
            examination.bad(ExitCode::cannotWrite, "pictures", kind + " cannot be written and read",
                "see the room in " + directory.string() + ", or install the tool's package anew");
    }
    if (reportingFailure([] { colourConversion(); }) == ExitCode::success)
        kinds += "; colour profiles";
    else
        examination.bad(ExitCode::internal, "pictures", "colour profiles cannot be used",
            "install the tool's package anew");
    examination.good("pictures", kinds);
}

// Starts `effectengine codecs`, since FFmpeg's libraries are in the program for clips.
void examineClips(Examination& examination)
{
    const std::string self = fs::read_symlink("/proc/self/exe").string();
    std::string command = "'";
    for (const char c : self)
        command += c == '\'' ? std::string("'\\''") : std::string(1, c);
    FILE* const pipe = popen((command + "' codecs 2>&1").c_str(), "re");
    std::string text;
    std::array<char, 512> part;
    while (pipe && fgets(part.data(), int(part.size()), pipe))
        text += part.data();
    if (pipe && pclose(pipe) == 0) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            examination.good("clips", line);
    } else {
        examination.bad(ExitCode::internal, "clips", text.substr(0, text.find('\n')),
            "install the tool's package anew: its program for clips, and libavcodec and libavformat, belong "
            "to it");
    }
}

void doctor(const SessionOptions& options)
{
    Examination examination;
    examination.good("library", std::string("EffectEngine ") + EFFECTENGINE_VERSION);
    if (const fs::path resources = examineResources(examination, options); !resources.empty()) {
        std::string name = (fs::temp_directory_path() / "effectengine-doctor-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw ToolError(
                ExitCode::cannotWrite, "cannot make a directory in " + fs::temp_directory_path().string());
        const auto remove = [](const fs::path* directory) {
            std::error_code ignored;
            fs::remove_all(*directory, ignored);
        };
        const fs::path work = name;
        const std::unique_ptr<const fs::path, decltype(remove)> removed(&work, remove);
        SessionOptions own = options;
        if (own.logs.empty())
            own.logs = work / "logs";
        setenv("EFFECTENGINE_GRAPHICS", "at-start", 1); // the log tells all about it then
        const Session session(own);
        examineGraphics(examination, own.logs);
        examineEffects(examination);
        examinePictures(examination, work);
    }
    examineClips(examination);
    if (examination.worst() != ExitCode::success)
        throw AlreadyReported(examination.worst());
}

} // namespace

void addDoctorCommand(CLI::App& tool, const SessionOptions& session)
{
    CLI::App* const command = tool.add_subcommand("doctor",
        "Examines the installation: library, resources, graphics, codecs; says what is missing and how to "
        "mend it.");
    command->callback([&session] { doctor(session); });
    tool.add_subcommand("codecs", "Lists the codecs that clips can be read from and written to.")
        ->callback(runCodecs);
}

} // namespace tool
