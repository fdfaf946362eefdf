// Pictures in a hidden directory, moved to their places when all are complete.
#include "effectengine/media/PictureSequence.h"

#include "effectengine/PartialFile.h"

#include <unistd.h>

namespace fs = std::filesystem;

namespace tool::media {

PictureSequence::PictureSequence(
    const fs::path& pattern, const FrameShape& shape, const EncoderChoice& choice)
    : pattern_(pattern),
      workplace_(pattern.parent_path() / (".effectengine." + std::to_string(getpid()))),
      encoder_(openPictureEncoder(
          pattern, shape, choice, [this](long long number, std::span<const unsigned char> bytes) {
              const fs::path name = numbered(pattern_, number).filename();
              writeFile(workplace_ / name, bytes);
              names_.push_back(name);
          }))
{
    std::error_code error;
    fs::create_directory(workplace_, error);
    if (error)
        throwCannotWrite(pattern_, error.value());
}

PictureSequence::~PictureSequence()
{
    std::error_code ignored;
    fs::remove_all(workplace_, ignored);
}

void PictureSequence::write(AVFrame& frame, const FramePlace& place)
{
    encoder_->write(frame, place.number);
    tellWritten();
}

void PictureSequence::finish()
{
    encoder_->finish();
    for (const fs::path& name : names_) {
        std::error_code error;
        const fs::path target = pattern_.parent_path() / name;
        fs::rename(workplace_ / name, target, error);
        if (error)
            throwCannotWrite(target, error.value());
    }
}

} // namespace tool::media
