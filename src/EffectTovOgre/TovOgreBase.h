// The rendering environment: everything of OGRE that exists once per process.
#pragma once

#include "EffectTovOgre/GlslLink.h"
#include "EffectTovOgre/OgrePictureCodecs.h"
#include "core/Types.h"
#include "graphics/GraphicsSystem.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Ogre {
class LogManager;
class RenderSystem;
class RenderWindow;
class Root;
class SceneManager;
class Texture;
} // namespace Ogre

namespace resourceFiles {
class Guard;
}

namespace KEXSDK {

/// A scene within the environment's scene manager.
class LiveEffect {
public:
    /// Takes everything of the scene out of OGRE. The environment calls it for the effects that are left when
    /// it ends; nothing of OGRE may be touched afterwards.
    virtual void destroyScene() = 0;
    /// Called before the texture of another scene loses its picture: a scene that shows it takes a copy.
    virtual void textureEnds(const std::shared_ptr<Ogre::Texture>& texture) = 0;

protected:
    ~LiveEffect() = default;
};

/// Root, log, resource locations, render system with its window, scene manager. Made and destroyed by the
/// render thread, where every call of OGRE belongs.
class TovOgreBase {
public:
    /// Starts OGRE, unless an environment exists already: then the new object stays unconfigured, and
    /// unusable. Texts are joined with file names as they are, so directories end with a separator; null is
    /// empty.
    TovOgreBase(const char* resourceDirectory, const char* pluginsDirectory, const char* logDirectory,
        u32 renderSystemKind);
    TovOgreBase(const TovOgreBase&) = delete;
    TovOgreBase& operator=(const TovOgreBase&) = delete;
    /// Tears down the scenes that are left, then OGRE.
    virtual ~TovOgreBase();

    /// Sets up render system, options, window, capabilities and particles. @return whether there is a window
    virtual bool configure();
    /// Makes the one scene manager, "OgreSceneManager".
    virtual void chooseSceneManager();
    /// Sets the listener of resource loading: here, one that keeps it within the resource locations.
    virtual void createResourceListener();

    /// The environment; one with empty directories is made if there is none.
    static TovOgreBase& getInstance();

    /// True when OGRE is up and drawing is possible.
    bool initialisationSucceeded() const { return initialised_ && root_; }
    bool configurationRestored() const { return configurationRestored_; }
    /// True when results are to be shown in a visible window; this platform keeps it hidden.
    bool layeredWindow() const { return layeredWindow_; }
    Ogre::Root* root() const { return root_.get(); }
    Ogre::SceneManager* sceneManager() const { return sceneManager_; }
    Ogre::RenderWindow* renderWindow() const { return renderWindow_; }
    u32 renderSystemKind() const { return renderSystemKind_; }
    const GpuCapabilities& capabilities() const { return capabilities_; }

    /// An effect registers when its scene is made and leaves when it is torn down.
    void addLiveEffect(LiveEffect* effect);
    void removeLiveEffect(LiveEffect* effect);
    /// Tells every effect that the texture is about to lose its picture.
    void announceEnd(const std::shared_ptr<Ogre::Texture>& texture);

    /// Numbers for identities and object names; they begin anew with every environment.
    struct Counters {
        u32 effects = 0;
        u32 planes = 0;
    };
    Counters counters;

    /// Trial links of pairs of programs, by OGRE's numbers of the vertex and the fragment program.
    std::map<std::pair<unsigned long long, unsigned long long>, GlslLink> links;

    /// One line of OGRE's log, at its normal level.
    static void log(const std::string& message);

private:
    bool setup();
    void createRoot();
    void restoreConfiguration();
    void setupResources();
    Ogre::RenderSystem* findOrLoadRenderSystem();
    void setOptions(Ogre::RenderSystem& system) const;
    void readCapabilities(Ogre::RenderSystem& system);

    std::unique_ptr<Ogre::LogManager> logManager_;
    std::unique_ptr<Ogre::Root> root_;
    std::optional<OgrePictureCodecs> pictureCodecs_;
    std::unique_ptr<resourceFiles::Guard> resourceGuard_;
    Ogre::SceneManager* sceneManager_ = nullptr;
    Ogre::RenderWindow* renderWindow_ = nullptr;
    std::string resourcesFile_;
    std::string pluginsFile_;
    std::string logFile_;
    std::map<LiveEffect*, bool> liveEffects_;
    bool logsToFile_;
    u32 renderSystemKind_;
    bool initialised_ = true;
    bool configurationRestored_ = false;
    bool layeredWindow_ = false;
    GpuCapabilities capabilities_;
};

} // namespace KEXSDK
