// Lookup tables: what files are accepted, what they do to pixels, and what a node keeps of them.
#include "lut/LutFile.h"
#include "pixels/widest.h"
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"
#include "support/paths.h"

#include <tbb/global_control.h>

#include <clocale>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

namespace {

namespace fs = std::filesystem;

using lut::LutFile;
using lut::LutStatus;
using pixels::Bgra;

constexpr const char* kCubeLut = "BCEC4998-CB63-4c7d-9DCC-B76E6ACC6BB8";

LutFile cube(const std::string& text)
{
    std::istringstream stream(text);
    return lut::parseCube(stream);
}
LutFile threeDl(const std::string& text)
{
    std::istringstream stream(text);
    return lut::parse3dl(stream);
}

std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

std::string identity(int size)
{
    std::ostringstream text;
    text << "LUT_3D_SIZE " << size << '\n';
    const double last = size - 1;
    for (int b = 0; b < size; ++b)
        for (int g = 0; g < size; ++g)
            for (int r = 0; r < size; ++r)
                text << r / last << ' ' << g / last << ' ' << b / last << '\n';
    return text.str();
}

const std::string kEight = repeated("0.5 0.25 1\n", 8);
const std::string kSmall = "LUT_3D_SIZE 2\n" + kEight;

TEST(LutFiles, CubeRefusalsNameTheirReason)
{
    struct Row {
        std::string text;
        LutStatus status;
        int line;
    };
    const std::string longLine(260, 'x');
    const Row rows[] = {
        {"", LutStatus::prematureEnd, 0},
        {"LUT_3D_SIZE 2", LutStatus::prematureEnd, 1},
        {"LUT_3D_SIZE 2\n" + repeated("0 0 0\n", 7), LutStatus::prematureEnd, 8},
        {"#" + longLine + "\n" + kSmall, LutStatus::lineError, 0},
        {"#\nLUT_1D_SIZE 2\n" + kEight, LutStatus::badKeyword, 2},
        {"LUT_3D_SIZE 2\nLUT_3D_SIZE 2\n" + kEight, LutStatus::badKeyword, 2},
        {"TITLE \"a\"\nTITLE \"b\"\n" + kSmall, LutStatus::badKeyword, 2},
        {"lut_3d_size 2\n" + kEight, LutStatus::badKeyword, 1},
        {"  \n" + kSmall, LutStatus::badKeyword, 1},
        {std::string("\0\0\0\n", 4) + kSmall, LutStatus::badKeyword, 1},
        {"TITLE warm\n" + kSmall, LutStatus::titleWithoutQuote, 1},
        {"TITLE\n" + kSmall, LutStatus::titleWithoutQuote, 1},
        {"DOMAIN_MIN 0 0 0\nDOMAIN_MAX 0 1 1\n" + kSmall, LutStatus::domainReversed, 0},
        {"DOMAIN_MIN 0 0 2\n" + kSmall, LutStatus::domainReversed, 0},
        {"DOMAIN_MAX 1 1\n" + kSmall, LutStatus::readError, 1},
        {"DOMAIN_MAX 1 1 nan\n" + kSmall, LutStatus::readError, 1},
        {"DOMAIN_MAX 1 1 1e40\n" + kSmall, LutStatus::readError, 1},
        {"LUT_3D_SIZE two\n" + kEight, LutStatus::readError, 1},
        {"LUT_3D_SIZE 99999999999\n" + kEight, LutStatus::readError, 1},
        {"LUT_3D_SIZE 1\n" + kEight, LutStatus::sizeOutOfRange, 1},
        {"LUT_3D_SIZE -2\n" + kEight, LutStatus::sizeOutOfRange, 1},
        {"LUT_3D_SIZE 257\n" + kEight, LutStatus::sizeOutOfRange, 1},
        {"LUT_3D_SIZE 65\n" + kEight, LutStatus::sizeOutOfRange, 1},
        {"LUT_3D_SIZE 256\n" + kEight, LutStatus::sizeOutOfRange, 1},
        {kEight, LutStatus::sizeOutOfRange, 0},
    };
    for (const Row& row : rows) {
        const LutFile file = cube(row.text);
        EXPECT_EQ(int(file.status), int(row.status)) << row.text;
        EXPECT_EQ(file.line, row.line) << row.text;
        EXPECT_FALSE(file.reason.empty()) << row.text;
        EXPECT_TRUE(file.entries.empty()) << row.text;
    }
}

TEST(LutFiles, EveryLineEndGivesTheSameTable)
{
    const std::string text = "# by hand\nTITLE \"Warm # film\"\n\nDOMAIN_MAX 1 2 1\n" + kSmall;
    const auto withEnds = [&](const std::string& end) {
        std::string other;
        for (const char c : text)
            other += c == '\n' ? end : std::string(1, c);
        return other;
    };
    const lut::LutEntry expected{127.5f, 127.5f, 255};
    for (const std::string& variant :
        {text, withEnds("\r\n"), withEnds("\r"), "\xEF\xBB\xBF" + text, "\xEF\xBB\xBF" + withEnds("\r\n"),
            text.substr(0, text.size() - 1), text + "anything behind it\n"}) {
        const LutFile file = cube(variant);
        ASSERT_EQ(file.status, LutStatus::success) << file.reason;
        EXPECT_EQ(file.title, "Warm # film");
        EXPECT_EQ(file.size, 2);
        EXPECT_EQ(file.incompleteLines, 0);
        EXPECT_EQ(file.entries, std::vector<lut::LutEntry>(8, expected));
    }
}

TEST(LutFiles, NumbersAreReadAsInTheCLocale)
{
    // Where the machine has none of these locales, the comma is tested in the C locale only.
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name))
            break;
    }
    const LutFile file = cube("LUT_3D_SIZE 2\n0.5 .25 1.\n+1 -1 1e-2\n1e40 -1e40 1e-60\ninf nan -inf\n"
                              "0,5 0.5 0.5\n0.5\n\t0.5\v1 0.5 7\n0.5 x 1\n");
    std::setlocale(LC_ALL, before.c_str());
    ASSERT_EQ(file.status, LutStatus::success);
    const auto at = [&](std::size_t i) { return file.entries.at(i); };
    const float infinity = INFINITY;
    EXPECT_EQ(at(0), (lut::LutEntry{127.5f, 63.75f, 255}));
    EXPECT_EQ(at(1), (lut::LutEntry{255, -255, 0.01f * 255}));
    EXPECT_EQ(at(2), (lut::LutEntry{infinity, -infinity, 0}));
    EXPECT_EQ(at(3).r, infinity);
    EXPECT_TRUE(std::isnan(at(3).g));
    EXPECT_EQ(at(4), (lut::LutEntry{0, 0, 0})) << "a comma ends the number";
    EXPECT_EQ(at(5), (lut::LutEntry{127.5f, 0, 0})) << "missing numbers stay 0";
    EXPECT_EQ(at(6), (lut::LutEntry{127.5f, 255, 127.5f}));
    EXPECT_EQ(at(7), (lut::LutEntry{127.5f, 0, 0}));
    EXPECT_EQ(file.incompleteLines, 3);
    EXPECT_EQ(file.firstIncompleteLine, 6);
}

TEST(LutFiles, ThreeDlTakesItsSizeFromTheGridLine)
{
    const auto grid = [](int count) { return repeated("7 ", count) + "\n"; };
    LutFile file = threeDl("3DMESH\nMesh 4 12\nnote\n\n" + grid(17) + repeated("4095 0 2047.5\n", 4913));
    ASSERT_EQ(file.status, LutStatus::success) << file.reason;
    EXPECT_EQ(file.size, 17);
    EXPECT_EQ(file.entries, std::vector<lut::LutEntry>(4913, {255, 0, 127.5f}));

    file = threeDl(grid(17) + repeated("0 0 0\n", 4912));
    EXPECT_EQ(file.status, LutStatus::prematureEnd);
    EXPECT_EQ(file.line, 4913);
    EXPECT_EQ(threeDl(grid(2)).status, LutStatus::unusableTable);
    EXPECT_EQ(threeDl(grid(3) + repeated("1 1 1\n", 27)).size, 3);
    EXPECT_EQ(threeDl(grid(65) + repeated("1 1 1\n", 9)).status, LutStatus::sizeOutOfRange);
    EXPECT_EQ(threeDl("words\nonly\n").status, LutStatus::prematureEnd);
    EXPECT_EQ(threeDl("").status, LutStatus::prematureEnd);
    EXPECT_EQ(threeDl("\xEF\xBB\xBF" + grid(3) + repeated("1 1 1\n", 27)).size, 3);
}

// The files of a test lie in a directory of its own.
class Lut : public test::EngineWithoutGpu {
protected:
    void SetUp() override
    {
        directory_ = fs::path(test::kOutputDirectory) / "lut"
            / testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(directory_);
        fs::create_directories(directory_);
    }
    std::wstring write(const std::string& name, const std::string& text) const
    {
        std::ofstream(directory_ / name, std::ios::binary) << text;
        return path(name);
    }
    std::wstring path(const std::string& name) const { return (directory_ / name).wstring(); }

    static Bgra lookedUp(host::Filter& filter, Bgra value)
    {
        test::GuardedFrame frame(3, 1);
        frame.fill(value);
        SetInputImage(filter.handle(), frame.image(), 0);
        return pixels::ConstView(host::bytesOf(filter.run()).data(), {3, 1}).at(1, 0);
    }

    fs::path directory_;
};

TEST_F(Lut, IdentityLeavesEveryPixel)
{
    for (const int size : {2, 17, 33, 64}) {
        test::GuardedFrame frame(101, 40);
        frame.fillWithNoise(unsigned(size));
        host::Filter filter(kCubeLut, 101, 40);
        ASSERT_TRUE(filter.set("CubeLutFile", write("identity.Cube", identity(size))));
        SetInputImage(filter.handle(), frame.image(), 0);
        EXPECT_TRUE(std::ranges::equal(host::bytesOf(filter.run()), frame.bytes())) << size;
        EXPECT_EQ(DoFilterEx(filter.handle(), frame.image()), 0u);
        EXPECT_TRUE(frame.guardsIntact());
    }
}

TEST_F(Lut, EachTetrahedronWeighsItsFourCorners)
{
    // Red output by corner, red varying fastest: 000 100 010 110 001 101 011 111.
    std::string text = "LUT_3D_SIZE 2\n";
    for (const int corner : {0, 10, 20, 80, 45, 120, 160, 255})
        text += std::to_string(corner / 255.0) + " 0.2 0\n";
    host::Filter filter(kCubeLut, 3, 1);
    ASSERT_TRUE(filter.set("CubeLutFile", write("corners.cube", text)));
    // The weights are 0.2, 0.4, 0.2, 0.2 along each path.
    EXPECT_EQ(lookedUp(filter, {.b = 51, .g = 102, .r = 204, .a = 9}), (Bgra{0, 51, 71, 9}));
    EXPECT_EQ(lookedUp(filter, {.b = 102, .g = 51, .r = 204, .a = 9}).r, 79);
    EXPECT_EQ(lookedUp(filter, {.b = 51, .g = 204, .r = 102, .a = 9}).r, 75);
    EXPECT_EQ(lookedUp(filter, {.b = 102, .g = 204, .r = 51, .a = 9}).r, 91);
    EXPECT_EQ(lookedUp(filter, {.b = 204, .g = 51, .r = 102, .a = 9}).r, 93);
    EXPECT_EQ(lookedUp(filter, {.b = 204, .g = 102, .r = 51, .a = 9}).r, 101);
    EXPECT_EQ(lookedUp(filter, {255, 255, 255, 0}), (Bgra{0, 51, 255, 0}));
    EXPECT_EQ(lookedUp(filter, {102, 102, 102, 0}).r, 102) << "greys lie on the diagonal";
}

TEST_F(Lut, ResultsAreRoundedAndLimited)
{
    host::Filter filter(kCubeLut, 3, 1);
    const auto constant = [&](const std::string& line) {
        EXPECT_TRUE(filter.set("CubeLutFile", write("a.cube", "LUT_3D_SIZE 2\n" + repeated(line + "\n", 8))));
        return lookedUp(filter, {255, 0, 0, 77});
    };
    EXPECT_EQ(constant("0.4 0.5 0.998"), (Bgra{254, 128, 102, 77}));
    EXPECT_EQ(constant("1.5 -0.5 0.999"), (Bgra{255, 0, 255, 77}));
    EXPECT_EQ(constant("1e30 -1e30 nan"), (Bgra{0, 0, 255, 77}));
}

TEST_F(Lut, ThreadsAndVectorsNeverShowInTheBytes)
{
    std::mt19937 random(4);
    std::string text = "LUT_3D_SIZE 9\n";
    for (int i = 0; i < 729; ++i) // some entries out of range, and a few that are infinite
        text += i % 50 == 0
            ? "1e40 0 -1e40\n"
            : std::to_string(random() % 1400 / 1000.0 - 0.2) + " " + std::to_string(i / 729.0) + " 0.3\n";
    const std::wstring file = write("noise.cube", text);
    test::GuardedFrame frame(333, 301);
    frame.fillWithNoise(8);
    const auto run = [&](std::size_t threads, pixels::VectorLevel vectors) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        pixels::limitVectors(vectors);
        host::Filter filter(kCubeLut, 333, 301);
        EXPECT_TRUE(filter.set("CubeLutFile", file));
        SetInputImage(filter.handle(), frame.image(), 0);
        const auto bytes = host::bytesOf(filter.run());
        pixels::limitVectors(pixels::VectorLevel::avx512);
        return std::vector<u8>(bytes.begin(), bytes.end());
    };
    const auto plain = run(1, pixels::VectorLevel::base);
    EXPECT_TRUE(plain == run(1, pixels::VectorLevel::avx2));
    EXPECT_TRUE(plain == run(4, pixels::VectorLevel::avx512));
}

TEST_F(Lut, TheFirstNumberThatVariesInAFileIsRed)
{
    host::Filter filter(kCubeLut, 3, 1);
    std::string table;
    for (int i = 0; i < 27; ++i)
        table += std::to_string(i % 3 * 4095 / 2) + " 0 0\n";
    ASSERT_TRUE(filter.set("CubeLutFile", write("a.3DL", "0 512 1023\n" + table)));
    EXPECT_EQ(lookedUp(filter, {.b = 0, .g = 0, .r = 255, .a = 1}), (Bgra{0, 0, 255, 1}));
    EXPECT_EQ(lookedUp(filter, {.b = 255, .g = 255, .r = 0, .a = 1}), (Bgra{0, 0, 0, 1}));
}

TEST_F(Lut, WhatIsRefusedIsNotStoredAndDropsTheTable)
{
    const Bgra before{10, 20, 30, 40};
    const Bgra after{255, 64, 128, 40};
    const std::wstring good = write("good.cube", kSmall);
    write("bad.cube", "LUT_3D_SIZE 2\n0 0 0\n");
    write("good.txt", kSmall);
    write("empty.cube", "");
    write("large.cube", "LUT_3D_SIZE 65\n0 0 0\n");
    for (const char* const name : {"bad.cube", "good.txt", "empty.cube", "large.cube"}) {
        host::Filter filter(kCubeLut, 3, 1);
        EXPECT_EQ(lookedUp(filter, before), before) << "no table copies";
        EXPECT_FALSE(filter.set("CubeLutFile", path(name)));
        KEXSDK::tagVIParamType type = KEXSDK::VIParamUnknown;
        KEXSDK::getParamType(filter.handle(), "CubeLutFile", &type);
        EXPECT_NE(type, KEXSDK::VIParamFilePath) << name;
        ASSERT_TRUE(filter.set("CubeLutFile", good));
        EXPECT_EQ(lookedUp(filter, before), after);
        EXPECT_FALSE(filter.set("CubeLutFile", path(name)));
        EXPECT_EQ(lookedUp(filter, before), before) << name;
        ASSERT_TRUE(filter.set("CubeLutFile", good));
        EXPECT_EQ(lookedUp(filter, before), after);
    }
    host::Filter filter(kCubeLut, 3, 1);
    ASSERT_TRUE(filter.set("CubeLutFile", good));
    fs::create_directory(directory_ / "folder.cube");
    EXPECT_FALSE(filter.set("CubeLutFile", path("missing.cube")));
    EXPECT_FALSE(filter.set("CubeLutFile", path("folder.cube")));
    EXPECT_FALSE(filter.set("CubeLutFile", 1));
    EXPECT_FALSE(filter.set("CubeLutFile", 1.0f));
    EXPECT_EQ(lookedUp(filter, before), after) << "what cannot be opened keeps the table";
    EXPECT_FALSE(filter.set("CubeLutFile", std::wstring(L"nodot")));
    EXPECT_EQ(lookedUp(filter, before), before);
    EXPECT_TRUE(filter.set("OtherFile", std::wstring(L"nodot"))) << "other names are stored as they come";
}

TEST_F(Lut, AFileMayBeSetWhileTheNodeRuns)
{
    const std::wstring files[] = {write("a.cube", kSmall), write("b.cube", identity(17))};
    test::GuardedFrame frame(64, 64);
    frame.fill({10, 20, 30, 40});
    host::Filter filter(kCubeLut, 64, 64);
    SetInputImage(filter.handle(), frame.image(), 0);
    ASSERT_TRUE(filter.set("CubeLutFile", files[0]));
    filter.run();
    std::thread setter([&] {
        for (int i = 0; i < 40; ++i)
            EXPECT_TRUE(filter.set("CubeLutFile", files[i % 2]));
    });
    for (int i = 0; i < 40; ++i) {
        const auto bytes = host::bytesOf(filter.run());
        for (std::size_t p = 4; p < bytes.size(); ++p)
            ASSERT_EQ(bytes[p], bytes[p % 4]) << "a frame is drawn with one table";
    }
    setter.join();
}

// The log opens once per process, so the lines are written by a child.
TEST(LutLog, EveryFileLeavesOneLine)
{
    const fs::path directory = fs::path(test::kOutputDirectory) / "lutLog";
    fs::remove_all(directory);
    fs::create_directories(directory);
    const auto write = [&](const char* name, const std::string& text) {
        std::ofstream(directory / name, std::ios::binary) << text;
        return (directory / name).wstring();
    };
    const auto child = [&] {
        test::useNoGraphics();
        const std::string logs = directory.string() + "/";
        InitializeEngine("./", logs.c_str());
        {
            host::Filter filter(kCubeLut, 3, 1);
            filter.set("CubeLutFile", write("tiled.cube", identity(33)));
            filter.set("CubeLutFile", write("small.cube", kSmall));
            filter.set("CubeLutFile", write("bad.cube", "#\nLUT_1D_SIZE 2\n"));
            filter.set("CubeLutFile", (directory / "missing.cube").wstring());
        }
        UninitializeEngine();
        std::_Exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");

    std::ifstream stream(directory / "EffectEngine.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (line.find("3D lut") != std::string::npos)
            lines.push_back(line.substr(line.find("] ") + 2));
    }
    const std::string place = directory.string() + "/";
    EXPECT_EQ(lines,
        (std::vector<std::string>{
            "Render 3D lut with GPU -> " + place + "tiled.cube",
            "Render 3D lut with c algorithm -> " + place + "small.cube",
            "Refused 3D lut [" + place
                + "bad.cube, line 2]: one-dimensional tables are not supported (status 20)",
            "Refused 3D lut [" + place + "missing.cube]: the file cannot be opened",
        }));
}

} // namespace
