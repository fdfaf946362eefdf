// One table look-up per colour byte, which curves, levels and equalisation are made of.
#pragma once

#include "pixels/View.h"

#include <array>

namespace pixels {

using ByteTable = std::array<u8, 256>;

/// Entry i is f(i), a byte.
template <class Function> constexpr ByteTable tableOf(Function f)
{
    ByteTable table{};
    for (int i = 0; i < 256; ++i)
        table[std::size_t(i)] = f(i);
    return table;
}

struct ByteTables {
    ByteTable b, g, r;
};

/// Maps columns [first, last) of every row: colour bytes through their tables, alpha copied. Other columns of
/// dst are not touched. src and dst may be the same rows.
void mapTables(ConstView src, View dst, const ByteTables& tables, int first, int last);

/// Maps whole rows.
inline void mapTables(ConstView src, View dst, const ByteTables& tables)
{
    mapTables(src, dst, tables, 0, dst.width());
}

} // namespace pixels
