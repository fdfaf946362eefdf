// Collection of input pictures from files and folders, and the names of their outputs.
#include "effectengine/pictureList.h"

#include "effectengine/ToolError.h"
#include "effectengine/pictureFiles.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <set>
#include <string_view>

namespace tool {

namespace fs = std::filesystem;

namespace {

/// What programs put behind or before names of files that they still write.
constexpr std::array kTemporaryEnds{"~", ".part", ".partial", ".filepart", ".tmp", ".temp", ".crdownload"};
constexpr std::array kTemporaryBegins{".", "~", "#"};

std::string upper(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return text;
}

void stepOver(fs::directory_iterator&) { }
void stepOver(fs::recursive_directory_iterator& entry) { entry.disable_recursion_pending(); }

template <class Iterator> std::vector<fs::path> picturesOf(const fs::path& folder, const fs::path& out)
{
    std::error_code error;
    std::vector<fs::path> found;
    for (Iterator entry(folder, error); !error && entry != Iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) && fs::equivalent(*entry, out, ignored))
            stepOver(entry);
        else if (isPictureName(entry->path()) && entry->is_regular_file(ignored))
            found.push_back(entry->path());
    }
    if (error)
        throw ToolError(
            ExitCode::unreadable, "cannot read the folder " + folder.string() + ": " + error.message());
    std::ranges::sort(found);
    return found;
}

// Refuses two results under one name, and results that would replace one of the sources.
void checkNames(const std::vector<PictureJob>& jobs)
{
    std::map<fs::path, fs::path> sourceOf;
    std::set<fs::path> sources;
    for (const PictureJob& job : jobs)
        sources.insert(fs::weakly_canonical(job.in));
    for (const PictureJob& job : jobs) {
        const fs::path out = fs::weakly_canonical(job.out);
        if (sources.contains(out))
            throw ToolError(
                ExitCode::cannotWrite, "the result would overwrite the source " + job.in.string());
        const auto [other, fresh] = sourceOf.emplace(out, job.in);
        if (!fresh)
            throw ToolError(ExitCode::cannotWrite,
                "both " + other->second.string() + " and " + job.in.string() + " would become "
                    + job.out.string());
    }
}

// The number of a job as text, as long as that of the last one.
std::string indexText(std::size_t index, std::size_t count)
{
    const std::string text = std::to_string(index);
    return std::string(std::to_string(count).size() - text.size(), '0') + text;
}

// A single picture whose output is named: a file, or a pipe.
bool isOneFile(const std::vector<fs::path>& in, const fs::path& out, const PictureListOptions& options)
{
    std::error_code ignored;
    return in.size() == 1 && !fs::is_directory(in[0], ignored) && !fs::is_directory(out, ignored)
        && (!options.names.rename || canBeWritten(out));
}

} // namespace

bool isPictureName(const fs::path& file)
{
    return !file.filename().string().starts_with('.') && canBeRead(file);
}

bool isTemporaryName(const fs::path& file)
{
    const std::string name = file.filename().string();
    const std::string stem = file.stem().string();
    const auto ends = [&](std::string_view end) { return name.ends_with(end) || stem.ends_with(end); };
    return std::ranges::any_of(kTemporaryEnds, ends)
        || std::ranges::any_of(
            kTemporaryBegins, [&](std::string_view begin) { return name.starts_with(begin); });
}

fs::path resultName(const fs::path& picture, const ResultNames& names, const std::string& index)
{
    fs::path name = picture.filename();
    if (!names.format.empty())
        name.replace_extension(names.format);
    else if (!canBeWritten(name))
        name.replace_extension(".png");
    if (!names.rename)
        return name;
    const std::string ext = name.extension().string();
    name = names.rename->nameFor({.name = name.stem().string(),
        .effect = names.effect,
        .ext = ext.substr(std::min<std::size_t>(1, ext.size())),
        .parent = fs::absolute(picture).lexically_normal().parent_path().filename().string(),
        .index = index});
    if (!canBeWritten(name))
        throw ToolError(ExitCode::usage,
            "--rename gives " + name.string()
                + ", which is no kind of picture that can be written; .{ext} at its end is "
                  "one");
    return name;
}

fs::path rivalOf(const fs::path& picture, const ResultNames& names)
{
    std::error_code ignored;
    const fs::path result = resultName(picture, names);
    for (const std::string& extension : readExtensions()) {
        for (const std::string& spelling : {extension, upper(extension)}) {
            fs::path other = picture;
            other.replace_extension(spelling);
            if (other < picture && fs::exists(other, ignored) && resultName(other, names) == result)
                return other;
        }
    }
    return {};
}

bool liesIn(const fs::path& path, const fs::path& directory)
{
    const auto canonical = [](const fs::path& given) {
        std::error_code ignored;
        const fs::path whole = fs::weakly_canonical(fs::absolute(given, ignored), ignored);
        return whole.has_filename() ? whole : whole.parent_path(); // without a slash at its end
    };
    const fs::path inner = canonical(path);
    const fs::path outer = canonical(directory);
    return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

std::vector<PictureJob> listPictures(
    const std::vector<fs::path>& in, const fs::path& out, const PictureListOptions& options)
{
    std::error_code ignored;
    if (isOneFile(in, out, options)) {
        if (options.names.rename)
            throw ToolError(
                ExitCode::usage, "--rename is for results in a directory; " + out.string() + " is a name");
        return {{in[0], out}};
    }
    if (out == kStandardStream || std::ranges::find(in, kStandardStream) != in.end())
        throw ToolError(ExitCode::usage, "- stands for one picture, from a pipe or into one");
    if (canBeWritten(out) && !fs::is_directory(out, ignored))
        throw ToolError(ExitCode::usage,
            (in.size() == 1 ? in[0].string() + " is a directory" : "there are several pictures") + "; "
                + out.string() + " would have to be one as well");
    struct Found {
        fs::path picture;
        fs::path directory; ///< of its result
    };
    std::vector<Found> found;
    for (const fs::path& source : in) {
        if (!fs::exists(source, ignored))
            throw ToolError(ExitCode::missingInput, "no such file: " + source.string());
        if (!fs::is_directory(source, ignored)) {
            found.push_back({source, out});
            continue;
        }
        for (const fs::path& picture : options.recursive
                ? picturesOf<fs::recursive_directory_iterator>(source, out)
                : picturesOf<fs::directory_iterator>(source, out))
            found.push_back({picture, (out / picture.lexically_relative(source)).parent_path()});
    }
    if (found.empty())
        throw ToolError(ExitCode::missingInput, "there are no pictures in " + in[0].string());
    std::vector<PictureJob> jobs;
    for (const Found& one : found)
        jobs.push_back({one.picture,
            one.directory
                / resultName(one.picture, options.names, indexText(jobs.size() + 1, found.size()))});
    checkNames(jobs);
    return jobs;
}

void makeDirectories(const std::vector<PictureJob>& jobs)
{
    fs::path last;
    for (const PictureJob& job : jobs) {
        fs::path directory = directoryOf(job.out);
        if (directory != last)
            makeDirectory(directory);
        last = std::move(directory);
    }
}

} // namespace tool
