// What must hold for every lookup-table file that was read, well-formed or not.
#pragma once

#include "effects/lut/LutTable.h"
#include "lut/LutFile.h"

#include <memory>

namespace fuzz {

/// Answers null, or what is wrong with the result. A table is applied to some colours as well.
inline const char* faultOf(const lut::LutFile& file)
{
    if (file.status == lut::LutStatus::notInitialised)
        return "no status";
    const std::size_t n = std::size_t(file.size);
    if (file.status != lut::LutStatus::success) {
        if (!file.entries.empty())
            return "a refused file keeps entries";
        return file.reason.empty() ? "a refusal without a reason" : nullptr;
    }
    if (n < 2 || n > std::size_t(lut::kLargestLut))
        return "a size out of range";
    if (file.entries.size() != n * n * n)
        return "entries are missing";

    static const auto table = std::make_unique<lut::LutTable>();
    table->set(file);
    std::array<pixels::Bgra, 128> colours;
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i] = {u8(i * 2), u8(i * 37), u8(255 - i * 2), u8(i)};
    const pixels::View row(reinterpret_cast<u8*>(colours.data()), {int(colours.size()), 1});
    table->apply(row, row);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        if (colours[i].a != u8(i))
            return "alpha changed";
    }
    return nullptr;
}

} // namespace fuzz
