// Nodes that the GPU draws within graphs: the textures between them save time and change no picture.
#include "gpu/FakeGraphicsSystem.h"
#include "gpu/OgreTest.h"
#include "pixels/View.h"
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"
#include "support/paths.h"

#include <sys/mman.h>

#include <optional>

namespace {

constexpr const char* kLightRoom = "CB87BAF6-5462-4877-BE55-C2A95D8FAF2A";
constexpr const char* kTriangleBlur = "4BADD6CB-B71B-44ed-8737-9F3DE9634C31";
constexpr const char* kFishEye = "A0DFCB73-9C3D-4d18-813E-8CC29D76D406";
constexpr int kWidth = 60;
constexpr int kHeight = 44;

class GpuNodesTest : public OgreTest {
protected:
    GpuNodesTest()
    {
        EXPECT_EQ(InitializeEngine(test::kResourceDirectory, directory_.c_str()), 0u);
        EXPECT_TRUE(KEXSDK::gpuAvailable());
    }
    ~GpuNodesTest() override { UninitializeEngine(); }

    static host::Filter exposure(float value)
    {
        host::Filter filter(kLightRoom, kWidth, kHeight);
        filter.set("u_temperature", 11500);
        filter.set("u_exposure", value);
        return filter;
    }
    static std::vector<u8> copyOf(CEffectImage* image)
    {
        const auto bytes = host::bytesOf(image);
        return {bytes.begin(), bytes.end()};
    }
    /// Runs one node after the other, through pictures of the test's own.
    static std::vector<u8> stepByStep(
        std::initializer_list<host::Filter*> filters, test::GuardedFrame& source)
    {
        std::vector<u8> bytes = source.bytes();
        for (host::Filter* const filter : filters) {
            test::GuardedFrame input(kWidth, kHeight);
            test::GuardedFrame output(kWidth, kHeight);
            std::ranges::copy(bytes, input.pixels());
            SetInputImage(filter->handle(), input.image(), 0);
            EXPECT_EQ(DoFilterEx(filter->handle(), output.image()), 0u);
            bytes = output.bytes();
        }
        return bytes;
    }
};

TEST_F(GpuNodesTest, ChainsWithAndWithoutTheCpuBetweenGiveTheBytesOfSingleSteps)
{
    test::GuardedFrame source(kWidth, kHeight);
    source.fillWithNoise(11);
    host::Filter fishEye(kFishEye, kWidth, kHeight);
    fishEye.set("Radius", 0.3f);
    host::Filter one = exposure(10), two = exposure(-20), three = exposure(15);
    const auto expected = stepByStep({&one, &two, &fishEye, &three}, source);

    host::Filter first = exposure(10), second = exposure(-20), third = exposure(15);
    host::Filter lens(kFishEye, kWidth, kHeight);
    lens.set("Radius", 0.3f);
    second.connectFrom(first);
    lens.connectFrom(second);
    third.connectFrom(lens);
    SetInputImage(first.handle(), source.image(), 0);
    EXPECT_TRUE(copyOf(third.run()) == expected);
    EXPECT_TRUE(copyOf(third.run()) == expected) << "on the second frame too";

    // All nodes write into the host's one image.
    test::GuardedFrame target(kWidth, kHeight);
    host::Filter a = exposure(10), b = exposure(-20);
    b.connectFrom(a);
    SetInputImage(a.handle(), source.image(), 0);
    EXPECT_EQ(DoFilterEx(b.handle(), target.image()), 0u);
    EXPECT_TRUE(target.guardsIntact());
    host::Filter c = exposure(10), d = exposure(-20);
    EXPECT_TRUE(target.bytes() == stepByStep({&c, &d}, source));
}

// The input's memory is unmapped: reading it again would end the test.
TEST_F(GpuNodesTest, AnInputThatIsGoneIsReadNoMore)
{
    test::GuardedFrame source(kWidth, kHeight);
    source.fillWithNoise(5);
    constexpr std::size_t kBytes = std::size_t{kWidth} * kHeight * 4;
    void* const memory = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    CEffectImage* picture = nullptr;
    const ImageCreateInfo info{u32{kWidth}, u32{kHeight}, {}, memory};
    ASSERT_EQ(CreateImage(&info, &picture), 0u);
    std::optional<host::Filter> other(std::in_place, kFishEye, kWidth, kHeight);
    SetInputImage(other->handle(), source.image(), 0);
    EXPECT_EQ(DoFilterEx(other->handle(), picture), 0u);

    host::Filter filter = exposure(10);
    SetInputImage(filter.handle(), source.image(), 0);
    filter.connectFrom(*other, 1);
    const auto before = copyOf(filter.run());
    ConnectFilter(nullptr, filter.handle(), 1);
    other.reset();
    ReleaseImage(picture);
    munmap(memory, kBytes);
    EXPECT_EQ(copyOf(filter.run()), before);
}

TEST_F(GpuNodesTest, HostsMayWriteIntoAPictureThatTheGpuDrew)
{
    test::GuardedFrame source(kWidth, kHeight);
    source.fill({10, 20, 30, 255});
    host::Filter first = exposure(10), second = exposure(10);
    SetInputImage(first.handle(), source.image(), 0);
    CEffectImage* const between = first.run();
    std::ranges::fill(host::bytesOf(between), u8(0));
    SetInputImage(second.handle(), between, 0);
    EXPECT_EQ(copyOf(second.run()), std::vector<u8>(std::size_t{kWidth} * kHeight * 4));
}

TEST_F(GpuNodesTest, TheTriangleBlurSpreadsEvenlyToAllSides)
{
    test::GuardedFrame source(kWidth, kHeight);
    source.fill({40, 80, 120, 255});
    host::Filter blur(kTriangleBlur, kWidth, kHeight);
    blur.set("Radius", 8);
    SetInputImage(blur.handle(), source.image(), 0);
    EXPECT_TRUE(copyOf(blur.run()) == source.bytes()) << "an even picture stays";

    source.fill({0, 0, 0, 255});
    for (int y = 20; y < 24; ++y)
        for (int x = 28; x < 32; ++x)
            source.view().row(y)[x] = {255, 255, 255, 255};
    const auto bytes = copyOf(blur.run());
    const pixels::ConstView out(bytes.data(), {kWidth, kHeight});
    const int middle = out.at(30, 22).g;
    EXPECT_GT(middle, 20);
    EXPECT_LT(middle, 120);
    EXPECT_EQ(out.at(30, 35).g, 0) << "beyond its reach";
    EXPECT_GT(out.at(30, 26).g, 0);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth / 2; ++x) {
            EXPECT_NEAR(out.at(x, y).g, out.at(kWidth - 1 - x, y).g, 1);
            EXPECT_NEAR(out.at(x, y).g, out.at(x, kHeight - 1 - y).g, 1);
            EXPECT_EQ(out.at(x, y).a, 255);
        }

    blur.set("Radius", 0);
    EXPECT_TRUE(copyOf(blur.run()) == source.bytes());
}

TEST_F(GpuNodesTest, ANodeGoesOnOnTheCpuOnceTheThreadHasEnded)
{
    test::GuardedFrame source(kWidth, kHeight);
    source.fill({60, 120, 180, 255});
    host::Filter lightRoom = exposure(0);
    host::Filter blur(kTriangleBlur, kWidth, kHeight);
    for (host::Filter* const filter : {&lightRoom, &blur}) {
        SetInputImage(filter->handle(), source.image(), 0);
        EXPECT_TRUE(copyOf(filter->run()) == source.bytes());
    }
    KEXSDK::TovOgreRenderThread::getInstance().shutdown();
    source.fill({50, 100, 150, 255});
    for (host::Filter* const filter : {&lightRoom, &blur})
        EXPECT_TRUE(copyOf(filter->run()) == source.bytes());
}

TEST(LightRoomOnOldDrivers, TheDriversVersionDecidesWhoDraws)
{
    const struct {
        int major, minor;
        const char* line; ///< of the graphics system's log, or null
        bool draws;
    } drivers[] = {
        {2, 1,
            "log GL version is too low, Program requires OpenGL 2.0 or higherra. Please upgrade the driver "
            "of your video card!",
            false},
        {3, 1, "log Using C algorithm to running!", false},
        {3, 2, nullptr, true},
        {4, 0, nullptr, true},
    };
    for (const auto& driver : drivers) {
        Diary diary;
        diary.driver = {driver.major, driver.minor};
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory(
            [&] { return std::make_unique<FakeGraphicsSystem>(diary); });
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
        {
            test::GuardedFrame source(4, 4);
            host::Filter filter(kLightRoom, 4, 4);
            SetInputImage(filter.handle(), source.image(), 0);
            filter.run();
            filter.run();
        }
        UninitializeEngine();
        const auto lines = diary.taken();
        const auto has = [&](const std::string& line) { return std::ranges::count(lines, line); };
        EXPECT_EQ(has("log GL version is: " + std::to_string(driver.major) + "."
                      + std::to_string(driver.minor) + ".0.0"),
            1);
        if (driver.line) {
            EXPECT_EQ(has(driver.line), 1) << driver.line;
        }
        EXPECT_EQ(has("render 1 4"), driver.draws ? 1 : 0) << "one failure is enough";
        EXPECT_EQ(diary.effects, 0);
    }
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
}

} // namespace
