// The engine log: byte-order mark, line layout, one file per process.
#include "core/Log.h"

#include "support/EngineFixture.h"
#include "support/inChild.h"
#include "support/paths.h"

#include <filesystem>
#include <fstream>
#include <regex>

namespace {

namespace fs = std::filesystem;
using test::inChild; // the log opens once per process

std::string contentOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Log : public testing::Test {
protected:
    void SetUp() override
    {
        directory_ =
            fs::path(test::kOutputDirectory) / testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(directory_);
        fs::create_directories(directory_ / "second");
    }
    fs::path directory_;
};

TEST_F(Log, StartsWithAMarkAndTheVersionAndAppendsLater)
{
    const auto session = [&] {
        return inChild([&] {
            test::useNoGraphics();
            const std::string first = directory_.string();
            const std::string second = (directory_ / "second").string();
            bool ok = InitializeEngine("./", first.c_str()) == 0;
            CSimpleEffect* filter = nullptr;
            GetFilter("no such effect", 4, 4, &filter);
            ok = ok && UninitializeEngine() == 0 && InitializeEngine("./", second.c_str()) == 0;
            return ok && UninitializeEngine() == 0;
        });
    };
    ASSERT_TRUE(session());
    const std::string once = contentOf(directory_ / "EffectEngine.log");
    ASSERT_TRUE(session());
    const std::string twice = contentOf(directory_ / "EffectEngine.log");

    const std::string stamp = R"(\d+-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} )";
    const std::string info = stamp + R"(INFO  \[\d+\] )";
    const std::regex expected("\xEF\xBB\xBF" + info + R"(TovEffectEngine version: 1, 1, 4, 0\n)" + info
        + R"(initOgreEnvirenment\n)" + stamp
        + R"(WARN  \[\d+\] Ogre envirenment init failed\.\n[^]*Can't find filter GUID \[no such effect\]\n)"
        + info + R"(Uninitialze begin\.\n)" + info + R"(Uninitialze end\.\n[^]*)");
    EXPECT_TRUE(std::regex_match(once, expected)) << once;
    EXPECT_EQ(once.find("version", once.find("version") + 1), std::string::npos)
        << "a second start in one process writes no version line";
    EXPECT_FALSE(fs::exists(directory_ / "second" / "EffectEngine.log"));
    ASSERT_GT(twice.size(), once.size());
    EXPECT_EQ(twice.substr(0, once.size()), once);
    EXPECT_EQ(twice.find("\xEF\xBB\xBF", 1), std::string::npos) << "one mark per file";
}

TEST_F(Log, DropsWhatIsMoreDetailedThanInformation)
{
    ASSERT_TRUE(inChild([&] {
        using logging::Severity;
        logging::write(Severity::fatal, "t", "before there is a log");
        const bool opened = logging::open((directory_ / "own.log").string());
        logging::write(Severity::debug, "t", "too detailed");
        logging::write(Severity::error, "t", "kept \xC3\xA9");
        return opened && !logging::admits(Severity::debug) && logging::admits(Severity::information);
    }));
    const std::string text = contentOf(directory_ / "own.log");
    EXPECT_TRUE(std::regex_match(text, std::regex("\xEF\xBB\xBF.* ERROR \\[\\d+\\] kept \xC3\xA9\n")))
        << text;
}

TEST_F(Log, AnUnwritableDirectoryDoesNotStopTheEngine)
{
    EXPECT_TRUE(inChild([&] {
        test::useNoGraphics();
        return InitializeEngine("./", "/dev/null/nowhere") == 0 && UninitializeEngine() == 0;
    }));
}

} // namespace
