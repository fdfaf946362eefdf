// The list of inputs with their outputs: one picture to one file, or many into a directory.
#pragma once

#include "effectengine/renamePattern.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct PictureJob {
    std::filesystem::path in;
    std::filesystem::path out;
};

/// How results in a directory are called.
struct ResultNames {
    std::string format; ///< extension, such as "png"; empty: the source's, if it can be written
    std::optional<RenamePattern> rename; ///< empty: the source's name
    std::string effect;                  ///< what {effect} stands for
};

struct PictureListOptions {
    bool recursive = false; ///< takes the folders in a folder, too; the output has the same ones
    ResultNames names;
};

/// "-" stands for stdin and stdout.
inline const std::filesystem::path kStandardStream = "-";

/// The jobs for the inputs. One file and a name give one job. A folder, or several files, go into the
/// directory `out`; a folder stands for the pictures in it, in the order of their names, without those that
/// lie in `out`. Throws ToolError: nothing to do, two results under one name, a result over one of the
/// sources.
std::vector<PictureJob> listPictures(const std::vector<std::filesystem::path>& in,
    const std::filesystem::path& out, const PictureListOptions& options);

/// Makes the directories that the outputs of several jobs go into. Throws ToolError.
void makeDirectories(const std::vector<PictureJob>& jobs);

/// Whether the name is that of a picture: its extension is one of those that are read, and it is not hidden.
bool isPictureName(const std::filesystem::path& file);

/// Whether the name is one that programs give to files that they are still writing.
bool isTemporaryName(const std::filesystem::path& file);

/// The name of a picture's result, without a directory.
/// @param index  what {index} stands for
std::filesystem::path resultName(
    const std::filesystem::path& picture, const ResultNames& names, const std::string& index = {});

/// The file whose result would have the same name as this one's, if there is one beside it that comes before
/// it; else an empty path.
std::filesystem::path rivalOf(const std::filesystem::path& picture, const ResultNames& names);

/// Whether a path is the directory, or lies in it; links are followed.
bool liesIn(const std::filesystem::path& path, const std::filesystem::path& directory);

} // namespace tool
