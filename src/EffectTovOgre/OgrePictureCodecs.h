// The engine's picture decoder as OGRE's own, for the textures that materials and scripts name.
#pragma once

#include <memory>
#include <vector>

namespace Ogre {
class Codec;
}

namespace KEXSDK {

/// While it lives, OGRE knows the decoder under every suffix that it reads and no other codec has taken.
/// OGRE's own picture plug-in is not used: what it allocates OGRE frees in another way, and it fills up
/// truncated files without a word. Made once the root is there, and destroyed before it.
class OgrePictureCodecs {
public:
    OgrePictureCodecs();
    OgrePictureCodecs(const OgrePictureCodecs&) = delete;
    OgrePictureCodecs& operator=(const OgrePictureCodecs&) = delete;
    ~OgrePictureCodecs();

private:
    std::vector<std::unique_ptr<Ogre::Codec>> codecs_;
};

} // namespace KEXSDK
