// What the log says of the environment variables. The log opens once per process, so each case has one of its
// own.
#include "core/Clock.h"
#include "gpu/FakeGraphicsSystem.h"
#include "support/EngineFixture.h"
#include "support/Environment.h"
#include "support/TemporaryDirectory.h"
#include "support/inChild.h"

#include <cstdlib>
#include <ctime>

namespace {

constexpr const char* kSoftware = "llvmpipe (LLVM 15.0.6, 256 bits)";

/// The log of a start with a variable, on a software renderer. @param started  looks at the engine
std::string logOf(const char* variable, const char* value, auto started)
{
    const test::TemporaryDirectory directory;
    const test::Environment environment(variable, value);
    EXPECT_TRUE(test::inChild([&] {
        Diary diary;
        diary.renderer = kSoftware;
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory(
            [&] { return std::make_unique<FakeGraphicsSystem>(diary); });
        return InitializeEngine("./", directory.path().c_str()) == 0 && started()
            && UninitializeEngine() == 0;
    })) << value;
    return directory.read("EffectEngine.log");
}

int count(const std::string& log, const std::string& text)
{
    int found = 0;
    for (std::size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
        ++found;
    return found;
}

TEST(EnvironmentVariables, ASeedThatIsNoWholeNumberIsOneWarningAndNoSeed)
{
    for (const char* const bad : {"x", "5x", " 5", "1.5", "+5", "9223372036854775808", "-"}) {
        const std::string log =
            logOf("EFFECTENGINE_SEED", bad, [] { return std::abs(core::now() - std::time(nullptr)) <= 2; });
        EXPECT_EQ(count(log, "EFFECTENGINE_SEED is \"" + std::string(bad) + "\""), 1) << log;
        EXPECT_EQ(count(log, "WARN"), 1) << log;
    }
    EXPECT_EQ(count(logOf("EFFECTENGINE_SEED", "-5", [] { return core::now() == -5; }), "WARN"), 0);
}

TEST(EnvironmentVariables, ThePathIsALineAndAnUnknownOneAWarning)
{
    const auto yes = [] { return true; };
    const std::string automatic = logOf("EFFECTENGINE_PATH", "auto", yes);
    EXPECT_EQ(count(automatic, "take the CPU: " + std::string(kSoftware) + " is software"), 1) << automatic;
    EXPECT_EQ(count(automatic, "WARN"), 0) << automatic;
    const std::string unknown = logOf("EFFECTENGINE_PATH", "fastest", yes);
    EXPECT_EQ(count(unknown, "EFFECTENGINE_PATH is \"fastest\""), 1) << unknown;
    EXPECT_EQ(count(unknown, "take the GPU"), 1) << unknown;
}

TEST(EnvironmentVariables, WhenGraphicsStartIsOneOfTwoWords)
{
    const auto yes = [] { return true; };
    const std::string never = logOf("EFFECTENGINE_GRAPHICS", "never", yes);
    EXPECT_EQ(count(never, "EFFECTENGINE_GRAPHICS is \"never\""), 1) << never;
    EXPECT_EQ(count(never, "take the GPU, as usual"), 1) << never;
    for (const char* const word : {"at-start", "when-needed", ""})
        EXPECT_EQ(count(logOf("EFFECTENGINE_GRAPHICS", word, yes), "WARN"), 0) << word;
}

} // namespace
