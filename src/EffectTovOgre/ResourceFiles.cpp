// Opens files of the resource locations, and refuses names that lead out of them.
#include "EffectTovOgre/ResourceFiles.h"

#include <OgreArchive.h>
#include <OgreException.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace resourceFiles {

namespace {

constexpr const char* kFileSystem = "FileSystem";
constexpr const char* kLeadsOut = " leads out of the resource folders.";

[[noreturn]] void refuse(const std::string& name, const char* reason)
{
    OGRE_EXCEPT(Ogre::Exception::ERR_FILE_NOT_FOUND, "The file " + name + reason, "resourceFiles::open");
}

auto& groups() { return Ogre::ResourceGroupManager::getSingleton(); }

bool isPlain(const std::string& name)
{
    const fs::path path(name);
    return !name.empty() && name.find('\0') == std::string::npos && path.is_relative()
        && std::ranges::find(path, fs::path("..")) == path.end();
}

/// Whether a path, its links followed, lies in one of the locations of any group.
bool isInside(const fs::path& path)
{
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    if (error)
        return false;
    for (const std::string& group : groups().getResourceGroups())
        for (const auto& location : groups().getResourceLocationList(group)) {
            const fs::path folder = fs::canonical(location.archive->getName(), error);
            if (!error && std::ranges::mismatch(folder, real).in1 == folder.end())
                return true;
        }
    return false;
}

/// The archive of the group that holds the file; null when none does. Throws Ogre::FileNotFoundException when
/// the file is not regular or leads out of the locations.
Ogre::Archive* archiveOf(const std::string& name, const std::string& group)
{
    for (const auto& location : groups().getResourceLocationList(group)) {
        if (!location.archive->exists(name))
            continue;
        if (location.archive->getType() == kFileSystem) {
            const fs::path path = fs::path(location.archive->getName()) / name;
            std::error_code error;
            if (!fs::is_regular_file(path, error)) // opening a pipe could take for ever
                refuse(name, " is no file.");
            if (!isInside(path))
                refuse(name, kLeadsOut);
        }
        return location.archive;
    }
    return nullptr;
}

} // namespace

Ogre::DataStreamPtr open(const std::string& name)
{
    if (!isPlain(name))
        refuse(name, kLeadsOut);
    Ogre::Archive* const archive = archiveOf(name, Ogre::RGN_DEFAULT);
    if (!archive)
        refuse(name, " cannot be found in the resource folders.");
    return archive->open(name);
}

std::string readText(const std::string& name)
{
    const Ogre::DataStreamPtr file = open(name);
    if (file->size() > kLongestText)
        refuse(name, " is too long.");
    return file->getAsString();
}

bool exists(const std::string& name)
{
    return isPlain(name)
        && std::ranges::any_of(groups().getResourceLocationList(Ogre::RGN_DEFAULT),
            [&](const auto& location) { return location.archive->exists(name); });
}

Ogre::DataStreamPtr Guard::resourceLoading(
    const Ogre::String& name, const Ogre::String& group, Ogre::Resource*)
{
    if (!isPlain(name))
        refuse(name, kLeadsOut);
    if (groups().resourceGroupExists(group))
        archiveOf(name, group);
    else // OGRE looks for it in all of them
        for (const std::string& any : groups().getResourceGroups())
            archiveOf(name, any);
    return nullptr; // OGRE opens it
}

} // namespace resourceFiles
