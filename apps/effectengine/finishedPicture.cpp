// Structure or decoding of finished pictures, and the times of their files.
#include "effectengine/finishedPicture.h"

#include "effectengine/ToolError.h"
#include "effectengine/pictureFiles.h"
#include "pictures/wholePicture.h"

#include <fstream>
#include <vector>

namespace tool {

namespace fs = std::filesystem;

bool isWholePicture(const fs::path& file)
{
    std::error_code error;
    const auto size = fs::file_size(file, error);
    if (error || size == 0)
        return false;
    std::vector<u8> bytes(size);
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(size)))
        return false;
    if (const auto whole = pictures::isWholeByStructure(bytes))
        return *whole;
    try {
        loadPicture(file, fitted(sizeOf(file)));
        return true;
    } catch (const ToolError&) {
        return false;
    }
}

bool isFinished(const PictureJob& job)
{
    std::error_code error;
    const auto made = fs::last_write_time(job.out, error);
    if (error || !fs::is_regular_file(job.out, error))
        return false;
    const auto changed = fs::last_write_time(job.in, error);
    return !error && made >= changed && isWholePicture(job.out);
}

} // namespace tool
