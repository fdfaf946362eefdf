// Picture files of the tool: sizes, loading, and saving that leaves nothing half-written.
#pragma once

#include "effectengine/photoMetadata.h"
#include "hosting/Host.h"

#include <filesystem>
#include <vector>

namespace tool {

struct PictureSize {
    unsigned width;
    unsigned height;
    friend bool operator==(const PictureSize&, const PictureSize&) = default;
};

/// A picture file, whose bytes are read once for all that is asked of it.
class PictureFile {
public:
    /// Reads the file and its header. Throws ToolError: missing, unreadable, or no picture.
    explicit PictureFile(std::filesystem::path file);

    /// Width and height of the upright picture.
    PictureSize size() const;
    const PhotoMetadata& metadata() const { return metadata_; }

    /// Fills the image with the picture, turned upright and scaled to the image's size. Throws ToolError; the
    /// image holds anything then.
    void loadInto(const host::Image& image) const;

private:
    bool isJpeg() const;

    std::filesystem::path path_;
    std::vector<u8> bytes_; ///< empty for a file larger than any that keeps its metadata
    PhotoMetadata metadata_;
    PictureSize stored_;
};

/// The size of a PictureFile. Throws ToolError.
PictureSize sizeOf(const std::filesystem::path& file);

/// The metadata of a picture file; empty when the file cannot be read.
PhotoMetadata metadataOf(const std::filesystem::path& file);

/// Reads "WIDTHxHEIGHT". Throws ToolError.
PictureSize parseSize(const std::string& text);

/// The size at which the engine can hold the picture: its own, or the largest of the same shape.
PictureSize fitted(PictureSize size);

/// The picture, turned upright. Throws ToolError.
host::Image loadPicture(const std::filesystem::path& file, PictureSize size);

/// To be called before any work is done: throws ToolError when the name's extension is no kind of picture
/// that can be written, or the directory is missing.
void checkOutput(const std::filesystem::path& file);

/// The name's extension with its dot, in lower case.
std::string lowerExtension(const std::filesystem::path& file);

/// Whether the extension names a kind of picture that can be written.
bool canBeWritten(const std::filesystem::path& file);

/// The directory in which a file stands; "." for a bare name.
std::filesystem::path directoryOf(const std::filesystem::path& file);

/// Throws ToolError when no file of this name can be written: its directory is missing or closed, or it is
/// one itself.
void checkPlace(const std::filesystem::path& file);

/// Makes a directory and those above it. Throws ToolError.
void makeDirectory(const std::filesystem::path& directory);

/// Saves a picture: writes beside the target, checks what was written, then renames. Throws ToolError; the
/// target is then as it was before.
/// @param metadata  goes into files of kinds that have room for it
void savePicture(CEffectImage* image, const std::filesystem::path& file, const PhotoMetadata& metadata = {});

} // namespace tool
