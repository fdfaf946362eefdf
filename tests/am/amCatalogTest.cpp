// The catalog: exact GUIDs, names for command lines, described parameters.
#include "effects/am/library/amCatalog.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <stdexcept>

namespace {

using namespace KEXSDK;

TEST(AmCatalog, KeepsItsFirst155RowsInTheirOrder)
{
    ASSERT_GE(amCatalog().size(), 155u);
    u64 digest = 0xcbf29ce484222325; // FNV-1a over every letter of them
    for (const auto& [effect, family] : amCatalog().first(155)) {
        const auto& [place, name, guid] = effect->entry;
        const std::string line = std::to_string(effect->id) + '|' + name + '|' + guid + '|'
            + (effect->texture ? effect->texture : "") + '\n';
        for (const char c : line)
            digest = (digest ^ u8(c)) * 0x100000001b3;
    }
    EXPECT_EQ(digest, 0x91cbe16c9e7f3fa3u);
}

TEST(AmCatalog, TablesThatDoNotHoldTogetherAreRefused)
{
    using namespace am;
    constexpr const char* kGuid = "040AC214-A380-4129-8F48-9B9623CDF3F4";
    constexpr const char* kOther = "CA4F3A55-8308-406f-AD90-6652AD8A9027";
    constexpr Effect kNothing = [](const Frame&) -> i32 { return kAmOk; };
    const auto listed = [=](i32 id, int place, const char* name, const char* guid) {
        return EffectRow{.id = id,
            .entry = {.place = place, .name = name, .guid = guid},
            .shown = {.title = "Title", .summary = "A sentence."},
            .apply = kNothing};
    };
    const EffectRow first = listed(3, 0, "First", kGuid);
    const EffectRow second = listed(5, 1, "Second", kOther);
    const EffectRow unlisted{.id = 4, .apply = kNothing};
    const auto soundWith = [&](auto change) {
        std::array rows{first, unlisted, second};
        change(rows[0], rows[1], rows[2]);
        return isSound(rows);
    };
    using Row = EffectRow&;
    EXPECT_TRUE(soundWith([](Row, Row, Row) {}));
    EXPECT_FALSE(soundWith([](Row, Row, Row c) { c.id = c.last = 4; })) << "an id twice";
    EXPECT_FALSE(soundWith([](Row, Row b, Row) { b.last = 5; })) << "a run over the next row";
    EXPECT_FALSE(soundWith([](Row a, Row, Row c) { c.entry.place = a.entry.place; }));
    EXPECT_FALSE(soundWith([](Row a, Row, Row c) { c.entry.name = a.entry.name; }));
    EXPECT_FALSE(soundWith([](Row a, Row, Row c) { c.entry.guid = a.entry.guid; }));
    EXPECT_FALSE(soundWith([](Row, Row, Row c) { c.entry.guid = "CA4F3A55-8308-406f-AD90-6652AD8A902"; }));
    EXPECT_FALSE(soundWith([](Row, Row, Row c) { c.entry.guid = "CA4F3A55_8308_406f_AD90_6652AD8A9027"; }));
    EXPECT_FALSE(soundWith([](Row, Row, Row c) { c.shown.title = nullptr; }));
    EXPECT_FALSE(soundWith([](Row, Row, Row c) { c.shown.summary = "No sentence"; }));
    EXPECT_FALSE(soundWith([](Row, Row, Row c) { c.last = 6; })) << "one entry for two ids";
    EXPECT_FALSE(soundWith([](Row, Row b, Row) { b.texture = "a.png"; })) << "a texture without an entry";

    const auto fitWith = [&](const EffectRow& other) {
        const Table tables[] = {{Family::look, {&second, 1}}, {Family::filter, {&other, 1}}};
        return collect(tables).catalogue.front().effect == &other;
    };
    EXPECT_TRUE(fitWith(first)) << "sorted by place";
    EffectRow empty = first;
    empty.apply = nullptr;
    EXPECT_THROW(fitWith(empty), std::logic_error) << "no function";
    EXPECT_THROW(fitWith(listed(5, 0, "First", kGuid)), std::logic_error) << "an id twice";
    EXPECT_THROW(fitWith(listed(3, 0, "First", kOther)), std::logic_error) << "a GUID twice";
    EXPECT_THROW(fitWith(listed(3, 1, "First", kGuid)), std::logic_error) << "a place twice";
    EXPECT_THROW(fitWith(listed(3, 2, "First", kGuid)), std::logic_error) << "place 0 left out";
}

TEST(AmCatalog, IsSearchedByTheExactGuid)
{
    const am::EffectRow* row = findAmRow("1C3593CE-611E-4718-A571-AC16D0675F57");
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
