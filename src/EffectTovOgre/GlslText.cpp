// Digests of source texts, and the way from a shader's name to its file.
#include "EffectTovOgre/GlslText.h"

#include "core/Types.h"

#include <OgreArchive.h>
#include <OgreException.h>
#include <OgreResourceGroupManager.h>
#include <nettle/md5.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace glslText {

namespace {

std::string digestOf(const std::string& text)
{
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, text.size(), reinterpret_cast<const u8*>(text.data()));
    std::array<u8, MD5_DIGEST_SIZE> digest;
    md5_digest(&context, digest.size(), digest.data());
    std::string hexadecimal;
    for (const u8 byte : digest) {
        hexadecimal += "0123456789abcdef"[byte >> 4];
        hexadecimal += "0123456789abcdef"[byte & 15];
    }
    return hexadecimal;
}

} // namespace

std::string programName(const std::string& text, bool isFragment, bool isSourceText)
{
    const std::string base = isSourceText ? digestOf(text) : text.substr(0, text.rfind('.'));
    return base + (isFragment ? "_FRAG_GLSL" : "_VERT_GLSL");
}

std::string readFile(const std::string& name)
{
    auto& groups = Ogre::ResourceGroupManager::getSingleton();
    if (groups.resourceExists(Ogre::RGN_DEFAULT, name))
        return groups.openResource(name, Ogre::RGN_DEFAULT)->getAsString();
    // OGRE's index of a location holds no folders, but the location itself finds what lies in them.
    for (const auto& location : groups.getResourceLocationList(Ogre::RGN_DEFAULT))
        if (location.archive->exists(name))
            return location.archive->open(name)->getAsString();
    std::error_code error;
    if (std::filesystem::is_regular_file(name, error))
        if (std::ifstream file(name, std::ios::binary); file) {
            std::ostringstream text;
            text << file.rdbuf();
            return text.str();
        }
    OGRE_EXCEPT(Ogre::Exception::ERR_FILE_NOT_FOUND, "Cannot find the file " + name, "glslText::readFile");
}

} // namespace glslText
