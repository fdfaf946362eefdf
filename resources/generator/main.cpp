// Paints the pictures of the resource pack.
#include "pieces.h"
#include "pngFile.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using artwork::Piece;

const Piece& find(std::string_view file)
{
    const std::span<const Piece> all = artwork::pieces();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Piece& piece) { return piece.file == file; });
    if (found == all.end())
        throw std::runtime_error("no picture " + std::string(file));
    return *found;
}

void make(const Piece& piece, const std::filesystem::path& directory)
{
    artwork::Picture picture(piece.size, {artwork::kBlack, 0});
    piece.paint(picture);
    const std::filesystem::path file = directory / piece.file;
    std::filesystem::create_directories(file.parent_path());
    artwork::save(picture, file);
}

} // namespace

int main(int count, char** words)
{
    if (count < 2) {
        std::fputs("usage: effectengine_artwork DIRECTORY [FILE...]\n"
                   "Paints these pictures, or all, below the directory.\n",
            stderr);
        return 2;
    }
    try {
        for (int i = 2; i < count; ++i)
            make(find(words[i]), words[1]);
        if (count == 2)
            for (const Piece& piece : artwork::pieces())
                make(piece, words[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "effectengine_artwork: %s\n", error.what());
        return 1;
    }
}
