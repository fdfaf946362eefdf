// The wipe by a picture: what its ends show, that no place goes back, and what it takes for a picture.
#include "core/Log.h"
#include "core/resourceDirectory.h"
#include "effects/transitions/WipeOrder.h"
#include "pictures/PictureCodecs.h"
#include "pixels/widest.h"
#include "support/TemporaryDirectory.h"
#include "support/inChild.h"
#include "transitions/TransitionFixture.h"

#include <tbb/global_control.h>

#include <limits>

namespace {

namespace fs = std::filesystem;
using pixels::Bgra;

/// A greymap of 8 bits whose rows are these bytes.
std::string greymap(int width, const std::vector<int>& greys)
{
    std::string file =
        "P5\n" + std::to_string(width) + " " + std::to_string(int(greys.size()) / width) + "\n255\n";
    for (const int grey : greys)
        file += char(grey);
    return file;
}

/// A ramp from black on the left to white on the right.
std::string ramp(int width, int height)
{
    std::vector<int> greys;
    for (int i = 0; i < width * height; ++i)
        greys.push_back(i % width * 255 / (width - 1));
    return greymap(width, greys);
}

class PictureWipe : public test::TransitionFixture {
protected:
    void TearDown() override
    {
        core::setResourceDirectory("./");
        pixels::limitVectors(pixels::VectorLevel::avx512);
    }

    void openWipe(int width, int height) { open("picture-wipe", width, height); }
    bool setPicture(const std::string& path)
    {
        return filter().set("WipePicture", std::wstring(path.begin(), path.end()));
    }
    bool setPicture(const std::string& name, const std::string& bytes)
    {
        directory_.write(name, bytes);
        return setPicture(directory_.path() + name);
    }

    test::TemporaryDirectory directory_;
};

TEST_F(PictureWipe, WithoutAPictureRunsFromTheLeft)
{
    openWipe(8, 2);
    filter().set("Softness", 0.0f);
    using Rows = std::vector<std::string>;
    EXPECT_EQ(picture(0), Rows(2, "........"));
    EXPECT_EQ(picture(0.25f), Rows(2, "##......"));
    EXPECT_EQ(picture(0.5f), Rows(2, "####...."));
    EXPECT_EQ(picture(1), Rows(2, "########"));
    filter().set("Invert", 1);
    EXPECT_EQ(picture(0.25f), Rows(2, "......##"));
    EXPECT_EQ(picture(1), Rows(2, "########"));
}

TEST_F(PictureWipe, DarkPlacesOfThePictureChangeFirst)
{
    openWipe(4, 2);
    filter().set("Softness", 0.0f);
    ASSERT_TRUE(setPicture("order.pgm", greymap(4, {255, 200, 100, 0, 0, 60, 130, 190})));
    using Rows = std::vector<std::string>;
    EXPECT_EQ(picture(0), (Rows{"....", "...."}));
    EXPECT_EQ(picture(0.1f), (Rows{"...#", "#..."}));
    EXPECT_EQ(picture(0.45f), (Rows{"..##", "##.."}));
    EXPECT_EQ(picture(0.9f), (Rows{".###", "####"}));
    EXPECT_EQ(picture(1), (Rows{"####", "####"}));
    filter().set("Invert", 1);
    EXPECT_EQ(picture(0.1f), (Rows{"#...", "...."}));
    EXPECT_TRUE(setPicture("")) << "takes the picture away";
    filter().set("Invert", 0);
    EXPECT_EQ(picture(0.5f), (Rows{"##..", "##.."}));
}

TEST_F(PictureWipe, EveryFormatGivesTheSameOrder)
{
    const std::vector<int> greys{0, 51, 102, 153, 204, 255};
    std::string text16 = "P5\n# made by hand\n6 1 65535\n", text100 = "P5 6 1 5\n", colours = "P6 6 1 255\n";
    std::vector<u8> pixels;
    for (const int grey : greys) {
        text16 += {char(grey), char(grey)};
        text100 += char(grey / 51);
        colours += {char(grey), char(grey), char(grey)};
        pixels.insert(pixels.end(), {u8(grey), u8(grey), u8(grey), 255});
    }
    const auto png = pictures::encode(pictures::Kind::png, pixels.data(), 6, 1);
    const std::pair<const char*, std::string> files[] = {{"8.pgm", greymap(6, greys)}, {"16.pgm", text16},
        {"5.pgm", text100}, {"colours.ppm", colours}, {"8.png", {png.begin(), png.end()}}};
    for (const auto& [name, bytes] : files) {
        directory_.write(name, bytes);
        EXPECT_EQ(transitions::readWipePicture(directory_.path() + name, {6, 1}).order,
            (transitions::WipeOrder{0, 13107, 26214, 39321, 52428, 65535}))
            << name;
    }
}

TEST_F(PictureWipe, EndsAreThePicturesAndNoPlaceGoesBack)
{
    constexpr int kWidth = 61;
    constexpr int kHeight = 33;
    openWipe(kWidth, kHeight);
    fromFrame().fillWithNoise(1);
    toFrame().fillWithNoise(2);
    std::vector<int> greys;
    for (int i = 0; i < 50 * 30; ++i)
        greys.push_back(i * 37 % 256);
    ASSERT_TRUE(setPicture("any.pgm", greymap(50, greys)));
    for (const float softness :
        {0.0f, 0.01f, 0.1f, 0.7f, 1.0f, 50.0f, -3.0f, std::numeric_limits<float>::quiet_NaN()})
        for (const int invert : {0, 1}) {
            SCOPED_TRACE(testing::Message() << softness << (invert ? ", inverted" : ""));
            filter().set("Softness", softness);
            filter().set("Invert", invert);
            show(0);
            EXPECT_TRUE(outFrame().bytes() == fromFrame().bytes());
            std::vector<u8> before = outFrame().bytes();
            const std::vector<u8> from = fromFrame().bytes(), to = toFrame().bytes();
            int back = 0;
            for (int step = 1; step <= 50; ++step) {
                show(float(step) / 50);
                const std::vector<u8> now = outFrame().bytes();
                for (std::size_t i = 0; i < now.size(); ++i)
                    back += from[i] <= to[i] ? now[i] < before[i] || now[i] > to[i]
                                             : now[i] > before[i] || now[i] < to[i];
                before = now;
            }
            EXPECT_EQ(back, 0);
            EXPECT_TRUE(before == to);
        }
    show(1, 0);
    EXPECT_TRUE(outFrame().bytes() == fromFrame().bytes()) << "a duration of nothing";
    show(std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(outFrame().bytes() == fromFrame().bytes());
    show(1e30f);
    EXPECT_TRUE(outFrame().bytes() == toFrame().bytes());
}

TEST_F(PictureWipe, SoftnessIsTheWidthOfTheEdge)
{
    constexpr int kWidth = 1000;
    openWipe(kWidth, 1);
    constexpr Bgra kFirst{10, 20, 30, 255}, kSecond{210, 220, 230, 255};
    fromFrame().fill(kFirst);
    toFrame().fill(kSecond);
    for (const auto& [softness, low, high] : {std::tuple{0.0f, 0, 1}, {0.1f, 85, 100}, {0.5f, 440, 500}}) {
        filter().set("Softness", softness);
        const auto edge = show(0.5f).row(0);
        const auto between = std::ranges::count_if(edge, [=](Bgra p) { return p != kFirst && p != kSecond; });
        EXPECT_GE(between, low) << softness;
        EXPECT_LE(between, high) << softness;
        EXPECT_EQ(edge.front(), kSecond);
        EXPECT_EQ(edge.back(), kFirst);
    }
    EXPECT_EQ(show(0.5f).row(0)[kWidth / 2].g, 120) << "half of each in the middle";
}

TEST_F(PictureWipe, TransparentPlacesGiveNoColour)
{
    openWipe(2, 1);
    filter().set("Softness", 1.0f);
    fromFrame().fill({0, 0, 0, 0});
    toFrame().fill({10, 100, 250, 200});
    for (const Bgra p : show(0.5f).row(0)) {
        EXPECT_EQ((Bgra{p.b, p.g, p.r, 0}), (Bgra{10, 100, 250, 0}));
        EXPECT_TRUE(p.a > 0 && p.a < 200) << int(p.a);
    }
}

// 8-bit greys over 1600 columns are stairs of 6.3 columns, and jumps of ten levels in an edge of a tenth.
TEST_F(PictureWipe, TheStepsOf8BitsDoNotShow)
{
    constexpr int kWidth = 1600;
    openWipe(kWidth, 3);
    fromFrame().fill({0, 0, 0, 255});
    toFrame().fill({255, 255, 255, 255});
    ASSERT_TRUE(setPicture("ramp.pgm", ramp(kWidth, 3)));
    const auto edge = show(0.5f).row(1);
    int steepest = 0;
    for (std::size_t x = 1; x < kWidth; ++x)
        steepest = std::max(steepest, std::abs(edge[x].g - edge[x - 1].g));
    EXPECT_LE(steepest, 3) << "a smooth edge of 160 columns rises by 2.4 levels a column";

    // Edges stay where they are.
    std::vector<int> halves;
    for (int i = 0; i < kWidth * 3; ++i)
        halves.push_back(i % kWidth < kWidth / 2 ? 40 : 200);
    directory_.write("halves.pgm", greymap(kWidth, halves));
    const auto order = transitions::readWipePicture(directory_.path() + "halves.pgm", {kWidth, 3}).order;
    for (std::size_t i = 0; i < order.size(); ++i)
        ASSERT_NEAR(order[i], halves[i] * 257, 129) << i;
}

TEST_F(PictureWipe, ScalesThePictureToTheNode)
{
    directory_.write("ramp.pgm", ramp(256, 4));
    for (const auto& [width, height] : {std::pair{64, 4}, {256, 4}, {1000, 9}, {3, 1}}) {
        const auto order =
            transitions::readWipePicture(directory_.path() + "ramp.pgm", {width, height}).order;
        ASSERT_EQ(order.size(), std::size_t(width * height));
        for (int x = 0; x < width; ++x) // within a grey, the half ones at the ends included
            EXPECT_NEAR(order[std::size_t(x)], (x + 0.5) / width * 65535, 65535 / 256.0 + 1)
                << width << " " << x;
    }
    directory_.write("one.pgm", greymap(1, {128}));
    const auto flat = transitions::readWipePicture(directory_.path() + "one.pgm", {5, 5}).order;
    EXPECT_EQ(flat, transitions::WipeOrder(25, 128 * 257));
}

TEST_F(PictureWipe, FilesThatAreNoPictureAreRefusedAndThePictureStays)
{
    openWipe(4, 1);
    filter().set("Softness", 0.0f);
    ASSERT_TRUE(setPicture("order.pgm", greymap(4, {255, 200, 100, 0})));
    directory_.write("folder.png/inside", "");
    EXPECT_FALSE(setPicture("text.png", "no picture"));
    EXPECT_FALSE(setPicture("empty.png", ""));
    EXPECT_FALSE(setPicture("short.pgm", "P5 4 4 255\n123"));
    EXPECT_FALSE(setPicture("wide.pgm", "P5 99999 1 255\n123"));
    EXPECT_FALSE(setPicture(directory_.path() + "missing.png"));
    EXPECT_FALSE(setPicture(directory_.path() + "folder.png"));
    EXPECT_FALSE(setPicture("no-such-wipe"));
    EXPECT_FALSE(filter().set("WipePicture", 1));
    EXPECT_EQ(picture(0.5f).front(), "..##");
    EXPECT_EQ(picture(0.85f).front(), ".###");
}

TEST_F(PictureWipe, ARefusalIsOneLine)
{
    const std::string log = directory_.path() + "EffectEngine.log";
    ASSERT_TRUE(test::inChild([&] { // the log opens once per process
        const bool opened = logging::open(log);
        openWipe(4, 1);
        return opened && !setPicture("text.png", "no picture") && !setPicture("no-such-wipe");
    }));
    std::istringstream lines(directory_.read("EffectEngine.log"));
    std::vector<std::string> refusals;
    for (std::string line; std::getline(lines, line);)
        if (line.find("Refused") != std::string::npos)
            refusals.push_back(line.substr(line.find("Refused")));
    EXPECT_EQ(refusals,
        (std::vector<std::string>{
            "Refused [" + directory_.path() + "text.png]: the file is no picture that can be read",
            "Refused [no-such-wipe]: there is no such file"}));
}

TEST_F(PictureWipe, BareNamesAreThoseOfThePackUnlessThereIsSuchAFile)
{
    core::setResourceDirectory(directory_.path());
    directory_.write("wipes/fall.png", greymap(2, {255, 0}));
    openWipe(2, 1);
    filter().set("Softness", 0.0f);
    const auto reads = [&](const std::string& name) {
        EXPECT_TRUE(setPicture("")) << name;
        return setPicture(name) && picture(0.5f).front() == ".#";
    };
    EXPECT_TRUE(reads("fall"));
    EXPECT_TRUE(reads("fall.png"));
    EXPECT_FALSE(setPicture("wipes/fall.png")) << "a path is no name of the pack";
    EXPECT_FALSE(setPicture("..")) << "nor does a name lead out of it";

    const fs::path before = fs::current_path();
    fs::current_path(directory_.path());
    directory_.write("fall", greymap(2, {0, 255}));
    const bool own = !reads("fall") && picture(0.5f).front() == "#.";
    fs::remove("fall");
    fs::create_directory("fall");
    const bool pack = reads("fall");
    fs::current_path(before);
    EXPECT_TRUE(own) << "the file in the working directory comes first";
    EXPECT_TRUE(pack) << "a directory is no file";
}

TEST_F(PictureWipe, LooksTheSameOnAnyThreadsAndVectorsAndInPlace)
{
    openWipe(333, 301);
    fromFrame().fillWithNoise(1);
    toFrame().fillWithNoise(2);
    const std::string file = ramp(100, 50);
    std::vector<u8> plain;
    for (const auto level :
        {pixels::VectorLevel::base, pixels::VectorLevel::avx2, pixels::VectorLevel::avx512}) {
        pixels::limitVectors(level);
        const tbb::global_control threads(
            tbb::global_control::max_allowed_parallelism, level == pixels::VectorLevel::base ? 1 : 4);
        ASSERT_TRUE(setPicture("ramp.pgm", file)); // scaling takes threads, too
        show(0.5f);
        if (plain.empty())
            plain = outFrame().bytes();
        EXPECT_TRUE(plain == outFrame().bytes()) << int(level);
    }
    for (test::GuardedFrame* const input : {&fromFrame(), &toFrame()}) {
        const std::vector<u8> kept = input->bytes();
        EXPECT_EQ(DoFilterEx(filter().handle(), input->image()), 0u);
        EXPECT_TRUE(plain == input->bytes());
        std::ranges::copy(kept, input->pixels());
    }
}

} // namespace
