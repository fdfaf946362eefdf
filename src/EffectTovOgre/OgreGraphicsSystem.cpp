// The graphics system behind the render thread: OGRE's environment, and the picture codecs.
#include "EffectTovOgre/RenderThreadState.h"
#include "EffectTovOgre/ResourceFiles.h"
#include "EffectTovOgre/TovOgreBase.h"
#include "core/DynClass.h"
#include "graphics/GraphicsSystem.h"
#include "pictures/PictureCodecs.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

namespace KEXSDK {

namespace {

/// A decoded picture, as the decoder leaves it.
class DecodedImage : public SharedImage {
public:
    bool hasData() const override { return picture_.pixels != nullptr; }
    u32 width() const override { return picture_.width; }
    u32 height() const override { return picture_.height; }
    RecordFormat format() const override { return RecordFormat::A8R8G8B8; }
    u32 bitsPerPixel() const override { return 32; }
    std::span<const u8> bytes() const override
    {
        return {picture_.pixels.get(), hasData() ? std::size_t{width()} * height() * 4 : 0};
    }
    bool scale(u32 width, u32 height) override { return pictures::scale(picture_, width, height); }
    void freeMemory() override { picture_ = {}; }

    void assign(pictures::Decoded&& picture) { picture_ = std::move(picture); }

private:
    pictures::Decoded picture_;
};

/// The resource of that name; null when there is none.
std::unique_ptr<std::istream> openResource(const std::string& name)
{
    if (!resourceFiles::exists(name))
        return nullptr;
    return std::make_unique<std::istringstream>(resourceFiles::open(name)->getAsString());
}

/// The resource of that name, or the file at that path; null when neither can be read.
std::unique_ptr<std::istream> openPicture(const std::string& path)
{
    // An effect's picture is the pack's, whatever lies in the directory that the host runs in.
    if (auto resource = openResource(path))
        return resource;
    // Only regular files: opening a pipe, or reading a device, could take for ever.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return nullptr;
    auto file = std::make_unique<std::ifstream>(path, std::ios::binary);
    return *file ? std::move(file) : nullptr;
}

class OgreGraphicsSystem : public GraphicsSystem {
public:
    bool start(const std::string& resourceDirectory, const std::string& pluginsDirectory,
        const std::string& logDirectory, u32 kind) override
    {
        environment_ = std::make_unique<TovOgreBase>(
            resourceDirectory.c_str(), pluginsDirectory.c_str(), logDirectory.c_str(), kind);
        return environment_->initialisationSucceeded();
    }

    GpuCapabilities capabilities() const override { return environment_->capabilities(); }

    TovEffectBase* createEffect(const char* className) override { return DYN_CLASS::create(className); }

    void loadImage(const std::string& path) override { load(path, openPicture); }

    void loadResource(const std::string& name) override { load(name, openResource); }

    SharedImage& sharedImage() override { return image_; }

    bool saveImage(
        const std::string& path, const u8* pixels, u32 width, u32 height, RecordFormat format) override
    {
        bool saved = false;
        try {
            saved = format == RecordFormat::A8R8G8B8 && pictures::save(path, pixels, width, height);
        } catch (const std::exception&) { // out of memory
        }
        if (!saved)
            log("Could not store picture. Maybe something that you specified is wrong.");
        return saved;
    }

    void log(std::string_view message) override { TovOgreBase::log(std::string(message)); }

private:
    template <class Open> void load(const std::string& path, Open open)
    {
        image_.freeMemory();
        pictures::Decoded picture;
        try {
            if (const auto file = open(path))
                picture = pictures::decode(*file);
        } catch (const std::exception&) { // out of memory, or a resource that went away
        }
        if (picture.outcome == pictures::Decoded::Outcome::tooLarge)
            log("The picture " + path + " is too large: " + std::to_string(picture.width) + " x "
                + std::to_string(picture.height) + " pixels.");
        else if (picture.outcome == pictures::Decoded::Outcome::unreadable)
            log("The resouce: " + path + "not be add to resource group or path is not right!");
        else
            image_.assign(std::move(picture));
    }

    std::unique_ptr<TovOgreBase> environment_;
    DecodedImage image_;
};

} // namespace

std::unique_ptr<GraphicsSystem> renderThread::makeOgreGraphicsSystem()
{
    return std::make_unique<OgreGraphicsSystem>();
}

} // namespace KEXSDK
