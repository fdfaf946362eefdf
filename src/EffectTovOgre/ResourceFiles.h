// Access to the files of the resource locations, and to no others.
#pragma once

#include <OgreResourceGroupManager.h>

#include <string>

namespace resourceFiles {

/// Largest text of a program, what it includes counted in.
inline constexpr std::size_t kLongestText = 4 << 20;

/// The file of that name in the resource locations; the name may carry folders. Throws
/// Ogre::FileNotFoundException, also for a name that leads out of them: an absolute one, one with "..", or
/// one behind which a link points elsewhere. Throws as well for what is no regular file.
Ogre::DataStreamPtr open(const std::string& name);

/// The contents of such a file. Throws as open() does, and when they are longer than kLongestText.
std::string readText(const std::string& name);

/// Whether a location has something of that name; never for an absolute name or one with "..". open() may
/// refuse it all the same, for a link that points elsewhere or what is no regular file.
bool exists(const std::string& name);

/// Applies the rules of open() to everything that OGRE itself opens, in all resource groups.
class Guard final : public Ogre::ResourceLoadingListener {
public:
    Ogre::DataStreamPtr resourceLoading(
        const Ogre::String& name, const Ogre::String& group, Ogre::Resource* resource) override;
};

} // namespace resourceFiles
