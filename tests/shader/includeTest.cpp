// Which files of a pack a shader effect may read: those in the resource folders, and none beside them.
#include "shader/ShaderEngine.h"

#include <sys/stat.h>

namespace {

using test::Bgra;

constexpr const char* kRed = "vec4 colour() { return vec4(1.0, 0.0, 0.0, 1.0); }\n";
constexpr const char* kRedProgram = "void main() { gl_FragColor = vec4(1.0, 0.0, 0.0, 1.0); }\n";
constexpr Bgra kGrey{40, 50, 60, 255};
constexpr Bgra kIsRed{0, 0, 255, 255};

class ShaderFiles : public test::ShaderEngine {
protected:
    ShaderFiles()
    {
        outside.write("secret.glsl", kRed);
        outside.write("secret.frag", kRedProgram);
        climbing = "../" + std::filesystem::path(outside.path()).parent_path().filename().string() + "/";
    }

    /// A program that shows the colour that its includes define.
    void including(int number, const std::string& includes)
    {
        files.write("Shader/" + std::to_string(number) + ".frag",
            includes + "\nvoid main() { gl_FragColor = colour(); }\n");
        describe(number, "\"SHADER\": \"" + std::to_string(number) + ".frag\"");
    }
    void link(const std::string& target, const std::string& name) const
    {
        std::filesystem::create_symlink(target, files.path() + name);
    }
    Bgra drawn(int number)
    {
        auto node = filter(number);
        const auto input = plain(8, 8, kGrey);
        node.setInput(input);
        return middle(node);
    }

    test::TemporaryDirectory outside;
    std::string climbing; ///< from the resource directory to the one outside
};

TEST_F(ShaderFiles, IncludesOfThePackAreTakenIn)
{
    files.write("Shader/red.glsl", kRed);
    files.write("Shader/parts/red.glsl", kRed);
    files.write("Shader/once.glsl", std::string("#ifndef ONCE\n#define ONCE\n") + kRed + "#endif\n");
    files.write("Shader/outer.glsl", "#include \"inner.glsl\"");
    files.write("Shader/inner.glsl", std::string("#include <parts/red.glsl> // the colour\n"));
    files.write("Shader/version.glsl", "#version 130\n");
    std::filesystem::create_directory(files.path() + "Shader/unused");
    link("red.glsl", "Shader/alias.glsl");
    const char* const includes[] = {
        "#include \"red.glsl\"",
        "#version 120\n  #\tinclude  <red.glsl>  // with blanks",
        "/* the colour */ #include \"parts/red.glsl\" /* and\n#include \"nothing.glsl\" */",
        "#include \"outer.glsl\"\r\n//#include \"nothing.glsl\"",
        "#include \"once.glsl\"\n#include \"once.glsl\"",
        "#include \"version.glsl\"\nuniform uint number;\n#include \"alias.glsl\"",
        "// a comment that goes on \\\n#include \"nothing.glsl\"\n#include \"red.glsl\"",
    };
    for (int i = 0; i < int(std::size(includes)); ++i)
        including(i, includes[i]);
    start();
    for (int i = 0; i < int(std::size(includes)); ++i)
        EXPECT_EQ(drawn(i), kIsRed) << includes[i];
}

// Effects whose files are refused: each with one line in the log, and showing its input.
class ShaderFilesLog : public ShaderFiles {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    [[noreturn]] void finish(int effects)
    {
        const auto input = plain(8, 8, kGrey);
        for (int i = 0; i < effects; ++i) {
            auto node = filter(i);
            node.setInput(input);
            EXPECT_EQ(middle(node), kGrey) << i;
            EXPECT_EQ(middle(node), kGrey) << i;
        }
        const std::string log = files.read("EffectEngine.log");
        for (int i = 0; i < effects; ++i) {
            const std::string line =
                "Shader effect [" + files.path() + "Shader/" + std::to_string(i) + ".conf]";
            EXPECT_NE(log.find(line), std::string::npos) << i;
            EXPECT_EQ(log.find(line), log.rfind(line)) << i;
        }
        std::fputs(log.c_str(), stderr);
        _exit(HasFailure() ? 1 : 0);
    }
};

TEST_F(ShaderFilesLog, IncludesWithoutEndOrFromElsewhereAreRefused)
{
    const auto body = [this] {
        files.write("Shader/self.glsl", "#include \"self.glsl\"\n");
        files.write("Shader/ping.glsl", "#include \"pong.glsl\"\n");
        files.write("Shader/pong.glsl", "#include \"ping.glsl\"\n");
        // Each level takes the next one in twice: a million files in the end.
        for (int i = 0; i < 20; ++i)
            files.write("Shader/level" + std::to_string(i) + ".glsl",
                "#include \"level" + std::to_string(i + 1) + ".glsl\"\n#include \"level"
                    + std::to_string(i + 1) + ".glsl\"\n");
        files.write("Shader/level20.glsl", "");
        files.write("Shader/long.glsl", std::string(5 << 20, ' ') + kRed);
        link(outside.path() + "secret.glsl", "Shader/link.glsl");
        link(outside.path(), "Shader/linked");
        mkfifo((files.path() + "Shader/pipe.glsl").c_str(), 0600);
        const std::string names[] = {"0.frag", "self.glsl", "ping.glsl", "level0.glsl", "long.glsl",
            "none.glsl", climbing + "secret.glsl", "../" + climbing + "secret.glsl",
            outside.path() + "secret.glsl", "parts/../" + climbing + "secret.glsl", "link.glsl",
            "linked/secret.glsl", "pipe.glsl", ".", ".."};
        std::filesystem::create_directory(files.path() + "Shader/parts");
        for (int i = 0; i < int(std::size(names)); ++i)
            including(i, "#include \"" + names[i] + "\"");
        start(true);
        finish(int(std::size(names)));
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "includes itself");
}

TEST_F(ShaderFilesLog, ProgramsAndPicturesFromElsewhereAreRefused)
{
    const auto body = [this] {
        outside.write("red.ppm", std::string("P6 1 1 255\n\xFF\0\0", 14));
        std::filesystem::create_directory(files.path() + "Shader");
        link(outside.path() + "secret.frag", "Shader/link.frag");
        link(outside.path() + "red.ppm", "Shader/link.ppm");
        link(outside.path(), "Shader/linked");
        mkfifo((files.path() + "Shader/pipe.frag").c_str(), 0600);
        const std::string programs[] = {climbing + "secret.frag", "../" + climbing + "secret.frag",
            outside.path() + "secret.frag", "link.frag", "linked/secret.frag", "pipe.frag"};
        const std::string pictures[] = {
            climbing + "red.ppm", outside.path() + "red.ppm", "link.ppm", "linked/red.ppm", "pipe.frag"};
        int number = 0;
        for (const std::string& name : programs)
            describe(number++, "\"SHADER\": \"" + name + "\"");
        for (const std::string& name : pictures)
            describe(number++, R"("INPUTS": 1, "TEXTURES": [{"FILE": ")" + name + R"(", "INDEX": 0}])");
        start(true);
        finish(number);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "leads out of the resource folders");
}

} // namespace
