// The catalog: exact GUIDs, names for command lines, described parameters.
#include "effects/am/library/amCatalog.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace KEXSDK;

TEST(AmCatalog, Holds155DistinctGuidsInTheirOrder)
{
    EXPECT_EQ(amCatalog().size(), 155u);
    std::set<std::string> guids;
    std::set<i32> ids;
    u64 digest = 0xcbf29ce484222325; // FNV-1a over every letter of the table
    for (const AmCatalogRow& row : amCatalog()) {
        guids.insert(row.guid);
        ids.insert(row.id);
        const std::string line = std::to_string(row.id) + '|' + row.name + '|' + row.guid + '|'
            + (row.texture ? row.texture : "") + '\n';
        for (const char c : line)
            digest = (digest ^ u8(c)) * 0x100000001b3;
    }
    EXPECT_EQ(guids.size(), 155u);
    EXPECT_EQ(ids.size(), 155u);
    EXPECT_EQ(digest, 0x91cbe16c9e7f3fa3u);
}

TEST(AmCatalog, IsSearchedByTheExactGuid)
{
    const AmCatalogRow* row = findAmRow("1C3593CE-611E-4718-A571-AC16D0675F57");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->id, 2052);
    EXPECT_STREQ(row->texture, "AncientCanvas.png");
    EXPECT_FALSE(findAmRow("1c3593ce-611e-4718-a571-ac16d0675f57"));
    EXPECT_FALSE(findAmRow(""));
    row = findAmRow("A1080F1E-9F4E-41ee-B0C2-4E9BD4D49B0D");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->id, 61);
    EXPECT_FALSE(row->texture);
}

TEST(AmCatalog, NamesAreTypedInLowerCaseWithHyphens)
{
    EXPECT_EQ(amCommandName("AmNoise"), "am-noise");
    EXPECT_EQ(amCommandName("FlipLR"), "am-flip-lr");
    EXPECT_EQ(amCommandName("BChannel"), "am-b-channel");
    EXPECT_EQ(amCommandName("Bad_TVSignal"), "am-bad-tv-signal");
    EXPECT_EQ(amCommandName("RQ_OLD_PHOTO"), "am-rq-old-photo");
    EXPECT_EQ(amCommandName("Radio Explike FX"), "am-radio-explike-fx");
    EXPECT_EQ(amCommandName("Vignette1"), "am-vignette1");
    EXPECT_EQ(amCommandName("70s"), "am-70s");
}

TEST(AmCatalog, ListsOnlyEffectsThatExistAndDescribesThem)
{
    const auto infos = amEffectInfos();
    std::set<std::string> names;
    std::set<std::string> titles;
    for (const EffectInfo& info : infos) {
        names.insert(info.name);
        titles.insert(info.title);
        EXPECT_TRUE(findAmRow(info.guid)) << info.name;
        EXPECT_TRUE(info.summary.ends_with('.')) << info.name;
    }
    EXPECT_EQ(names.size(), infos.size());
    EXPECT_EQ(titles.size(), infos.size());
    EXPECT_TRUE(names.contains("am-four-season"));
    EXPECT_GE(infos.size(), 64u - 1u); // 1 to 63 and 65

    std::vector<std::string> parameters;
    for (const ParamInfo& info : amParameters(61))
        parameters.push_back(std::string(info.name) + " " + std::to_string(int(info.value[0])));
    EXPECT_EQ(parameters, (std::vector<std::string>{"Direction 1", "Percent 50", "Radius 50"}));
    EXPECT_TRUE(amParameters(11).empty());
    EXPECT_TRUE(amParameters(12345).empty());
}

} // namespace
