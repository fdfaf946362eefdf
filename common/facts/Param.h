// A parameter, declared once: the constructor, the getters, the catalogue, the host tool and the sweep
// test all read the same object.
#pragma once

#include "core/Types.h"

#include <array>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace KEXSDK {

/// The tag of a stored value; the numbers are the ones hosts see.
enum class ParamType : u16 { integer = 1, real = 2, integerArray = 3, realArray = 4, filePath = 5 };

template <class T> struct Range {
    T low;
    T high;
};

/// What tools need to know about a parameter. Ranges advise hosts; the store never clamps.
struct ParamInfo {
    static constexpr u32 kMaxElements = 16; ///< a matrix of 4 x 4

    const char* name;
    ParamType type;
    const char* help;
    const char* unit = "";    ///< "percent", "pixels", "seconds"; empty for a plain number
    const char* choices = ""; ///< values of a mode, "0 off, 1 left, 2 right"; empty when any number goes
    double low = 0;
    double high = 0;
    u32 elements = 1;     ///< arrays: how many values the effect reads
    bool declared = true; ///< false: the constructor stores nothing and the host adds the parameter
    /// What the constructor stores; for undeclared parameters a value that shows the effect.
    std::array<double, kMaxElements> value{};
    /// For an undeclared number whose absence acts: what a host stores unless its user says otherwise, so
    /// that the effect leaves the picture alone.
    std::optional<double> hostDefault{};
    const char* title = ""; ///< for people; empty where the words of the name say it (titleOf)
    /// Files: the folder of the resource directory in which the effect looks for a bare name, with or without
    /// its ".png", when there is no such file; empty for none.
    const char* packFolder = "";
    const char* packExample = ""; ///< a name there
};

/// What people read: the title, or the words of the name, each with a capital; "Vignette Amount" for
/// "u_vignette_amount", "Block Size" for "BlockSize".
std::string titleOf(const ParamInfo& info);

/// The values of a mode with their names, from "0 off, 1 left"; empty when any number goes.
std::vector<std::pair<int, std::string>> choicesOf(const ParamInfo& info);

/// What the kinds of declared parameters share.
template <class Self> struct DeclaredParam : ParamInfo {
    constexpr Self titled(const char* text) const
    {
        Self copy = static_cast<const Self&>(*this);
        copy.title = text;
        return copy;
    }
};

/// A number. `get(param)` on the node answers the stored value, or `fallback` when the name is missing or
/// holds another type.
template <class T> struct Param : DeclaredParam<Param<T>> {
    static_assert(std::is_same_v<T, int> || std::is_same_v<T, float>);
    T fallback{};

    constexpr Param(const char* paramName, T initial, Range<T> advised, const char* text)
        : DeclaredParam<Param>{
            {paramName, std::is_same_v<T, int> ? ParamType::integer : ParamType::real, text}}
    {
        this->low = double(advised.low);
        this->high = double(advised.high);
        this->value[0] = double(initial);
    }
    constexpr T initial() const { return T(this->value[0]); }

    constexpr Param in(const char* unitName) const
    {
        return with([&](Param& p) { p.unit = unitName; });
    }
    constexpr Param choosing(const char* text) const
    {
        return with([&](Param& p) { p.choices = text; });
    }
    constexpr Param readingAs(T whenMissing) const
    {
        return with([&](Param& p) { p.fallback = whenMissing; });
    }
    constexpr Param undeclared() const
    {
        return with([](Param& p) { p.declared = false; });
    }
    /// Undeclared, with a value that hosts are to store unless their user says otherwise.
    constexpr Param storedByHosts(T neutral) const
    {
        return undeclared().with([&](Param& p) { p.hostDefault = double(neutral); });
    }

private:
    template <class Change> constexpr Param with(Change change) const
    {
        Param copy = *this;
        change(copy);
        return copy;
    }
};

/// An array that the host sets; effects check its length when they read it.
template <class T> struct ArrayParam : DeclaredParam<ArrayParam<T>> {
    constexpr ArrayParam(const char* paramName, std::array<double, ParamInfo::kMaxElements> example,
        u32 count, Range<T> advised, const char* text, const char* unitName = "")
        : DeclaredParam<ArrayParam>{{paramName,
            std::is_same_v<T, int> ? ParamType::integerArray : ParamType::realArray, text, unitName}}
    {
        this->low = double(advised.low);
        this->high = double(advised.high);
        this->elements = count;
        this->declared = false;
        this->value = example;
    }
};

/// A file that the host names.
struct PathParam : DeclaredParam<PathParam> {
    constexpr PathParam(const char* paramName, const char* text)
        : DeclaredParam<PathParam>{{paramName, ParamType::filePath, text}}
    {
        declared = false;
    }

    /// Takes names of files that the resource pack has in a folder of its own, too, such as this one.
    constexpr PathParam inPack(const char* folder, const char* example) const
    {
        PathParam copy = *this;
        copy.packFolder = folder;
        copy.packExample = example;
        return copy;
    }
};

} // namespace KEXSDK
