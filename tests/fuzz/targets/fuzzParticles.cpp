// Fuzzer of particle templates: from the text of a script to drawn frames, off-screen.
#include "EffectTovOgre/TovOgreBase.h"
#include "core/DynClass.h"
#include "fuzz/mutateTemplate.h"
#include "graphics/TovEffectBase.h"

#include <OgreMaterialManager.h>
#include <OgreMovableObject.h>
#include <OgreParticleSystem.h>
#include <OgreParticleSystemManager.h>
#include <OgreResourceGroupManager.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

namespace {

constexpr const char* kGroup = "fuzz";
constexpr u32 kWidth = 24;
constexpr u32 kHeight = 16;
constexpr std::size_t kMostTemplates = 3;

/// The resource directory. The script under test is the only file of the group's location.
const std::string& directory()
{
    static const std::string& made = []() -> const std::string& {
        std::string name = (std::filesystem::temp_directory_path() / "fuzzParticles-XXXXXX").string();
        if (!mkdtemp(name.data()))
            std::abort();
        std::filesystem::create_directory(name + "/scripts");
        std::ofstream(name + "/resources.cfg") << "[General]\nFileSystem = .\n";
        std::ofstream(name + "/plugins.cfg");
        std::atexit([] { std::filesystem::remove_all(directory()); });
        return *new std::string(name + "/"); // still there at exit
    }();
    return made;
}

/// Starts the graphics system, which stays for the process.
void start()
{
    static KEXSDK::TovOgreBase* const environment = [] {
        unsetenv("DISPLAY");
        return new KEXSDK::TovOgreBase(directory().c_str(), directory().c_str(), nullptr, 0);
    }();
    if (!environment->initialisationSucceeded())
        std::abort();
}

/// Reads a script the way the engine's start reads the resource groups of its configuration.
void readScript(const unsigned char* data, std::size_t size)
{
    std::ofstream(directory() + "scripts/fuzz.particle", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), std::streamsize(size));
    auto& groups = Ogre::ResourceGroupManager::getSingleton();
    groups.createResourceGroup(kGroup);
    groups.addResourceLocation(directory() + "scripts", "FileSystem", kGroup);
    groups.initialiseResourceGroup(kGroup); // an exception here would end the engine's start
}

std::vector<std::string> templateNames()
{
    std::vector<std::string> names;
    for (const auto& [name, system] : Ogre::ParticleSystemManager::getSingleton().getTemplateIterator())
        names.push_back(name);
    names.resize(std::min(names.size(), kMostTemplates));
    return names;
}

/// Draws a template's particles: some frames forward, over a gap, and back.
void draw(const std::string& name)
{
    const std::unique_ptr<KEXSDK::TovEffectBase> effect(DYN_CLASS::create("TovOgrePaticalUniverseEffect"));
    const std::vector<u8> input(std::size_t(kWidth) * kHeight * 4, 255);
    effect->setSize(kWidth, kHeight);
    effect->setInputPixels(input.data(), kWidth, kHeight, 0);
    effect->particleTemplate = name;
    for (const u32 frame : {1, 2, 20, 5}) {
        KEXSDK::_ImageParam* record = nullptr;
        effect->setFrameIndex(frame);
        try {
            effect->render(&record, nullptr, 4);
        } catch (const std::exception&) { // the render thread logs it, and the node copies its input
        }
    }
    dynamic_cast<KEXSDK::LiveEffect&>(*effect).destroyScene();
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(
    unsigned char* data, std::size_t size, std::size_t maxSize, unsigned int seed)
{
    const std::string text =
        fuzz::TemplateMutator(seed)(std::string(reinterpret_cast<const char*>(data), size));
    const std::size_t length = std::min(text.size(), maxSize);
    std::memcpy(data, text.data(), length);
    return length;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    start();
    readScript(data, size);
    for (const std::string& name : templateNames())
        draw(name);
    Ogre::ParticleSystemManager::getSingleton().removeAllTemplates();
    Ogre::ResourceGroupManager::getSingleton().destroyResourceGroup(kGroup);
    return 0;
}
