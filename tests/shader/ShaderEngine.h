// A running engine over a resource directory of a test's own, drawing off-screen.
#pragma once

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "hosting/Host.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <random>

namespace test {

using Bgra = std::array<unsigned char, 4>;

/// A script with the material "sprite", which particles of scenes are drawn with.
inline constexpr const char* kSpriteMaterial = R"(
material sprite
{
    technique
    {
        pass
        {
            lighting off
            depth_write off
            scene_blend alpha_blend
        }
    }
}
)";

/// Write the files, call start(), take filters by the number of their descriptors.
class ShaderEngine : public testing::Test {
protected:
    ShaderEngine()
    {
        unsetenv("DISPLAY");
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        files.write("resources.cfg",
            "[General]\nFileSystem = .\nFileSystem = Shader\nFileSystem = Transitions\nFileSystem = "
            "Particles\n");
        files.write("plugins.cfg", "");
    }

    void start(bool withLog = false)
    {
        engine.emplace(files.path(), withLog ? files.path().c_str() : nullptr);
        ASSERT_TRUE(KEXSDK::gpuAvailable());
    }

    static std::string guid(int number)
    {
        return "5AAD0000-0000-4000-8000-0000000000" + std::to_string(10 + number);
    }

    /// Writes a descriptor into "Shader/", with members that follow its GUID.
    void describe(int number, const std::string& members)
    {
        files.write("Shader/" + std::to_string(number) + ".conf",
            "{\n\"GUID\":\"" + guid(number) + "\"" + (members.empty() ? "" : ",\n" + members) + "\n}\n");
    }
    /// Writes a descriptor with a fragment program, whose main function has this body.
    void program(
        int number, const std::string& uniforms, const std::string& body, const std::string& members = "")
    {
        const std::string name = std::to_string(number) + ".frag";
        files.write("Shader/" + name,
            "#version 120\nvarying vec2 textureCoord;\n" + uniforms + "\nvoid main() {\n" + body + "\n}\n");
        describe(number, "\"SHADER\": \"" + name + "\"" + (members.empty() ? "" : ", " + members));
    }

    host::Filter filter(int number, int width = 8, int height = 8) { return {guid(number), width, height}; }

    static host::Image plain(unsigned width, unsigned height, Bgra colour)
    {
        host::Image image(width, height);
        for (std::size_t i = 0; i < image.bytes().size(); ++i)
            image.bytes()[i] = colour[i % 4];
        return image;
    }
    static host::Image noise(unsigned width, unsigned height, unsigned seed)
    {
        host::Image image(width, height);
        std::mt19937 random(seed);
        for (unsigned char& byte : image.bytes())
            byte = (unsigned char)(random());
        return image;
    }

    static std::vector<unsigned char> bytes(CEffectImage* image)
    {
        const auto all = host::bytesOf(image);
        return {all.begin(), all.end()};
    }
    static std::vector<unsigned char> bytes(const host::Image& image) { return bytes(image.handle()); }

    /// The pixel in the middle of what the filter draws of an input.
    static Bgra middle(host::Filter& filter)
    {
        const auto all = bytes(filter.run());
        Bgra pixel;
        std::copy_n(all.begin() + std::ptrdiff_t(all.size() / 2), 4, pixel.begin());
        return pixel;
    }

    TemporaryDirectory files;
    std::optional<host::Engine> engine;
};

} // namespace test
