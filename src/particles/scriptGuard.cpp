// Script loaders in the place of OGRE's, which check a script and catch its exceptions.
#include "particles/scriptGuard.h"

#include <OgreDataStream.h>
#include <OgreLogManager.h>
#include <OgreMaterialManager.h> // (the particle manager's header does not include what it needs)
#include <OgreMovableObject.h>
#include <OgreParticleSystemManager.h>
#include <OgreResourceGroupManager.h>
#include <OgreScriptCompiler.h>
#include <OgreScriptLoader.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <string>

namespace particles {

namespace {

/// Limits of depth, since OGRE's compiler calls itself for every section in a section, and for every import.
constexpr int kDeepestSection = 64;
constexpr int kMostImports = 64;

/// Listens while OGRE compiles a script; what it throws ends the script.
class ScriptListener final : public Ogre::ScriptCompilerListener {
public:
    Ogre::ConcreteNodeListPtr importFile(Ogre::ScriptCompiler*, const Ogre::String&) override
    {
        if (++imports > kMostImports)
            throw std::runtime_error("more than " + std::to_string(kMostImports) + " imports");
        return {}; // OGRE then looks for the file
    }
    bool postConversion(Ogre::ScriptCompiler*, const Ogre::AbstractNodeListPtr& nodes) override
    {
        for (const auto& node : *nodes) { // OGRE would put it into a particle system that is not there
            if (node->type != Ogre::ANT_OBJECT)
                continue;
            const std::string& kind = static_cast<const Ogre::ObjectAbstractNode&>(*node).cls;
            if (kind == "emitter" || kind == "affector")
                throw std::runtime_error("an " + kind + " stands outside of particle systems");
        }
        return true;
    }

    int imports = 0;
};

ScriptListener listener;

void requireShallow(const std::string& text)
{
    int depth = 0;
    for (const char c : text) {
        if (c == '{' && ++depth > kDeepestSection)
            throw std::runtime_error(
                "sections stand more than " + std::to_string(kDeepestSection) + " deep in each other");
        if (c == '}')
            depth = std::max(depth - 1, 0);
    }
}

class GuardedLoader final : public Ogre::ScriptLoader {
public:
    void guard(Ogre::ScriptLoader& loader)
    {
        loader_ = &loader;
        auto& groups = Ogre::ResourceGroupManager::getSingleton();
        groups._unregisterScriptLoader(loader_);
        groups._registerScriptLoader(this);
    }

private:
    const Ogre::StringVector& getScriptPatterns() const override { return loader_->getScriptPatterns(); }
    Ogre::Real getLoadingOrder() const override { return loader_->getLoadingOrder(); }
    void parseScript(Ogre::DataStreamPtr& stream, const Ogre::String& group) override
    {
        const std::string name = stream->getName();
        try {
            listener.imports = 0;
            std::string text = stream->getAsString();
            requireShallow(text);
            Ogre::DataStreamPtr copy =
                std::make_shared<Ogre::MemoryDataStream>(name, text.data(), text.size(), false, true);
            loader_->parseScript(copy, group);
        } catch (const std::exception& error) { // OGRE's own, and those of the library below it
            Ogre::LogManager::getSingleton().logMessage(
                "The script " + name + " cannot be read to its end: " + error.what(), Ogre::LML_CRITICAL);
        }
    }

    Ogre::ScriptLoader* loader_ = nullptr;
};

} // namespace

void guardScripts()
{
    static GuardedLoader scripts;
    static GuardedLoader particleScripts;
    scripts.guard(Ogre::ScriptCompilerManager::getSingleton());
    particleScripts.guard(Ogre::ParticleSystemManager::getSingleton());
    Ogre::ScriptCompilerManager::getSingleton().setListener(&listener);
}

} // namespace particles
