// EFFECTENGINE_PATH: which form effects take that have one for the GPU and one for the CPU.
#include "effects/gpu/preferredForm.h"

#include "gpu/FakeGraphicsSystem.h"
#include "support/EngineFixture.h"
#include "support/Environment.h"
#include "support/GuardedFrame.h"
#include "support/TemporaryDirectory.h"

#include <algorithm>
#include <sstream>

namespace {

constexpr const char* kLightRoom = "CB87BAF6-5462-4877-BE55-C2A95D8FAF2A";
constexpr const char* kCubeLut = "BCEC4998-CB63-4c7d-9DCC-B76E6ACC6BB8";
constexpr const char* kSoftware = "llvmpipe (LLVM 15.0.6, 256 bits)";
constexpr const char* kHardware = "AMD Radeon RX 6600 (navi23, LLVM 15.0.6, DRM 3.49)";

TEST(SoftwareRenderers, AreKnownByTheirNames)
{
    for (const char* const name : {kSoftware, "softpipe", "Software Rasterizer", "SWR (LLVM 11.0, 256 bits)",
             "virgl (LLVMPIPE (LLVM 14.0.0, 256 bits))", "zink (llvmpipe (LLVM 15.0.6, 256 bits))",
             "Google SwiftShader", "Mesa DRI swrast"})
        EXPECT_TRUE(KEXSDK::isSoftwareRenderer(name)) << name;
    for (const char* const name : {kHardware, "Mesa Intel(R) UHD Graphics 620 (KBL GT2)",
             "NVIDIA RTX A4000/PCIe/SSE2", "Mali-G610 (Panfrost)", ""})
        EXPECT_FALSE(KEXSDK::isSoftwareRenderer(name)) << name;
}

class PreferredForm : public testing::Test {
protected:
    ~PreferredForm() override
    {
        InitializeEngine("./", nullptr); // without the variable, for other tests
        UninitializeEngine();
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    }

    /// Whether a node asked the graphics system for an effect, until it had shown a frame.
    bool asks(const char* path, const char* renderer, const char* guid, auto setUp)
    {
        diary_.renderer = renderer;
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory(
            [this] { return std::make_unique<FakeGraphicsSystem>(diary_); });
        {
            const test::Environment environment("EFFECTENGINE_PATH", path);
            EXPECT_EQ(InitializeEngine("./", nullptr), 0u);
        }
        diary_.taken();
        {
            test::GuardedFrame source(8, 4);
            host::Filter filter(guid, 8, 4);
            setUp(filter);
            SetInputImage(filter.handle(), source.image(), 0);
            filter.run();
        }
        const auto lines = diary_.taken();
        UninitializeEngine();
        return std::ranges::any_of(lines, [](const std::string& line) { return line.starts_with("create"); });
    }

    Diary diary_;
};

TEST_F(PreferredForm, FollowsTheVariableAndTheRenderer)
{
    const test::TemporaryDirectory directory;
    std::ostringstream table;
    table << "LUT_3D_SIZE 8\n";
    for (int i = 0; i < 512; ++i)
        table << "0.5 0.5 0.5\n";
    directory.write("grey.cube", table.str());
    const std::string file = directory.path() + "grey.cube";
    const auto withTable = [&](host::Filter& filter) {
        EXPECT_TRUE(filter.set("CubeLutFile", std::wstring(file.begin(), file.end())));
    };
    const auto asItIs = [](host::Filter&) {};
    const auto withVibrance = [](host::Filter& filter) { filter.set("u_vib", 10.0f); };
    const struct {
        const char* path;
        const char* renderer;
        bool draws;
        bool drawsVibrance; ///< which only the GPU's form has
    } cases[] = {
        {nullptr, kSoftware, true, true},
        {"", kSoftware, true, true},
        {"gpu", kSoftware, true, true},
        {"GPU?", kSoftware, true, true},
        {"cpu", kSoftware, false, false},
        {"cpu", kHardware, false, false},
        {"auto", kSoftware, false, true},
        {"auto", kHardware, true, true},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::string(one.path ? one.path : "not set") + " on " + one.renderer);
        EXPECT_EQ(asks(one.path, one.renderer, kCubeLut, withTable), one.draws);
        EXPECT_EQ(asks(one.path, one.renderer, kLightRoom, asItIs), one.draws);
        EXPECT_EQ(asks(one.path, one.renderer, kLightRoom, withVibrance), one.drawsVibrance);
    }
}

} // namespace
