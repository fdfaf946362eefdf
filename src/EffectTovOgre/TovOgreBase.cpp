// Brings OGRE up off-screen, and takes it down.
#include "EffectTovOgre/TovOgreBase.h"

#include "EffectTovOgre/OgrePlugins.h"
#include "EffectTovOgre/ResourceFiles.h"
#include "particles/RangedEmitter.h"

#include <GL/gl.h>
#include <OgreConfigFile.h>
#include <OgreLogManager.h>
#include <OgreRenderSystem.h>
#include <OgreRenderSystemCapabilities.h>
#include <OgreRenderWindow.h>
#include <OgreResourceGroupManager.h>
#include <OgreRoot.h>
#include <OgreSceneManagerEnumerator.h>
#include <OgreTextureManager.h>
#include <OgreWorkQueue.h>

#include <utility>

namespace KEXSDK {

namespace {

TovOgreBase* singleton = nullptr;

constexpr const char* kConfigurationFile = "ogre.cfg"; // in the current directory
constexpr const char* kWindowTitle = "Tov Ogre Render Window";
constexpr std::size_t kMipmaps = 5;

// The size of a new effect: nothing is shown in the window, and there may be no screen to ask for its size.
constexpr const char* kVideoMode = "800 x 600";

constexpr std::pair<const char*, const char*> kOptions[] = {
    {"Colour Depth", "32"},
    {"Display Frequency", "N/A"},
    {"FSAA", "0"},
    {"Fixed Pipeline Enabled", "Yes"},
    {"Full Screen", "No"},
    {"RTT Preferred Mode", "FBO"},
    {"VSync", "No"},
    {"VSync Interval", "1"},
    {"Video Mode", kVideoMode},
    {"sRGB Gamma Conversion", "No"},
};

std::string textOrEmpty(const char* text) { return text ? text : ""; }

} // namespace

TovOgreBase::TovOgreBase(const char* resourceDirectory, const char* pluginsDirectory,
    const char* logDirectory, u32 renderSystemKind)
    : resourcesFile_(textOrEmpty(resourceDirectory) + "resources.cfg"),
      pluginsFile_(textOrEmpty(pluginsDirectory) + "plugins.cfg"),
      logFile_(textOrEmpty(logDirectory) + "Ogre.log"),
      logsToFile_(logDirectory && *logDirectory),
      renderSystemKind_(renderSystemKind)
{
    if (singleton)
        return;
    singleton = this;
    // OGRE's singletons exist once per process. If they are there, the host itself draws with OGRE.
    if (Ogre::Root::getSingletonPtr() || Ogre::LogManager::getSingletonPtr()) {
        initialised_ = false;
        return;
    }
    try {
        initialised_ = setup();
    } catch (const std::exception& error) { // OGRE's own exceptions among them
        initialised_ = false;
        log(error.what());
    }
}

TovOgreBase::~TovOgreBase()
{
    if (singleton != this)
        return;
    while (!liveEffects_.empty()) { // destroyScene takes the effect out of the map, or else this loop does
        const auto [effect, alive] = *liveEffects_.begin();
        if (alive)
            effect->destroyScene();
        liveEffects_.erase(effect);
    }
    pictureCodecs_.reset();
    root_.reset();
    resourceGuard_.reset();
    logManager_.reset();
    singleton = nullptr;
}

TovOgreBase& TovOgreBase::getInstance()
{
    if (!singleton)
        new TovOgreBase(nullptr, nullptr, nullptr, 0); // kept by `singleton` for the life of the process
    return *singleton;
}

bool TovOgreBase::setup()
{
    createRoot();
    restoreConfiguration();
    setupResources();
    if (!initialised_ || !configure())
        return false;
    chooseSceneManager();
    Ogre::TextureManager::getSingleton().setDefaultNumMipmaps(kMipmaps);
    createResourceListener();
    Ogre::ResourceGroupManager::getSingleton().initialiseAllResourceGroups();
    root_->getRenderSystem()->_initRenderTargets();
    root_->clearEventTimes();
    return true;
}

void TovOgreBase::createRoot()
{
    // A log that the root made would repeat every line on the host's standard output.
    logManager_ = std::make_unique<Ogre::LogManager>();
    // Without a log directory there is no file: it would land in whatever directory the host runs in.
    logManager_->createLog(logFile_, true, false, !logsToFile_);
    root_ = std::make_unique<Ogre::Root>(pluginsFile_, kConfigurationFile, logFile_);
    // Nothing here is loaded in the background, and OGRE's workers would write to its log all at once.
    if (auto* const workers = dynamic_cast<Ogre::DefaultWorkQueueBase*>(root_->getWorkQueue()))
        workers->setWorkerThreadCount(0);
    // The render system is not in the list of plug-ins: there one that fails would end the process.
    ogrePlugins::loadRenderSystem(*root_);
    pictureCodecs_.emplace();
}

void TovOgreBase::restoreConfiguration()
{
    try {
        configurationRestored_ = root_->restoreConfig();
    } catch (const Ogre::Exception&) {
        log("ogre.cfg file not found, automatic config loading disabled.");
    }
}

void TovOgreBase::setupResources()
{
    Ogre::ConfigFile file;
    try {
        file.load(resourcesFile_, "\t:=", true);
    } catch (const Ogre::Exception&) {
        log(resourcesFile_ + " not found, automatic resource loading disabled.");
        initialised_ = false;
        return;
    }
    const std::string base =
        resourcesFile_.substr(0, resourcesFile_.rfind('/') + 1); // empty without a separator
    auto& groups = Ogre::ResourceGroupManager::getSingleton();
    for (const auto& [group, settings] : file.getSettingsBySection())
        for (const auto& [type, location] : settings)
            try {
                groups.addResourceLocation(base + location, type, group, false, true);
            } catch (const Ogre::Exception& error) { // the others remain
                log(error.what());
            }
}

Ogre::RenderSystem* TovOgreBase::findOrLoadRenderSystem()
{
    if (auto* const loaded = root_->getRenderSystemByName(ogrePlugins::kRenderSystemName))
        return loaded;
    ogrePlugins::loadRenderSystem(*root_);
    return root_->getRenderSystemByName(ogrePlugins::kRenderSystemName);
}

void TovOgreBase::setOptions(Ogre::RenderSystem& system) const
{
    // The options differ between builds of OGRE, and setting one that does not exist throws.
    const auto& known = system.getConfigOptions();
    for (const auto& [name, value] : kOptions)
        if (known.contains(name))
            system.setConfigOption(name, value);
}

bool TovOgreBase::configure()
{
    Ogre::RenderSystem* const system = findOrLoadRenderSystem();
    if (!system) {
        initialised_ = false;
        return false;
    }
    if (!configurationRestored_)
        setOptions(*system);
    root_->setRenderSystem(system);
    try {
        renderWindow_ = root_->initialise(true, kWindowTitle, "");
    } catch (const Ogre::Exception& error) {
        log(error.what());
    }
    if (!renderWindow_) {
        initialised_ = false;
        return false;
    }
    renderWindow_->setHidden(true);
    readCapabilities(*system);
    ogrePlugins::load(*root_, "Plugin_ParticleFX");
    particles::registerTypes();
    return true;
}

void TovOgreBase::readCapabilities(Ogre::RenderSystem& system)
{
    GLint side = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
    capabilities_.maxTextureSize = side > 0 ? u32(side) : 0;

    const Ogre::RenderSystemCapabilities& all = *system.getCapabilities();
    capabilities_.pbuffer = all.hasCapability(Ogre::RSC_PBUFFER);
    capabilities_.intelGpu = all.getVendor() == Ogre::GPU_INTEL;
    capabilities_.renderer = all.getDeviceName();
    capabilities_.textures3D = all.hasCapability(Ogre::RSC_TEXTURE_3D);
    const Ogre::DriverVersion& version = all.getDriverVersion();
    capabilities_.driver = {version.major, version.minor, version.release, version.build};
}

void TovOgreBase::chooseSceneManager()
{
    sceneManager_ =
        root_->createSceneManager(Ogre::DefaultSceneManagerFactory::FACTORY_TYPE_NAME, "OgreSceneManager");
}

void TovOgreBase::addLiveEffect(LiveEffect* effect) { liveEffects_[effect] = true; }

void TovOgreBase::removeLiveEffect(LiveEffect* effect) { liveEffects_.erase(effect); }

void TovOgreBase::announceEnd(const std::shared_ptr<Ogre::Texture>& texture)
{
    for (const auto& [effect, alive] : liveEffects_)
        try {
            effect->textureEnds(texture);
        } catch (const std::exception& error) { // it shows nothing then; the scene that ends goes on ending
            log(error.what());
        }
}

void TovOgreBase::createResourceListener()
{
    resourceGuard_ = std::make_unique<resourceFiles::Guard>();
    Ogre::ResourceGroupManager::getSingleton().setLoadingListener(resourceGuard_.get());
}

void TovOgreBase::log(const std::string& message)
{
    if (auto* const manager = Ogre::LogManager::getSingletonPtr(); manager && manager->getDefaultLog())
        manager->logMessage(message, Ogre::LML_NORMAL);
}

} // namespace KEXSDK
