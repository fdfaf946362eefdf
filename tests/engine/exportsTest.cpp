// The exported functions: result codes, what is written and what is left alone.
#include "support/EngineFixture.h"

#include <cstring>

namespace {

constexpr const char* kGrey = "DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A";

CEffectImage* const kUntouchedImage = reinterpret_cast<CEffectImage*>(0x10);
CSimpleEffect* const kUntouchedFilter = reinterpret_cast<CSimpleEffect*>(0x10);

TEST(EngineLifeCycle, StartsOnceAndAgainAfterItsEnd)
{
    test::useNoGraphics();
    EXPECT_EQ(UninitializeEngine(), 0u);
    EXPECT_EQ(InitializeEngine(nullptr, nullptr), 2u);
    CSimpleEffect* filter = kUntouchedFilter;
    EXPECT_EQ(GetFilter(kGrey, 4, 4, &filter), 1u);
    EXPECT_EQ(filter, kUntouchedFilter) << "no engine: nothing is written";
    EXPECT_EQ(InitializeEngine("./", nullptr), 0u) << "a missing GPU is no failure";
    EXPECT_EQ(InitializeEngine(nullptr, nullptr), 4u);
    EXPECT_EQ(UninitializeEngine(), 0u);
    EXPECT_EQ(InitializeEngine("./", nullptr), 0u);
    EXPECT_EQ(UninitializeEngine(), 0u);
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
}

TEST(Images, SizesArePicky)
{
    for (const auto& [width, height, result] : {std::tuple{0u, 1u, 1u}, {1u, 0u, 1u}, {4097u, 1u, 1u},
             {1u, 4097u, 1u}, {u32(-1), 1u, 1u}, {4096u, 1u, 0u}, {1u, 4096u, 0u}}) {
        const ImageCreateInfo info{width, height, {}, nullptr};
        CEffectImage* image = kUntouchedImage;
        EXPECT_EQ(CreateImage(&info, &image), result) << width << " x " << height;
        if (result)
            EXPECT_EQ(image, kUntouchedImage);
        else
            ReleaseImage(image);
        const unsigned size[2] = {width, height};
        image = kUntouchedImage;
        EXPECT_EQ(CreateImageFromFile("missing.png", size, &image), result ? 2u : 0u);
        EXPECT_EQ(image, result ? kUntouchedImage : nullptr);
    }
    CEffectImage* image = nullptr;
    const ImageCreateInfo info{1, 1, {}, nullptr};
    EXPECT_EQ(CreateImage(nullptr, &image), 2u);
    EXPECT_EQ(CreateImage(&info, nullptr), 2u);
    const unsigned size[2] = {1, 1};
    EXPECT_EQ(CreateImageFromFile(nullptr, size, &image), 2u);
    EXPECT_EQ(CreateImageFromFile("x", nullptr, &image), 2u);
    EXPECT_EQ(CreateImageFromFile("x", size, nullptr), 2u);
}

TEST(Images, OwnMemoryIsZeroedAndForeignMemoryIsUsedInPlace)
{
    host::Image image(2, 3);
    ASSERT_EQ(image.bytes().size(), 24u);
    for (const auto byte : image.bytes())
        EXPECT_EQ(byte, 0);

    u8 memory[4] = {1, 2, 3, 4};
    const ImageCreateInfo info{1, 1, {}, memory};
    CEffectImage* foreign = nullptr;
    ASSERT_EQ(CreateImage(&info, &foreign), 0u);
    void* address = nullptr;
    EXPECT_EQ(LockImageData(foreign, &address), 0u);
    EXPECT_EQ(address, memory);
    EXPECT_EQ(UnlockImageData(foreign), 0u);
    unsigned format = 77;
    EXPECT_EQ(KEXSDK::GetImageFormat(foreign, &format), 0u);
    EXPECT_EQ(format, 77u);
    EXPECT_EQ(ReleaseImage(foreign), 0u);
    EXPECT_EQ(memory[3], 4);

    unsigned side = 0;
    EXPECT_EQ(GetImageWidth(nullptr, &side), 2u);
    EXPECT_EQ(GetImageHeight(image.handle(), nullptr), 2u);
    EXPECT_EQ(LockImageData(image.handle(), nullptr), 2u);
    EXPECT_EQ(UnlockImageData(nullptr), 2u);
    EXPECT_EQ(SaveImage(nullptr, "x.png"), 2u);
    EXPECT_EQ(SaveImage(image.handle(), nullptr), 2u);
    EXPECT_EQ(ReleaseImage(nullptr), 2u);
    EXPECT_EQ(KEXSDK::GetImageFormat(nullptr, &format), 2u);
}

using Filters = test::EngineWithoutGpu;

TEST_F(Filters, CreationChecksArgumentsThenTheGuid)
{
    CSimpleEffect* filter = kUntouchedFilter;
    EXPECT_EQ(GetFilter(kGrey, 4, 4, nullptr), 2u);
    EXPECT_EQ(GetFilter(nullptr, 4, 4, &filter), 2u);
    for (const int side : {0, -1, 4097}) {
        EXPECT_EQ(GetFilter(kGrey, side, 4, &filter), 1u);
        EXPECT_EQ(GetFilter(kGrey, 4, side, &filter), 1u);
        EXPECT_EQ(filter, kUntouchedFilter);
    }
    EXPECT_EQ(GetFilter("dee5dfa9-f7fe-4cd1-9871-37a3c7673a1a", 4, 4, &filter), 1u);
    EXPECT_EQ(filter, nullptr) << "lookup does not fold case";
    ASSERT_EQ(GetFilter(kGrey, 4096, 1, &filter), 0u);
    EXPECT_EQ(GetFilterInputCount(filter), 1u);
    EXPECT_EQ(GetFilterInputCount(nullptr), 0u);
    CSimpleEffect* param = nullptr;
    EXPECT_EQ(GetFilterParam(filter, &param), 0u);
    EXPECT_EQ(param, filter);
    EXPECT_EQ(GetFilterParam(nullptr, &param), 2u);
    EXPECT_EQ(GetFilterParam(filter, nullptr), 2u);
    EXPECT_EQ(ReleaseFilter(filter), 0u);
    EXPECT_EQ(ReleaseFilter(nullptr), 2u);
}

TEST_F(Filters, EvaluationWithoutInputFailsAndStillHandsOutTheBlankOutput)
{
    host::Filter filter(kGrey, 2, 2);
    CEffectImage* output = nullptr;
    EXPECT_EQ(DoFilter(filter.handle(), &output), 1u);
    ASSERT_NE(output, nullptr);
    EXPECT_EQ(host::bytesOf(output)[0], 0);
    EXPECT_EQ(DoFilter(nullptr, &output), 2u);
    EXPECT_EQ(DoFilter(filter.handle(), nullptr), 2u);
    EXPECT_EQ(DoFilterEx(filter.handle(), nullptr), 2u);
    EXPECT_EQ(SetInputImage(filter.handle(), nullptr, 0), 2u);
    EXPECT_EQ(ConnectFilter(nullptr, nullptr, 0), 2u);
    EXPECT_EQ(ConnectFilter(nullptr, filter.handle(), 0), 0u);
    const host::Image otherSize(3, 2);
    filter.setInput(host::Image(2, 2));
    EXPECT_EQ(DoFilterEx(filter.handle(), otherSize.handle()), 1u);
}

TEST_F(Filters, ParameterFunctionsCheckNamesAndReportTypes)
{
    using namespace KEXSDK;
    host::Filter filter(kGrey, 2, 2);
    CSimpleEffect* const f = filter.handle();
    const int ints[] = {1, 2};
    const float floats[] = {0.5f};
    EXPECT_EQ(setParamIntValue(nullptr, "n", 1), 2u);
    EXPECT_EQ(setParamIntValue(f, nullptr, 1), 2u);
    EXPECT_EQ(setParamIntValue(f, "", 1), 2u);
    EXPECT_EQ(setParamIntArrayValue(f, "a", nullptr, 0), 2u);
    EXPECT_EQ(setParamIntArrayValue(f, "a", ints, -1), 2u);
    EXPECT_EQ(setParamFilePathValue(f, "p", nullptr), 2u);
    EXPECT_EQ(setParamIntValue(f, "n", 7), 0u);
    EXPECT_EQ(setParamFloatValue(f, "f", 0.25f), 0u);
    EXPECT_EQ(setParamIntArrayValue(f, "a", ints, 2), 0u);
    EXPECT_EQ(setParamFloatArrayValue(f, "b", floats, 1), 0u);
    EXPECT_EQ(setParamFilePathValue(f, "p", L"x"), 0u);

    const char* const names[] = {"n", "f", "a", "b", "p"};
    for (unsigned type = 1; type <= 5; ++type) {
        tagVIParamType found = VIParamUnknown;
        EXPECT_EQ(getParamType(f, names[type - 1], &found), 0u);
        EXPECT_EQ(unsigned(found), type);
    }
    tagVIParamType untouched = tagVIParamType(99);
    EXPECT_EQ(getParamType(f, "absent", &untouched), 0u);
    EXPECT_EQ(unsigned(untouched), 99u);

    unsigned count = 0;
    EXPECT_EQ(GetParamCount(f, &count), 0u);
    EXPECT_EQ(count, 8u);
    char name[64] = "";
    EXPECT_EQ(enumParamName(f, 0, name), 0u);
    EXPECT_STREQ(name, "a");
    EXPECT_EQ(enumParamName(f, count, name), 1u);

    int integer = 5;
    EXPECT_EQ(getParamIntValue(f, "f", &integer), 1u);
    EXPECT_EQ(integer, 0);
    EXPECT_EQ(getParamIntValue(f, "n", &integer), 0u);
    EXPECT_EQ(integer, 7);
    float real = 5;
    EXPECT_EQ(getParamFloatValue(f, "absent", &real), 1u);
    EXPECT_EQ(real, 0.0f);
    int room = 1;
    int values[2] = {0, 0};
    EXPECT_EQ(getParamIntArrayValue(f, "a", values, &room), 0u);
    EXPECT_EQ(room, 2);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], 0);
    EXPECT_EQ(getParamFloatArrayValue(f, "a", &real, &room), 1u);
    EXPECT_EQ(getParamIntArrayValue(f, "a", nullptr, &room), 2u);
    EXPECT_EQ(getParamIntArrayValue(f, "a", values, nullptr), 2u);
    EXPECT_STREQ(kEffectFrameRate, "u_frame_rate");
    EXPECT_STREQ(kEffectCurrentTime, "u_global_time");
    EXPECT_STREQ(kEffectTotalTime, "u_total_time");
    EXPECT_STREQ(kEffectEnable, "kex_effect_enable");
}

TEST_F(Filters, HugePathsAndArraysAreStoredWhole)
{
    host::Filter filter(kGrey, 1, 1);
    const std::vector<float> many(100'000, 0.5f);
    EXPECT_TRUE(filter.set("many", many));
    std::vector<float> back(many.size());
    int room = int(back.size());
    EXPECT_EQ(KEXSDK::getParamFloatArrayValue(filter.handle(), "many", back.data(), &room), 0u);
    EXPECT_EQ(back, many);
}

} // namespace
