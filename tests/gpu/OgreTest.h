// What tests of the real graphics system share: a directory of their own, and OGRE's log.
#pragma once

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "platform/OffscreenGl.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

/// No test needs a display; one that happens to be there must not help either. To draw on one nevertheless:
/// EFFECTENGINE_DRAW_ON_DISPLAY=1 xvfb-run -a effectengine_tests --gtest_filter='EffectTest*:Gpu*'
class OgreTest : public testing::Test {
protected:
    OgreTest()
    {
        if (std::getenv("EFFECTENGINE_DRAW_ON_DISPLAY"))
            offscreenGl::setAllowed(false);
        else
            unsetenv("DISPLAY");
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        char name[] = "/tmp/effectengine-gpu-XXXXXX";
        directory_ = std::string(mkdtemp(name)) + "/";
    }
    ~OgreTest() override { std::filesystem::remove_all(directory_); }

    std::string path(const std::string& name) const { return directory_ + name; }
    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const
    {
        std::ostringstream text;
        text << std::ifstream(path(name), std::ios::binary).rdbuf();
        return text.str();
    }
    static std::size_t residentKilobytes()
    {
        std::size_t total = 0, resident = 0;
        std::ifstream("/proc/self/statm") >> total >> resident;
        return resident * std::size_t(sysconf(_SC_PAGESIZE)) / 1024;
    }
    bool logged(const std::string& text) const { return read("Ogre.log").find(text) != std::string::npos; }

    std::string directory_;
};
