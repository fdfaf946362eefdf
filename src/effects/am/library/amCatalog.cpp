// Catalogue entries and described parameters, made from the rows.
#include "effects/am/library/amCatalog.h"

#include "effects/am/library/amDefaults.h"
#include "text/nameWords.h"

#include <algorithm>
#include <map>

namespace KEXSDK {

namespace {

const char* nameOf(am::Family family)
{
    switch (family) {
    case am::Family::filter:
        return "am-filter";
    case am::Family::local:
        return "am-local";
    case am::Family::look:
        return "am-look";
    case am::Family::texture:
        return "am-texture";
    }
    return "";
}

ParamInfo integer(const char* name, const char* help, i32 value, double high, const char* unit = "percent")
{
    ParamInfo info{name, ParamType::integer, help, unit};
    info.high = high;
    info.value[0] = value;
    return info;
}

// A real parameter from 0 to `whole`, the value that stands for 100 percent.
ParamInfo share(const char* name, const char* help, float value, double whole)
{
    ParamInfo info{name, ParamType::real, help};
    info.high = whole;
    info.value[0] = value;
    return info;
}

// Nodes make pixels of the parameter, and the effect takes those for a percentage: what a host stores is the
// percentage divided by the height. Tools are told the values for a picture of 1080 rows.
ParamInfo bandBound(const char* name, const char* help, i32 percent)
{
    constexpr double kRows = 1080;
    ParamInfo info = share(name, help, float(percent / kRows), 100 / kRows);
    info.unit = "percent of the height, divided by the height in pixels; here for 1080";
    return info;
}

std::vector<ParamInfo> parametersOf(const am::EffectRow& row)
{
    const AmEffectParams b = am::defaultsOf(row.id);
    const am::Reads& reads = row.reads;
    std::vector<ParamInfo> all;
    if (reads.position) {
        all.push_back(integer("PositionX", "centre, from the left", b.posX, 100));
        all.push_back(integer("PositionY", "centre, from the bottom", b.posY, 100));
    }
    if (reads.pick) {
        all.push_back(share(
            "DecolorPosX", "point to pick, hundredths of a percent of the width", b.pickX * 100, 10000));
        all.back().title = "Picked Point X";
        all.push_back(share("DecolorPosY",
            "point to pick, hundredths of a percent of the height, from the bottom", b.pickY * 100, 10000));
        all.back().title = "Picked Point Y";
    }
    if (reads.direction) {
        all.push_back(integer("Direction", "where the picture's additions move", b.direction, 3, ""));
        all.back().choices = reads.direction;
    }
    if (reads.band) {
        all.push_back(bandBound("TopPos", "first row of the sharp band, from the bottom", b.top));
        all.back().title = "Band Start";
        all.push_back(bandBound("BottomPos", "end of the sharp band, from the bottom", b.bottom));
        all.back().title = "Band End";
    }
    if (reads.percent.help) {
        all.push_back(integer("Percent", reads.percent.help, b.percent, 100));
        all.back().title = reads.percent.title;
    }
    if (reads.colour) {
        all.push_back(integer("Red", "colour, red", b.red, 255, ""));
        all.push_back(integer("Gleen", "colour, green", b.green, 255, ""));
        all.back().title = "Green";
        all.push_back(integer("Blue", "colour, blue", b.blue, 255, ""));
    }
    if (reads.radius.help) {
        all.push_back(integer("Radius", reads.radius.help, b.radius, 100));
        all.back().title = reads.radius.title;
    }
    return all;
}

using ParametersById = std::map<i32, std::vector<ParamInfo>>;

ParametersById describeAll()
{
    ParametersById all;
    for (const auto& [effect, family] : amCatalog())
        all.emplace(effect->id, parametersOf(*effect));
    return all;
}

} // namespace

std::span<const am::Listed> amCatalog() { return am::allEffects().catalogue; }

const am::EffectRow* findAmRow(std::string_view guid)
{
    const auto found = std::ranges::find(
        amCatalog(), guid, [](const am::Listed& row) { return std::string_view(row.effect->entry.guid); });
    return found == amCatalog().end() ? nullptr : found->effect;
}

std::span<const ParamInfo> amParameters(i32 id)
{
    static const ParametersById all = describeAll();
    const auto found = all.find(id);
    return found == all.end() ? std::span<const ParamInfo>{} : std::span<const ParamInfo>(found->second);
}

std::string amCommandName(std::string_view name)
{
    std::vector<std::string_view> words = wordsOf(name);
    if (words.front() == "Am")
        words.erase(words.begin());
    std::string typed = "am";
    for (const std::string_view word : words) {
        typed += '-';
        for (const char c : word)
            typed += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
    }
    return typed;
}

std::vector<EffectInfo> amEffectInfos()
{
    std::vector<EffectInfo> infos;
    std::map<std::string, int> seen;
    for (const auto& [effect, family] : amCatalog()) {
        std::string name = amCommandName(effect->entry.name);
        const int count = ++seen[name];
        if (count > 1)
            name += "-" + std::to_string(count);
        infos.push_back({
            .guid = effect->entry.guid,
            .name = std::move(name),
            .title = effect->shown.title,
            .family = nameOf(family),
            .summary = effect->shown.summary,
            .random = effect->random,
            .shared = effect->shared,
            .history = effect->history,
            .alpha = effect->alpha,
            .byRows = effect->apply.byRows,
        });
    }
    return infos;
}

} // namespace KEXSDK
