// One codec per file suffix over the one decoder, which tells the kinds apart by their bytes.
#include "EffectTovOgre/OgrePictureCodecs.h"

#include "EffectTovOgre/PixelFormats.h"
#include "pictures/PictureCodecs.h"

#include <OgreDataStream.h>
#include <OgreException.h>
#include <OgreImage.h>
#include <OgreImageCodec.h>
#include <OgreTextureManager.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <sstream>

namespace KEXSDK {

namespace {

constexpr const char* kSuffixes[] = {
    "bmp", "gif", "hdr", "jpeg", "jpg", "pgm", "pic", "png", "ppm", "psd", "tga"};

class PictureCodec : public Ogre::ImageCodec {
public:
    explicit PictureCodec(const char* suffix) : suffix_(suffix) { }

    Ogre::String getType() const override { return suffix_; }
    Ogre::String magicNumberToFileExt(const char*, std::size_t) const override { return {}; }

    void decode(const Ogre::DataStreamPtr& input, const Ogre::Any& output) const override
    {
        std::istringstream file(input->getAsString());
        const pictures::Decoded picture = pictures::decode(file);
        if (picture.outcome != pictures::Decoded::Outcome::picture)
            OGRE_EXCEPT(Ogre::Exception::ERR_INVALIDPARAMS,
                "cannot be read as a picture: " + input->getName(), "PictureCodec::decode");
        auto& image = *Ogre::any_cast<Ogre::Image*>(output);
        const u32 mipmaps = mipmapsOf(picture.width, picture.height);
        image.create(ogreFormat(RecordFormat::A8R8G8B8), picture.width, picture.height, 1, 1, mipmaps);
        std::memcpy(image.getData(), picture.pixels.get(), std::size_t{picture.width} * picture.height * 4);
        for (u32 level = 1; level <= mipmaps; ++level)
            Ogre::Image::scale(
                image.getPixelBox(0, level - 1), image.getPixelBox(0, level), Ogre::Image::FILTER_BILINEAR);
    }

private:
    /// The mipmaps of a picture: as many as OGRE would have the driver make. They are made here because a
    /// software driver takes milliseconds for each texture.
    static u32 mipmapsOf(u32 width, u32 height)
    {
        const u32 all = u32(std::bit_width(std::max(width, height))) - 1;
        return std::min<u32>(all, u32(Ogre::TextureManager::getSingleton().getDefaultNumMipmaps()));
    }

    const char* suffix_;
};

} // namespace

OgrePictureCodecs::OgrePictureCodecs()
{
    for (const char* const suffix : kSuffixes)
        if (!Ogre::Codec::isCodecRegistered(suffix)) {
            codecs_.push_back(std::make_unique<PictureCodec>(suffix));
            Ogre::Codec::registerCodec(codecs_.back().get());
        }
}

OgrePictureCodecs::~OgrePictureCodecs()
{
    for (const auto& codec : codecs_)
        Ogre::Codec::unregisterCodec(codec.get());
}

} // namespace KEXSDK
