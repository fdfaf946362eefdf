// The parameter store: types, comparisons, what counts as a change.
#include "model/CSimpleEffect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// A node that tells whether its run saw changed parameters.
class Probe final : public KEXSDK::CSimpleEffect {
public:
    Probe() : CSimpleEffect(2, 2), input_(2, 2, 0, 32, nullptr) { setInputImage(&input_, 0); }
    u32 getInputCount() override { return 1; }
    void run() override { sawChange_ = paramsChanged != 0; }

    bool changedInRun()
    {
        evaluate(nullptr);
        return sawChange_;
    }

private:
    KEXSDK::CEffectImage input_;
    bool sawChange_ = false;
};

TEST(Parameters, NewNodeHasTheStandardThreeInByteOrder)
{
    Probe node;
    ASSERT_EQ(node.GetParamCount(), 3u);
    const char* const expected[] = {"kex_effect_enable", "u_global_time", "u_total_time"};
    for (u32 i = 0; i < 3; ++i) {
        char name[64];
        ASSERT_TRUE(node.enumParamName(i, name));
        EXPECT_STREQ(name, expected[i]);
    }
    char untouched[4] = "abc";
    EXPECT_FALSE(node.enumParamName(3, untouched));
    EXPECT_STREQ(untouched, "abc");
    EXPECT_EQ(node.getParamInt("kex_effect_enable", 7), 1);
    EXPECT_EQ(node.getParamFloat("u_total_time", 0), 5.0f);

    node.setParamIntValue("Size", 1);
    char first[64];
    node.enumParamName(0, first);
    EXPECT_STREQ(first, "Size") << "upper case sorts before lower case";
}

TEST(Parameters, TypeIsFreeBeforeTheFirstRunAndFixedAfterIt)
{
    Probe node;
    EXPECT_TRUE(node.setParamIntValue("Size", 3));
    EXPECT_TRUE(node.setParamFloatValue("Size", 2.5f));
    EXPECT_TRUE(node.setParamIntValue("Size", 4));
    node.evaluate(nullptr);
    EXPECT_FALSE(node.setParamFloatValue("Size", 1.0f));
    EXPECT_EQ(node.getParamInt("Size", 0), 4);
    EXPECT_TRUE(node.setParamIntValue("u_global_time", 1)) << "volatile names are never compared";
}

TEST(Parameters, ARunSeesAChangeExactlyWhenAValueDiffers)
{
    Probe node;
    EXPECT_TRUE(node.changedInRun()) << "declarations count";
    EXPECT_FALSE(node.changedInRun());
    node.setParamFloatValue("u_global_time", 1.0f);
    node.setParamFloatValue("u_total_time", 9.0f);
    EXPECT_FALSE(node.changedInRun()) << "time is volatile";
    node.setParamIntValue("kex_effect_enable", 2);
    EXPECT_TRUE(node.changedInRun());

    const auto settles = [&](auto store) {
        store();
        const bool first = node.changedInRun();
        store();
        return first && !node.changedInRun();
    };
    const float floats[] = {1, 2};
    const int ints[] = {1, 2};
    EXPECT_TRUE(settles([&] { node.setParamFloatValue("f", 2.0f); }));
    EXPECT_TRUE(settles([&] { node.setParamFloatArrayValue("fa", floats, 2); }));
    EXPECT_TRUE(settles([&] { node.setParamIntArrayValue("ia", ints, 2); }));
    EXPECT_TRUE(settles([&] { node.setParamFilePathValue("p", L"a/b"); }));
    node.setParamIntArrayValue("ia", ints, 1);
    EXPECT_TRUE(node.changedInRun()) << "the count differs";
    node.setParamFilePathValue("p", L"a/c");
    EXPECT_TRUE(node.changedInRun());

    const float nan = std::numeric_limits<float>::quiet_NaN();
    node.setParamFloatValue("f", nan);
    EXPECT_TRUE(node.changedInRun());
    node.setParamFloatValue("f", nan);
    EXPECT_TRUE(node.changedInRun()) << "NaN equals nothing";
}

TEST(Parameters, ARefusedOrNullVariantStaysWithTheCaller)
{
    Probe node;
    node.setParamIntValue("n", 1);
    node.evaluate(nullptr);
    auto wrong = KEXSDK::ParamVariant::ofReal(1);
    EXPECT_FALSE(node.setParamVariant("n", wrong));
    EXPECT_NE(wrong, nullptr);
    std::unique_ptr<KEXSDK::ParamVariant> none;
    EXPECT_FALSE(node.setParamVariant("n", none));
}

TEST(Parameters, ArrayGettersCopyWhatFitsAndReportTheStoredCount)
{
    Probe node;
    const int stored[] = {10, 20, 30};
    node.setParamIntArrayValue("a", stored, 3);
    int values[] = {-1, -1, -1};
    int count = 2;
    EXPECT_TRUE(node.getParamIntArrayValue("a", values, &count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(values[1], 20);
    EXPECT_EQ(values[2], -1);
    for (int room : {0, -5}) {
        count = room;
        values[0] = -1;
        EXPECT_TRUE(node.getParamIntArrayValue("a", values, &count));
        EXPECT_EQ(count, 3);
        EXPECT_EQ(values[0], -1);
    }
    float none = 5;
    count = 1;
    EXPECT_FALSE(node.getParamFloatArrayValue("a", &none, &count));
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(node.setParamIntArrayValue("empty", stored, 0));
    EXPECT_TRUE(node.getParamIntArrayValue("empty", values, &count));
    EXPECT_EQ(count, 0);
}

TEST(Parameters, MissingOrOtherTypeReadsAsTheDefault)
{
    Probe node;
    float real = 0;
    EXPECT_FALSE(node.getParamFloatValue("absent", &real, 2.5f));
    EXPECT_EQ(real, 2.5f);
    node.setParamFloatValue("f", 1.5f);
    int integer = 0;
    EXPECT_FALSE(node.getParamIntValue("f", &integer, 8));
    EXPECT_EQ(integer, 8);
    KEXSDK::ParamVariant* found = nullptr;
    EXPECT_TRUE(node.getParamVariant("f", &found));
    EXPECT_EQ(found->type, 2);
    EXPECT_FALSE(node.getParamVariant("F", &found)) << "names are case-sensitive";
    EXPECT_EQ(found, nullptr);
}

TEST(Parameters, PathsAreKeptAsUtf16WithSurrogates)
{
    Probe node;
    node.setParamFilePathValue("p", L"x\U0001F3A5\u00e9");
    KEXSDK::ParamVariant* path = nullptr;
    ASSERT_TRUE(node.getParamVariant("p", &path));
    EXPECT_EQ(path->count, 4u);
    EXPECT_EQ(path->path(), std::u16string_view(u"x\U0001F3A5\u00e9"));
}

} // namespace
