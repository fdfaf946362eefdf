// Which pictures go where: one to one, or many into a directory.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct PictureJob {
    std::filesystem::path in;
    std::filesystem::path out;
};

struct PictureListOptions {
    bool recursive = false; ///< go into the folders of a folder; the output has the same ones
    std::string format;     ///< "png": of the outputs in a directory; empty keeps what can be written
};

/// One file and a name give one job. A folder, or several files, go into the directory `out`, which is made;
/// a folder stands for the pictures in it, in the order of their names. Throws ToolError: nothing to do, two
/// results under one name, a result over one of the sources, a directory that cannot be made.
std::vector<PictureJob> listPictures(const std::vector<std::filesystem::path>& in,
    const std::filesystem::path& out, const PictureListOptions& options);
