// Keeps the name of the resource directory for the whole process.
#include "core/resourceDirectory.h"

#include <mutex>

namespace core {

namespace {

struct Place {
    std::mutex lock;
    std::string directory;
};

// Made on first use and never destroyed: nodes may outlive the objects of the library.
Place& place()
{
    static Place* const all = new Place;
    return *all;
}

} // namespace

std::string resourceDirectory()
{
    const std::lock_guard guard(place().lock);
    return place().directory;
}

void setResourceDirectory(const std::string& directory)
{
    const std::lock_guard guard(place().lock);
    place().directory = directory;
}

} // namespace core
