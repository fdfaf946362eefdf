// The graphics system behind the render thread: OGRE's environment, its image type and the picture codecs.
#include "EffectTovOgre/GraphicsSystem.h"
#include "EffectTovOgre/PictureCodecs.h"
#include "EffectTovOgre/PixelFormats.h"
#include "EffectTovOgre/ResourceFiles.h"
#include "EffectTovOgre/TovOgreBase.h"
#include "core/DynClass.h"

#include <OgreImage.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

class OgreSharedImage : public SharedImage {
public:
    bool hasData() const override { return image_.getData() != nullptr; }
    u32 width() const override { return hasData() ? image_.getWidth() : 0; }
    u32 height() const override { return hasData() ? image_.getHeight() : 0; }
    KEXSDK::RecordFormat format() const override
    {
        return KEXSDK::RecordFormat(recordNumber(image_.getFormat()));
    }
    u32 bitsPerPixel() const override { return image_.getBPP(); }
    std::span<const u8> bytes() const override
    {
        return hasData() ? std::span<const u8>(image_.getData(), image_.getSize()) : std::span<const u8>{};
    }

    bool scale(u32 width, u32 height) override
    {
        if (!hasData() || width == 0 || height == 0 || width > 0xFFFF || height > 0xFFFF)
            return false;
        image_.resize(Ogre::ushort(width), Ogre::ushort(height), Ogre::Image::FILTER_BILINEAR);
        return true;
    }

    void freeMemory() override { image_.freeMemory(); }

    void assign(const pictures::Decoded& picture)
    {
        image_.create(ogreFormat(KEXSDK::RecordFormat::A8R8G8B8), picture.width, picture.height);
        std::memcpy(image_.getData(), picture.pixels.get(), image_.getSize());
    }

private:
    Ogre::Image image_;
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

    bool saveImage(const std::string& path, const u8* pixels, u32 width, u32 height,
        KEXSDK::RecordFormat format) override
    {
        bool saved = false;
        try {
            saved = format == KEXSDK::RecordFormat::A8R8G8B8 && pictures::save(path, pixels, width, height);
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
            if (picture.outcome == pictures::Decoded::Outcome::picture)
                image_.assign(picture);
        } catch (const std::exception&) { // out of memory, or a resource that went away
            image_.freeMemory();
            picture.outcome = pictures::Decoded::Outcome::unreadable;
        }
        if (picture.outcome == pictures::Decoded::Outcome::tooLarge)
            log("The picture " + path + " is too large: " + std::to_string(picture.width) + " x "
                + std::to_string(picture.height) + " pixels.");
        else if (picture.outcome == pictures::Decoded::Outcome::unreadable)
            log("The resouce: " + path + "not be add to resource group or path is not right!");
    }

    std::unique_ptr<TovOgreBase> environment_;
    OgreSharedImage image_; // after the environment: an image goes before OGRE does
};

} // namespace

std::unique_ptr<GraphicsSystem> makeOgreGraphicsSystem() { return std::make_unique<OgreGraphicsSystem>(); }
