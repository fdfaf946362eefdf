// Files of the resource locations, and nothing else.
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

/// Whether there is such a file; no more than open() does it look outside.
bool exists(const std::string& name);

/// Holds everything that OGRE itself opens to the same rules.
class Guard final : public Ogre::ResourceLoadingListener {
public:
    Ogre::DataStreamPtr resourceLoading(
        const Ogre::String& name, const Ogre::String& group, Ogre::Resource* resource) override;
};

} // namespace resourceFiles
