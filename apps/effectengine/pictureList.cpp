// Collection of input pictures from files and folders, and the names of their outputs.
#include "effectengine/pictureList.h"

#include "effectengine/ToolError.h"
#include "effectengine/pictureFiles.h"

#include <algorithm>
#include <map>
#include <set>

namespace tool {

namespace fs = std::filesystem;

namespace {

bool looksLikePicture(const fs::directory_entry& entry)
{
    return entry.is_regular_file() && !entry.path().filename().string().starts_with('.')
        && canBeRead(entry.path());
}

template <class Iterator> std::vector<fs::path> picturesOf(const fs::path& folder)
{
    std::error_code error;
    std::vector<fs::path> found;
    for (Iterator entry(folder, error); !error && entry != Iterator(); entry.increment(error)) {
        if (looksLikePicture(*entry))
            found.push_back(entry->path());
    }
    if (error)
        throw ToolError(
            ExitCode::unreadable, "cannot read the folder " + folder.string() + ": " + error.message());
    std::ranges::sort(found);
    return found;
}

fs::path outputName(fs::path file, const std::string& format)
{
    if (!format.empty())
        file.replace_extension(format);
    else if (!canBeWritten(file))
        file.replace_extension(".png");
    return file;
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

} // namespace

std::vector<PictureJob> listPictures(
    const std::vector<fs::path>& in, const fs::path& out, const PictureListOptions& options)
{
    std::error_code ignored;
    if (in.size() == 1 && !fs::is_directory(in[0], ignored) && !fs::is_directory(out, ignored))
        return {{in[0], out}};
    if (canBeWritten(out) && !fs::is_directory(out, ignored))
        throw ToolError(ExitCode::usage,
            (in.size() == 1 ? in[0].string() + " is a directory" : "there are several pictures") + "; "
                + out.string() + " would have to be one as well");
    std::vector<PictureJob> jobs;
    for (const fs::path& source : in) {
        if (!fs::exists(source, ignored))
            throw ToolError(ExitCode::missingInput, "no such file: " + source.string());
        if (!fs::is_directory(source, ignored)) {
            jobs.push_back({source, out / outputName(source.filename(), options.format)});
            continue;
        }
        const auto found = options.recursive ? picturesOf<fs::recursive_directory_iterator>(source)
                                             : picturesOf<fs::directory_iterator>(source);
        for (const fs::path& picture : found)
            jobs.push_back({picture, out / outputName(picture.lexically_relative(source), options.format)});
    }
    if (jobs.empty())
        throw ToolError(ExitCode::missingInput, "there are no pictures in " + in[0].string());
    checkNames(jobs);
    for (const PictureJob& job : jobs)
        makeDirectory(directoryOf(job.out));
    return jobs;
}

} // namespace tool
