// Picture files of the tool: sizes, loading, and saving that leaves nothing half-written.
#pragma once

#include "effectengine/photoMetadata.h"
#include "effectengine/pictureModules.h"
#include "hosting/Host.h"

#include <filesystem>
#include <vector>

namespace tool {

struct PictureSize {
    unsigned width;
    unsigned height;
    friend bool operator==(const PictureSize&, const PictureSize&) = default;
};

/// What becomes of the colours of a picture with a profile for RGB or grey. Inks turn into sRGB always.
enum class Colours { asStored, srgb };

/// A picture file, whose bytes are read once for all that is asked of it.
class PictureFile {
public:
    /// Reads the file and its header. Throws ToolError: missing, unreadable, or no picture.
    explicit PictureFile(std::filesystem::path file, Colours colours = Colours::asStored);

    /// Width and height of the upright picture.
    PictureSize size() const;
    /// What a file of the same picture is to carry.
    const PhotoMetadata& metadata() const { return metadata_; }
    /// Whether there are more pictures behind this one, of an animation or on further pages, as far as that
    /// is known.
    bool hasMore() const { return hasMore_; }

    /// Fills the image with the picture, turned upright and scaled to the image's size. Throws ToolError; the
    /// image holds anything then.
    void loadInto(const host::Image& image) const;

private:
    bool isJpeg() const;
    void settleColours(Colours colours);
    RawPicture stored() const;
    pictures::Decoded decoded() const;

    std::filesystem::path path_;
    std::vector<u8> bytes_; ///< empty for a file larger than any that keeps its metadata
    PhotoMetadata metadata_;
    PictureSize stored_;
    std::optional<FurtherKind> further_;
    std::vector<u8> convertedFrom_; ///< the profile by which colours turn into sRGB; empty to leave them
    bool hasMore_ = false;
};

/// The size of a PictureFile. Throws ToolError.
PictureSize sizeOf(const std::filesystem::path& file);

/// The metadata of a PictureFile. Throws ToolError.
PhotoMetadata metadataOf(const std::filesystem::path& file);

/// Reads "WIDTHxHEIGHT". Throws ToolError.
PictureSize parseSize(const std::string& text);

/// The size at which the engine can hold the picture: its own, or the largest of the same shape.
PictureSize fitted(PictureSize size);

/// The picture, turned upright. Throws ToolError.
host::Image loadPicture(
    const std::filesystem::path& file, PictureSize size, Colours colours = Colours::asStored);

/// To be called before any work is done: throws ToolError when the name's extension is no kind of picture
/// that can be written, or the directory is missing.
void checkOutput(const std::filesystem::path& file);

/// The name's extension with its dot, in lower case.
std::string lowerExtension(const std::filesystem::path& file);

/// Whether the extension names a kind of picture that can be written, or read.
bool canBeWritten(const std::filesystem::path& file);
bool canBeRead(const std::filesystem::path& file);

/// The extensions, without their dots, of kinds that can be written.
std::vector<std::string> writtenKinds();

/// The extensions, with their dots, of kinds that can be read.
std::vector<std::string> readExtensions();

/// Whether SaveOptions mean something for the kind that the extension names.
bool hasQuality(const std::filesystem::path& file);
bool hasEffort(const std::filesystem::path& file);

/// The directory in which a file stands; "." for a bare name.
std::filesystem::path directoryOf(const std::filesystem::path& file);

/// Throws ToolError when no file of this name can be written: its directory is missing or closed, or it is
/// one itself.
void checkPlace(const std::filesystem::path& file);

/// Makes a directory and those above it. Throws ToolError.
void makeDirectory(const std::filesystem::path& directory);

/// The bytes of a picture file.
/// @param file  names the kind by its extension
/// @param metadata  goes into files of kinds that have room for it
/// Throws ToolError when the kind cannot hold the picture.
std::vector<u8> pictureBytes(CEffectImage* image, const std::filesystem::path& file,
    const PhotoMetadata& metadata = {}, const SaveOptions& options = {});

/// Saves a picture as pictureBytes() makes it: writes beside the target, checks what was written, then
/// renames. Throws ToolError; the target is then as it was before.
void savePicture(CEffectImage* image, const std::filesystem::path& file, const PhotoMetadata& metadata = {},
    const SaveOptions& options = {});

} // namespace tool
