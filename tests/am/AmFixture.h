// Pictures and blocks for tests of the numeric effect library.
#pragma once

#include "core/Random.h"
#include "effects/am/library/amCatalog.h"
#include "effects/am/library/amLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

using pixels::Bgra;

/// Ids by command-line name, without the "am-" in front.
inline const std::map<std::string, i32>& amIds()
{
    static const auto all = [] {
        std::map<std::string, i32> ids;
        for (const KEXSDK::EffectInfo& info : KEXSDK::amEffectInfos())
            ids.emplace(info.name.substr(3), KEXSDK::findAmRow(info.guid)->id);
        return ids;
    }();
    return all;
}

/// An effect: its name in amIds(), or its number where it has no name. Failures print the name.
class Am {
public:
    constexpr Am(const char* name) : name_(name) { }
    constexpr Am(i32 id) : id_(id) { }

    operator i32() const
    {
        const auto found = name_ ? amIds().find(name_) : amIds().end();
        if (name_ && found == amIds().end())
            throw std::invalid_argument(std::string("no effect am-") + name_);
        return name_ ? found->second : id_;
    }

    friend std::ostream& operator<<(std::ostream& out, Am effect)
    {
        const auto found =
            std::ranges::find(amIds(), i32(effect), [](const auto& entry) { return entry.second; });
        return found == amIds().end() ? out << i32(effect) : out << found->first;
    }

private:
    const char* name_ = nullptr;
    i32 id_ = 0;
};
/// Lists of effects that may hold names and numbers.
using Ams = std::initializer_list<Am>;

/// A parameter block that is released with this object.
class AmBlock {
public:
    explicit AmBlock(Am id) { EXPECT_EQ(KEXSDK::AmCreateParams(&block_, id), KEXSDK::kAmOk); }
    ~AmBlock() { EXPECT_EQ(KEXSDK::AmReleaseParams(block_), KEXSDK::kAmOk); }
    AmBlock(const AmBlock&) = delete;
    AmBlock& operator=(const AmBlock&) = delete;

    KEXSDK::AmEffectParams* get() { return block_; }
    KEXSDK::AmEffectParams* operator->() { return block_; }

private:
    KEXSDK::AmEffectParams* block_ = nullptr;
};

/// A picture between guard bytes, whose rows may have padding behind them.
class AmPicture {
public:
    AmPicture(int width, int height, int padding = 0)
        : size_{width, height},
          stride_(width * 4 + padding),
          memory_(2 * kGuard + std::size_t(stride_) * height, kMark)
    {
        fill({0, 0, 0, 255});
    }
    /// A picture of one row.
    AmPicture(std::initializer_list<Bgra> row) : AmPicture(int(row.size()), 1)
    {
        std::ranges::copy(row, view().row(0).begin());
    }

    pixels::View view() { return {memory_.data() + kGuard, size_, stride_}; }
    Bgra at(int x, int y) { return view().at(x, y); }
    std::vector<Bgra> row(int y)
    {
        const auto pixels = view().row(y);
        return {pixels.begin(), pixels.end()};
    }
    std::vector<Bgra> pixels()
    {
        std::vector<Bgra> all;
        for (int y = 0; y < size_.height; ++y)
            all.insert(all.end(), view().row(y).begin(), view().row(y).end());
        return all;
    }
    KEXSDK::AmImageDesc desc()
    {
        return {.width = size_.width,
            .height = size_.height,
            .stride = stride_,
            .dataSize = stride_ * size_.height,
            .data = view().bytes()};
    }

    void fill(Bgra value)
    {
        for (int y = 0; y < size_.height; ++y)
            std::ranges::fill(view().row(y), value);
    }
    void fillWithNoise(unsigned seed)
    {
        std::mt19937 random(seed);
        for (int y = 0; y < size_.height; ++y)
            for (Bgra& p : view().row(y))
                p = pixels::fromWord(u32(random()));
    }
    /// Whether the guards and the padding are as they were made.
    bool surroundingsIntact() const
    {
        std::size_t marks = 0;
        for (std::size_t i = 0; i < memory_.size(); ++i) {
            const bool inside = i >= kGuard && i < memory_.size() - kGuard
                && int((i - kGuard) % std::size_t(stride_)) < size_.width * 4;
            marks += !inside && memory_[i] != kMark;
        }
        return marks == 0;
    }

private:
    static constexpr std::size_t kGuard = 256;
    static constexpr u8 kMark = 0xA5;

    pixels::Extent size_;
    int stride_;
    std::vector<u8> memory_;
};

/// A picture whose pixels tell their place: blue is the column, green the row, red and alpha mix the two.
inline AmPicture numbered(int width, int height)
{
    AmPicture picture(width, height, 12);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.view().at(x, y) = {u8(x), u8(y), u8(x ^ y), u8(x + 3 * y)};
    return picture;
}

inline i32 apply(AmBlock& block, AmPicture& picture)
{
    const KEXSDK::AmImageDesc desc = picture.desc();
    return KEXSDK::AmApplyEffect(block.get(), &desc, nullptr);
}

/// The picture after one run of an effect, with the thread's generator seeded.
template <class Set = void (*)(KEXSDK::AmEffectParams&)>
AmPicture applied(
    Am id, AmPicture picture, Set set = [](KEXSDK::AmEffectParams&) {}, u32 seed = 1)
{
    AmBlock block(id);
    block->frameRate = 25;
    set(*block.get());
    pixels::threadRandom().seed(seed);
    EXPECT_EQ(apply(block, picture), KEXSDK::kAmOk);
    EXPECT_TRUE(picture.surroundingsIntact());
    return picture;
}

inline auto percent(i32 value)
{
    return [value](KEXSDK::AmEffectParams& b) { b.percent = value; };
}

} // namespace test

namespace pixels {

inline void PrintTo(Bgra p, std::ostream* out)
{
    *out << '(' << int(p.b) << ", " << int(p.g) << ", " << int(p.r) << ", " << int(p.a) << ')';
}

} // namespace pixels
