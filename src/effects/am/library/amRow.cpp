// Collects the registered tables into one, and refuses tables that do not fit together.
#include "effects/am/library/amRow.h"

#include <stdexcept>
#include <string>

namespace KEXSDK::am {

namespace {

std::vector<Table>& tables()
{
    static std::vector<Table> all;
    return all;
}

[[noreturn]] void fail(const std::string& what, const EffectRow& row)
{
    throw std::logic_error("Numeric effect " + std::to_string(row.id) + ": " + what);
}

} // namespace

Registered::Registered(Family family, std::span<const EffectRow> rows) { tables().push_back({family, rows}); }

Collection collect(std::span<const Table> tables)
{
    Collection all;
    for (const auto& [family, rows] : tables) {
        for (const EffectRow& row : rows) {
            if (!row.apply.draw)
                fail("no function", row);
            all.byId.push_back(&row);
            if (row.isListed())
                all.catalogue.push_back({&row, family});
        }
    }
    std::ranges::sort(all.byId, {}, &EffectRow::id);
    const auto overlap = std::ranges::adjacent_find(
        all.byId, [](const EffectRow* a, const EffectRow* b) { return b->id <= a->last; });
    if (overlap != all.byId.end())
        fail("a second row of its id", **overlap);

    const auto guidOf = [](const Listed& row) { return std::string_view(row.effect->entry.guid); };
    std::ranges::sort(all.catalogue, {}, guidOf);
    const auto repeated = std::ranges::adjacent_find(all.catalogue, {}, guidOf);
    if (repeated != all.catalogue.end())
        fail("a second row with its GUID", *repeated->effect);

    std::ranges::sort(all.catalogue, {}, [](const Listed& row) { return row.effect->entry.place; });
    for (int place = 0; const Listed& row : all.catalogue)
        if (row.effect->entry.place != place++)
            fail("its place is taken, or the one before it is empty", *row.effect);
    return all;
}

const Collection& allEffects()
{
    static const Collection all = collect(tables());
    return all;
}

const EffectRow* findEffect(i32 id)
{
    const auto& rows = allEffects().byId;
    const auto found = std::ranges::lower_bound(rows, id, {}, &EffectRow::last);
    return found != rows.end() && (*found)->id <= id ? *found : nullptr;
}

} // namespace KEXSDK::am
