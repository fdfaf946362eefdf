// Facts about the effects with a memory, and those driven frame by frame.
#include "core/Clock.h"
#include "effects/FrameEffect.h"

#include <cmath>

namespace {

using pixels::Bgra;
using test::place;

constexpr const char* kBaltan = "E27040D3-6FEE-4708-B95B-384055CE7FDA";
constexpr const char* kDelayGrab = "9F704262-6F1E-4039-B05D-490A59D6B8CF";
constexpr const char* kTehRoxx = "CB730FB7-9D79-4353-B26E-F67D218733D0";
constexpr const char* kVertigo = "98DA6C30-55AD-4164-9FF5-53D535E719B8";
constexpr const char* kRings = "737F8965-7D66-4670-83E8-C470A7B2AED1";

constexpr Bgra kBlack{0, 0, 0, 255};

class Temporal : public test::FrameEffect {
protected:
    void TearDown() override { core::pinTime(std::nullopt); }

    // Shows frames 0 .. last, each filled with its own number. @return the output of the last
    pixels::ConstView showNumbered(int last)
    {
        for (int number = 0; number < last; ++number) {
            fill({u8(number), 0, 0, 255});
            show();
        }
        fill({u8(last), 0, 0, 255});
        return show();
    }
};

TEST_F(Temporal, EchoesComeAfterEveryEighthFrame)
{
    open(kBaltan, 4, 2);
    EXPECT_EQ(show({255, 0, 100, 9}), (Bgra{63, 0, 25, 9})) << "a quarter, with the frame's own alpha";
    for (int frame = 1; frame <= 16; ++frame) {
        const Bgra out = show({0, 0, 0, 200});
        const int expected = frame == 8 ? 63 / 4 : frame == 16 ? 63 / 4 / 4 + 63 / 4 : 0;
        EXPECT_EQ(out, (Bgra{u8(expected), 0, u8(frame == 8 ? 6 : frame == 16 ? 7 : 0), 200})) << frame;
    }
}

TEST_F(Temporal, EchoesOfAStillPictureSettle)
{
    open(kBaltan, 4, 2);
    Bgra out{};
    for (int frame = 0; frame < 400; ++frame)
        out = show({255, 0, 255, 255});
    EXPECT_EQ(out, (Bgra{243, 0, 243, 255}));
}

TEST_F(Temporal, DelaysGrowFromTheMiddleColumnAndReachTheFirstFrame)
{
    open(kDelayGrab, 32, 2).set("Mode", 2);
    auto out = showNumbered(10);
    for (const auto& [x, number] : {std::pair{0, 3}, {1, 3}, {2, 3}, {3, 4}, {13, 9}, {14, 9}, {15, 10},
             {16, 10}, {17, 10}, {18, 9}, {31, 3}})
        EXPECT_EQ(out.at(x, 1).b, number) << x;
    open(kDelayGrab, 32, 2).set("Mode", 2);
    out = showNumbered(2);
    EXPECT_EQ(out.at(0, 0).b, 0) << "not yet received: the first frame";
    EXPECT_EQ(out.at(14, 0).b, 1);
}

TEST_F(Temporal, DelaysGrowFromTheMiddleRowAndPoint)
{
    open(kDelayGrab, 2, 32).set("Mode", 3);
    auto out = showNumbered(10);
    EXPECT_EQ(out.at(0, 0).b, 3);
    EXPECT_EQ(out.at(1, 14).b, 9);
    EXPECT_EQ(out.at(1, 16).b, 10);
    open(kDelayGrab, 16, 16).set("Mode", 4);
    out = showNumbered(10);
    EXPECT_EQ(out.at(8, 8).b, 10);
    EXPECT_EQ(out.at(0, 0).b, 5) << "the root of 128 is 11, a delay of 5";
    EXPECT_EQ(out.at(0, 8).b, 6);
}

TEST_F(Temporal, DelayedBlocksLeaveTheirRemainder)
{
    host::Filter& delay = open(kDelayGrab, 35, 10);
    delay.set("Mode", 2);
    delay.set("BlockSize", 4);
    const auto out = showNumbered(10);
    EXPECT_EQ(out.at(0, 0).b, 8) << "eight blocks, four from the middle";
    EXPECT_EQ(out.at(3, 7).b, 8);
    EXPECT_EQ(out.at(17, 3).b, 10);
    EXPECT_EQ(out.at(0, 8).b, 10);
    EXPECT_EQ(out.at(32, 0).b, 10);
}

TEST_F(Temporal, RandomDelaysFollowTheClock)
{
    const auto picture = [&](std::time_t second) {
        core::pinTime(second);
        open(kDelayGrab, 64, 48);
        const auto out = showNumbered(10);
        return std::vector<u8>(out.bytes(), out.bytes() + 64 * 48 * 4);
    };
    const auto first = picture(1000);
    EXPECT_TRUE(first == picture(1000));
    EXPECT_FALSE(first == picture(1001));
    int counts[11] = {};
    for (std::size_t i = 0; i < first.size(); i += 4)
        ++counts[first[i]];
    EXPECT_NEAR(counts[10], 64 * 48 / 4, 100) << "a square below 1/16: a quarter of the pixels";
    EXPECT_NEAR(counts[3], 64 * 48 * 0.3386, 100) << "all delays from 7 on";
}

TEST_F(Temporal, DelaysStartAnewOnChangesAndWithoutATotalTime)
{
    host::Filter& delay = open(kDelayGrab, 32, 2);
    delay.set("Mode", 2);
    EXPECT_EQ(showNumbered(10).at(0, 0).b, 3);
    delay.set(kEffectTotalTime, 9.0f); // volatile: no change
    EXPECT_EQ(show().at(0, 0).b, 4);
    delay.set("BlockSize", 2);
    EXPECT_TRUE(showsItsInput());
    delay.set(kEffectTotalTime, 0.0f);
    showNumbered(10);
    EXPECT_TRUE(showsItsInput());
}

TEST_F(Temporal, DelayGuardsItsModesAndBlocks)
{
    for (const auto& [mode, blockSize] : {std::pair{9, 1}, {0, 1}, {2, 64}, {2, 2'147'483'647}}) {
        host::Filter& delay = open(kDelayGrab, 32, 2);
        delay.set("Mode", mode);
        delay.set("BlockSize", blockSize);
        EXPECT_EQ(showNumbered(10).at(0, 0).b, 10) << mode << ", " << blockSize;
    }
    host::Filter& delay = open(kDelayGrab, 32, 2);
    delay.set("Mode", 2);
    delay.set("BlockSize", -5);
    EXPECT_EQ(showNumbered(10).at(0, 0).b, 3) << "as 1";
}

TEST_F(Temporal, WithoutMemoryThePictureStays)
{
    const test::MemoryShortage shortage;
    for (const char* guid : {kBaltan, kDelayGrab, kTehRoxx, kVertigo}) {
        openPlaces(guid, 64, 48);
        EXPECT_TRUE(showsItsInput()) << guid;
        EXPECT_TRUE(showsItsInput()) << guid;
    }
}

TEST_F(Temporal, TheFrameIsMadeOfThumbnails)
{
    openPlaces(kTehRoxx, 18, 17); // tiles of 4 x 4
    const auto out = show();
    EXPECT_EQ(out.at(1, 1), place(4, 4));
    EXPECT_EQ(out.at(15, 3), place(12, 12));
    EXPECT_EQ(out.at(0, 2), kBlack);
    EXPECT_EQ(out.at(5, 14), place(4, 4)) << "the last row of tiles starts at row 13";
    EXPECT_EQ(out.at(2, 5), place(8, 4)) << "left";
    EXPECT_EQ(out.at(16, 6), place(8, 8)) << "right, from column 14 on";
    EXPECT_EQ(out.at(14, 6), kBlack);
    EXPECT_EQ(out.at(4, 8), kBlack) << "the middle picture's first column";
    EXPECT_EQ(out.at(6, 4), kBlack) << "and row";
    EXPECT_EQ(out.at(6, 7), place(3, 5)) << "2 * 18 / 10 and 3 * 17 / 9";
    EXPECT_EQ(out.at(17, 1), place(17, 1)) << "beyond the tiles";
    EXPECT_EQ(out.at(1, 12), place(1, 12));
    openPlaces(kTehRoxx, 64, 3);
    EXPECT_TRUE(showsItsInput()) << "no room for tiles";
}

TEST_F(Temporal, VertigoBrightensFromBlackAndIsOpaque)
{
    open(kVertigo, 64, 48);
    EXPECT_EQ(show({200, 103, 50, 9}), (Bgra{50, 25, 12, 255}));
    EXPECT_EQ(show({200, 103, 50, 9}), (Bgra{87, 43, 21, 255}));
    for (const int off : {0, -100}) {
        openPlaces(kVertigo, 64, 48).set("ZoomRate", off);
        fill({200, 103, 50, 9});
        EXPECT_TRUE(showsItsInput()) << off;
        EXPECT_TRUE(showsItsInput()) << off;
    }
}

TEST_F(Temporal, VertigoTurnsAndZoomsWhatItShowed)
{
    open(kVertigo, 64, 48);
    fill(kBlack);
    for (int y = 28; y < 32; ++y) {
        for (int x = 40; x < 44; ++x)
            frame().at(x, y) = {255, 255, 255, 255};
    }
    const auto lit = [](pixels::ConstView out) {
        int left = 64, right = -1, bottom = 48, top = -1, count = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 64; ++x) {
                if (out.at(x, y) == kBlack)
                    continue;
                left = std::min(left, x), right = std::max(right, x);
                bottom = std::min(bottom, y), top = std::max(top, y);
                ++count;
            }
        }
        return std::array<int, 5>{left, right, bottom, top, count};
    };
    EXPECT_EQ(lit(show()), (std::array<int, 5>{40, 43, 28, 31, 16}));
    fill(kBlack);
    EXPECT_EQ(lit(show()), (std::array<int, 5>{39, 43, 29, 33, 18}));
    EXPECT_EQ(lit(show()), (std::array<int, 5>{37, 42, 30, 35, 21}));
}

void setRings(host::Filter& rings)
{
    rings.set("iMouse", std::vector<float>{100.9f, 50.9f});
    rings.set("Color", std::vector<float>{1.0f, 0.5f, 0.0f});
    rings.set("Radius", 15.0f);
    rings.set("Opacity", 1.0f);
    rings.set("Enable", 1.0f);
    rings.set("clicked", 1.0f);
    rings.set("process", 0.5f);
}

TEST_F(Temporal, RingsSpreadFromTheirCentre)
{
    setRings(open(kRings, 200, 100));
    fill({10, 10, 10, 40});
    const auto out = show();
    EXPECT_EQ(out.at(100, 50), (Bgra{0, 127, 255, 40}));
    for (const auto& [distance, green] : {std::pair{5, 103}, {10, 10}, {15, 10}, {20, 70}, {25, 115},
             {30, 10}, {35, 84}, {40, 59}, {45, 16}, {48, 10}}) {
        EXPECT_EQ(out.at(100 + distance, 50).g, green) << distance;
        EXPECT_EQ(out.at(100 - distance, 50).g, green) << distance;
        EXPECT_EQ(out.at(100, 50 + distance).g, green) << distance;
    }
}

TEST_F(Temporal, RingsNeedEveryOneOfTheirParameters)
{
    const auto drawn = [&](auto change) {
        host::Filter& rings = open(kRings, 200, 100);
        setRings(rings);
        change(rings);
        fill({10, 20, 30, 40});
        return !showsItsInput();
    };
    EXPECT_TRUE(drawn([](auto&) {}));
    for (const char* gate : {"Enable", "clicked"})
        EXPECT_FALSE(drawn([&](auto& f) { f.set(gate, 0.5f); })) << gate;
    for (const float end : {0.0f, 1.0f, -3.0f, 7.0f, std::nanf("")})
        EXPECT_FALSE(drawn([&](auto& f) { f.set("process", end); })) << end;
    EXPECT_FALSE(drawn([](auto& f) { f.set("Color", std::vector<float>{1, 1}); })) << "too short";
    EXPECT_FALSE(drawn([](auto& f) { f.set("iMouse", std::vector<float>{100}); }));
    EXPECT_FALSE(drawn([](auto& f) { f.set("iMouse", 100.0f); })) << "not an array";
    EXPECT_FALSE(drawn([](auto& f) { f.set("iMouse", std::vector<float>{-1e30f, 1e30f}); }));
    drawn([](auto& f) {
        f.set("Radius", 1e30f);
        f.set("Color", std::vector<float>{1e30f, -1e30f, std::nanf("")});
    });
    EXPECT_TRUE(guardsIntact());
}

} // namespace
