// Everything about an effect of the library, in one row beside its kernel.
#pragma once

#include "effects/am/library/amTypes.h"
#include "model/EffectRegistry.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

namespace KEXSDK::am {

struct Frame;

/// Draws a frame and answers an AmResult. An effect that fails does so before it writes to dst.
using Effect = i32 (*)(const Frame&);

/// The function of a row.
struct Drawing {
    Effect draw;
    bool byRows = false; ///< see byRows()

    constexpr Drawing(Effect function) : draw(function) { }
    constexpr Drawing(Effect function, bool rows) : draw(function), byRows(rows) { }
    friend constexpr bool operator==(const Drawing&, const Drawing&) = default;
};

/// An effect that may be called with any run of a picture's rows in place of all, on several threads at once:
/// it knows rows by their pixels alone, only reads its block, draws in place as well as elsewhere, and always
/// succeeds.
constexpr Drawing byRows(Effect function) { return {function, true}; }

/// How hosts find an effect. Effects without an entry are reached by their numbers alone.
struct CatalogueEntry {
    int place = -1; ///< in the catalogue: 0, 1, 2 and on through all tables; a new effect is the last
    const char* name = nullptr; ///< label; the command-line name is made of it
    const char* guid = nullptr;
};

/// The texts that people see.
struct Shown {
    const char* title = nullptr;
    const char* summary = nullptr; ///< one sentence
};

/// What a parameter is in one effect.
struct Meaning {
    const char* title = nullptr;
    const char* help = nullptr;
};

/// The parameters that an effect reads. A parameter whose meaning differs between effects holds what people
/// are told of it; the others are true.
struct Reads {
    Meaning percent{};
    Meaning radius{};
    const char* direction = nullptr; ///< its choices, as in ParamInfo
    bool position = false;
    bool pick = false;
    bool band = false;
    bool colour = false;
};

/// Fields of a new block; see AmEffectParams.
struct Defaults {
    i32 percent = 50;
    i32 radius = 50;
    i32 top = 0;
    i32 bottom = 100;
    u8 red = 0;
    u8 green = 0;
    u8 blue = 0;
    u8 alpha = 0;
    i32 variant = 0;
    i32 direction = 0;
    i32 usageMask = 0;
};

/// The second picture of ids 2049 and above; other ids have none.
enum class Second {
    alike, ///< has the first picture's size, or the effect is refused
    any,   ///< of any size, which the effect looks at itself
    none,
};

struct EffectRow {
    i32 id;
    i32 last = id; ///< ids from `id` to `last` share a row without an entry
    CatalogueEntry entry{};
    Shown shown{};
    const char* texture = nullptr; ///< picture file that goes with the effect
    Reads reads{};
    Defaults defaults{};
    u32 rebuiltOnChange = 0;      ///< AmDirty bits that a node sets when a host has changed a parameter
    bool radiusIsPercent = false; ///< nodes store the parameter Radius in the block's percent, too
    bool random = false;          ///< the picture changes from run to run or from process to process
    bool shared = false;          ///< all nodes of the process share its state
    History history{};
    Alpha alpha = Alpha::kept;
    void (*prepare)(AmEffectParams&) = nullptr; ///< settings that the id forces upon its block
    /// src is never the rows of dst: when the picture is changed in place, src is a copy in scratch B, and
    /// scratch A holds another one.
    bool needsCopy = false;
    Second second = Second::alike;
    Drawing apply;

    constexpr bool isListed() const { return entry.place >= 0; }
};

/// Whether a text is a GUID: digits in groups of 8, 4, 4, 4 and 12, in either case.
constexpr bool isGuid(std::string_view text)
{
    constexpr std::string_view kShape = "00000000-0000-0000-0000-000000000000";
    return std::ranges::equal(text, kShape, [](char c, char shape) {
        const bool digit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        return shape == '-' ? c == '-' : digit;
    });
}

/// Whether an entry and what goes with it are all there, or none of it is. (With sanitizers the compiler does
/// not know while it compiles that a function has an address; collect() looks at that.)
constexpr bool isComplete(const EffectRow& row)
{
    const auto& [place, name, guid] = row.entry;
    const auto& [title, summary] = row.shown;
    if (row.last < row.id)
        return false;
    if (!row.isListed())
        return !name && !guid && !title && !summary && !row.texture;
    return row.last == row.id && name && guid && isGuid(guid) && title && summary
        && std::string_view(summary).ends_with('.');
}

/// Whether a table holds together: complete rows, ids that ascend, no place, name or GUID twice.
constexpr bool isSound(std::span<const EffectRow> rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!isComplete(rows[i]) || (i > 0 && rows[i].id <= rows[i - 1].last))
            return false;
        const CatalogueEntry& a = rows[i].entry;
        for (std::size_t j = 0; j < i && rows[i].isListed(); ++j) {
            const CatalogueEntry& b = rows[j].entry;
            if (rows[j].isListed()
                && (a.place == b.place || std::string_view(a.name) == b.name
                    || std::string_view(a.guid) == b.guid))
                return false;
        }
    }
    return true;
}

/// The families of the catalogue.
enum class Family { filter, local, look, texture };

struct Table {
    Family family;
    std::span<const EffectRow> rows;
};

/// A namespace-scope object of this type makes a table known.
struct Registered {
    Registered(Family family, std::span<const EffectRow> rows);
};

/// A row of the catalogue: an effect with an entry.
struct Listed {
    const EffectRow* effect;
    Family family;
};

/// The rows of several tables in one.
struct Collection {
    std::vector<const EffectRow*> byId;
    std::vector<Listed> catalogue; ///< by place
};

/// Throws std::logic_error when tables that are sound themselves do not fit together: an id, a place or a
/// GUID stands in two of them, or a place is left out; and when a row has no function.
Collection collect(std::span<const Table> tables);

/// Every registered row. Tools list them while the product is built, so tables that do not fit end the build.
const Collection& allEffects();

/// The row of an id, or null.
const EffectRow* findEffect(i32 id);

} // namespace KEXSDK::am
