// The list of inputs with their outputs: one picture to one file, or many into a directory.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct PictureJob {
    std::filesystem::path in;
    std::filesystem::path out;
};

struct PictureListOptions {
    bool recursive = false; ///< takes the folders in a folder, too; the output has the same ones
    std::string format;     ///< extension of outputs in a directory, such as "png"; empty: as the inputs'
};

/// The jobs for the inputs. One file and a name give one job. A folder, or several files, go into the
/// directory `out`, which is made; a folder stands for the pictures in it, in the order of their names.
/// Throws ToolError: nothing to do, two results under one name, a result over one of the sources, a directory
/// that cannot be made.
std::vector<PictureJob> listPictures(const std::vector<std::filesystem::path>& in,
    const std::filesystem::path& out, const PictureListOptions& options);

} // namespace tool
