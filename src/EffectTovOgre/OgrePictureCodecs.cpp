// One codec per file suffix over the one decoder, which tells the kinds apart by their bytes.
#include "EffectTovOgre/OgrePictureCodecs.h"

#include "EffectTovOgre/PictureCodecs.h"
#include "EffectTovOgre/PixelFormats.h"

#include <OgreDataStream.h>
#include <OgreException.h>
#include <OgreImage.h>
#include <OgreImageCodec.h>

#include <cstring>
#include <sstream>

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
        image.create(ogreFormat(KEXSDK::RecordFormat::A8R8G8B8), picture.width, picture.height);
        std::memcpy(image.getData(), picture.pixels.get(), image.getSize());
    }

private:
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
