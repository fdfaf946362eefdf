// The real OGRE: it starts without a display, fails softly, and can be started again and again.
#include "EffectTovOgre/TovOgreBase.h"
#include "gpu/OgreTest.h"
#include "platform/OffscreenGl.h"
#include "support/paths.h"

#include <GL/gl.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <OgreSceneManager.h>
#include <OgreTextureManager.h>

namespace {

class EnvironmentTest : public OgreTest { };

struct WithoutOffscreen {
    WithoutOffscreen() { offscreenGl::setAllowed(false); }
    ~WithoutOffscreen() { offscreenGl::setAllowed(true); }
};

std::size_t openFiles()
{
    const auto all = std::filesystem::directory_iterator("/proc/self/fd");
    return std::size_t(std::distance(begin(all), end(all)));
}

TEST_F(EnvironmentTest, BringsUpTheWholeRecipeWithoutADisplay)
{
    KEXSDK::TovOgreBase environment(
        test::kResourceDirectory, test::kResourceDirectory, directory_.c_str(), 0);
    ASSERT_TRUE(environment.initialisationSucceeded()) << read("Ogre.log");
    EXPECT_FALSE(environment.configurationRestored());
    EXPECT_FALSE(environment.layeredWindow());
    EXPECT_EQ(&KEXSDK::TovOgreBase::getInstance(), &environment);
    EXPECT_EQ(Ogre::Root::getSingleton().getSceneManager("OgreSceneManager"), environment.sceneManager());
    EXPECT_EQ(Ogre::Root::getSingleton().getAutoCreatedWindow(), environment.renderWindow());
    EXPECT_EQ(Ogre::TextureManager::getSingleton().getDefaultNumMipmaps(), 5u);
    EXPECT_GE(environment.capabilities().maxTextureSize, 4096u);
    EXPECT_TRUE(environment.capabilities().textures3D);
    EXPECT_GE(environment.capabilities().driver.major, 2);
    EXPECT_TRUE(logged("Particle Emitter Type 'Point' registered"));

    // OGRE believes that it has a context from GLX; drawing in it works.
    glClearColor(0.2f, 0.4f, 0.6f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    unsigned char pixel[4]{};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ((std::vector<int>(pixel, pixel + 3)), (std::vector<int>{51, 102, 153}));

    KEXSDK::TovOgreBase second(test::kResourceDirectory, test::kResourceDirectory, directory_.c_str(), 0);
    EXPECT_EQ(second.root(), nullptr);
    EXPECT_FALSE(second.initialisationSucceeded());
    EXPECT_EQ(&KEXSDK::TovOgreBase::getInstance(), &environment);
}

TEST_F(EnvironmentTest, TearsDownTheScenesThatAreLeftWhileOgreIsStillUp)
{
    struct Scene final : KEXSDK::LiveEffect {
        KEXSDK::TovOgreBase* environment = nullptr;
        int destroyed = 0;
        void textureEnds(const std::shared_ptr<Ogre::Texture>&) override { }
        void destroyScene() override
        {
            EXPECT_NE(Ogre::Root::getSingletonPtr(), nullptr);
            ++destroyed;
            if (environment)
                environment->removeLiveEffect(this);
        }
    } leaves, stays, gone;
    {
        KEXSDK::TovOgreBase environment(test::kResourceDirectory, nullptr, directory_.c_str(), 0);
        leaves.environment = &environment;
        for (Scene* const scene : {&leaves, &stays, &gone})
            environment.addLiveEffect(scene);
        environment.removeLiveEffect(&gone);
    }
    EXPECT_EQ(leaves.destroyed, 1);
    EXPECT_EQ(stays.destroyed, 1);
    EXPECT_EQ(gone.destroyed, 0);
    EXPECT_EQ(Ogre::Root::getSingletonPtr(), nullptr);
}

TEST_F(EnvironmentTest, WithoutOffscreenAndWithoutALivingDisplayTheGpuIsUnavailable)
{
    const auto start = [&] {
        KEXSDK::TovOgreRenderThread thread(
            test::kResourceDirectory, test::kResourceDirectory, directory_.c_str());
        const bool available = KEXSDK::gpuAvailable();
        EXPECT_EQ(static_cast<bool>(thread.loadImage("x")), available);
        return available;
    };
    for (const char* const display : {"", ":4711"}) { // nobody answers there
        setenv("DISPLAY", display, 1);
        {
            const WithoutOffscreen guard;
            EXPECT_FALSE(start());
            EXPECT_TRUE(logged("Initialze Ogre failed!"));
        }
        EXPECT_TRUE(start()) << "and back off-screen, display or not: " << read("Ogre.log");
    }
}

TEST_F(EnvironmentTest, StartingOftenCostsNeitherFilesNorMemory)
{
    const auto startOften = [&](int times) {
        for (int i = 0; i < times; ++i) {
            KEXSDK::TovOgreRenderThread thread(
                test::kResourceDirectory, test::kResourceDirectory, directory_.c_str());
            ASSERT_TRUE(KEXSDK::gpuAvailable());
        }
    };
    startOften(10);
    const std::size_t files = openFiles(), memory = residentKilobytes();
    startOften(40);
    EXPECT_EQ(openFiles(), files);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(residentKilobytes(), memory + 4 * 1024); // one sprite kept a start would be 10 MB
#else
    static_cast<void>(memory); // sanitizers keep what was freed
#endif
}

TEST_F(EnvironmentTest, WithoutItsResourcesFileItIsNotUsable)
{
    KEXSDK::TovOgreRenderThread thread(directory_.c_str(), nullptr, directory_.c_str());
    EXPECT_FALSE(KEXSDK::gpuAvailable());
    EXPECT_TRUE(logged(path("resources.cfg") + " not found, automatic resource loading disabled."));
    EXPECT_TRUE(logged("Initialze Ogre failed!"));
}

TEST_F(EnvironmentTest, ResourceLocationsStartAtTheFilesDirectoryAndMayBeMissing)
{
    // The directory's text has no separator at its end: it is joined with the file's name as it is.
    write("otherresources.cfg", "[General]\nFileSystem=there\nFileSystem=missing\nNoSuchType=there\n");
    std::filesystem::create_directory(path("there"));
    write("there/by-name.pgm", "P5 1 1 255 \x40");
    KEXSDK::TovOgreRenderThread thread(path("other").c_str(), nullptr, directory_.c_str());
    ASSERT_TRUE(KEXSDK::gpuAvailable()) << read("Ogre.log");
    const KEXSDK::LoadedImage image = thread.loadImage("by-name.pgm");
    ASSERT_TRUE(image && image->hasData());
    EXPECT_EQ(image->bytes()[0], 0x40);
}

TEST_F(EnvironmentTest, AConfigurationInTheCurrentDirectoryReplacesTheOptions)
{
    write("ogre.cfg",
        "Render System=OpenGL Rendering Subsystem\n\n[OpenGL Rendering Subsystem]\nVideo Mode=320 x 200\n"
        "Full Screen=No\n");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(directory_);
    {
        KEXSDK::TovOgreBase environment(test::kResourceDirectory, nullptr, directory_.c_str(), 0);
        EXPECT_TRUE(environment.initialisationSucceeded()) << read("Ogre.log");
        EXPECT_TRUE(environment.configurationRestored());
        EXPECT_EQ(environment.renderWindow()->getWidth(), 320u);
    }
    std::filesystem::current_path(before);
}

TEST_F(EnvironmentTest, TheProcessMayEndWhileTheThreadWaits)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            new KEXSDK::TovOgreRenderThread(test::kResourceDirectory, nullptr, directory_.c_str());
            std::filesystem::remove_all(directory_); // the child's own, which no fixture removes
            std::exit(KEXSDK::gpuAvailable() ? 42 : 1);
        },
        testing::ExitedWithCode(42), "");
}

} // namespace
