// Picture files through the engine's own functions, checked from outside.
#include "effectengine/Pictures.h"

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"

#include <fcntl.h>
#include <stb/stb_image.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace fs = std::filesystem;

namespace {

constexpr unsigned kLargestSide = 4096;
constexpr std::array kWritable{".png", ".jpg", ".jpeg", ".bmp", ".tga"};

bool holdsPicture(const fs::path& file, PictureSize size)
{
    int width = 0;
    int height = 0;
    int channels = 0;
    return stbi_info(file.c_str(), &width, &height, &channels) && unsigned(width) == size.width
        && unsigned(height) == size.height;
}

// A failed save leaves no file to ask, so ask the disk for the picture's room once more.
bool diskIsFull(const fs::path& directory, PictureSize size)
{
    std::string probe = (directory / ".effectengine-XXXXXX").string();
    const int file = mkstemp(probe.data());
    if (file < 0)
        return errno == ENOSPC || errno == EDQUOT;
    const int result = posix_fallocate(file, 0, off_t(size.width) * size.height * 4);
    close(file);
    unlink(probe.c_str());
    return result == ENOSPC || result == EDQUOT;
}

} // namespace

std::string lowerExtension(const fs::path& file)
{
    std::string extension = file.extension().string();
    std::ranges::transform(
        extension, extension.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return extension;
}

bool canBeWritten(const fs::path& file)
{
    return std::ranges::find(kWritable, lowerExtension(file)) != kWritable.end();
}

fs::path directoryOf(const fs::path& file) { return file.parent_path().empty() ? "." : file.parent_path(); }

void makeDirectory(const fs::path& directory)
{
    std::error_code error;
    fs::create_directories(directory, error);
    if (!fs::is_directory(directory))
        throwCannotWrite(directory, error ? error.value() : EEXIST);
}

PictureSize sizeOf(const fs::path& file)
{
    if (!fs::exists(file))
        throw ToolError(ExitCode::missingInput, "no such file: " + file.string());
    if (fs::is_directory(file))
        throw ToolError(ExitCode::unreadable, "is a directory, not a picture: " + file.string());
    if (access(file.c_str(), R_OK) != 0)
        throw ToolError(ExitCode::unreadable, "no permission to read " + file.string());
    int width = 0;
    int height = 0;
    int channels = 0;
    if (!stbi_info(file.c_str(), &width, &height, &channels))
        throw ToolError(ExitCode::unreadable, "not a picture that can be decoded: " + file.string());
    return {unsigned(width), unsigned(height)};
}

PictureSize parseSize(const std::string& text)
{
    PictureSize size{};
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec == std::errc() && width.ptr != end && *width.ptr == 'x') {
        const auto height = std::from_chars(width.ptr + 1, end, size.height);
        const auto inRange = [](unsigned side) { return side >= 1 && side <= kLargestSide; };
        if (height.ec == std::errc() && height.ptr == end && inRange(size.width) && inRange(size.height))
            return size;
    }
    throw ToolError(ExitCode::usage, "--size takes WIDTHxHEIGHT, 1 to 4096 each, not \"" + text + "\"");
}

PictureSize fitted(PictureSize size)
{
    const unsigned longest = std::max(size.width, size.height);
    if (longest <= kLargestSide)
        return size;
    const auto scaled = [&](unsigned side) {
        return std::max(1u, unsigned(std::lround(double(side) * kLargestSide / longest)));
    };
    return {scaled(size.width), scaled(size.height)};
}

host::Image loadPicture(const fs::path& file, PictureSize size)
{
    // The engine takes a bare name for one of the pack's pictures first.
    host::Image image = host::Image::load(fs::absolute(file).string(), size.width, size.height);
    if (!image && !gpuAvailable())
        throw ToolError(ExitCode::noGraphics,
            "the graphics system did not start, so pictures cannot be loaded (no EGL and no display?)");
    if (!image)
        throw ToolError(ExitCode::unreadable, "cannot decode " + file.string());
    return image;
}

void checkOutput(const fs::path& file)
{
    if (!canBeWritten(file))
        throw ToolError(ExitCode::cannotWrite,
            "cannot write " + file.string() + ": the name must end in .png, .jpg, .jpeg, .bmp or .tga");
    const fs::path directory = directoryOf(file);
    if (!fs::is_directory(directory))
        throw ToolError(ExitCode::cannotWrite, "no such directory: " + directory.string());
    if (fs::is_directory(file))
        throw ToolError(ExitCode::cannotWrite, "is a directory: " + file.string());
    if (access(directory.c_str(), W_OK) != 0)
        throw ToolError(ExitCode::cannotWrite, "no permission to write in " + directory.string());
}

void savePicture(CEffectImage* image, const fs::path& file)
{
    PartialFile partial(file);
    PictureSize size{};
    GetImageWidth(image, &size.width);
    GetImageHeight(image, &size.height);
    SaveImage(image, partial.path().c_str()); // answers 0 in any case: the file itself must tell
    if (!holdsPicture(partial.path(), size))
        throwCannotWrite(file, diskIsFull(directoryOf(file), size) ? ENOSPC : EIO);
    partial.keep();
}
