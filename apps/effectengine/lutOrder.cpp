// The guess by neighbours: a channel changes most along its own axis, unless a look exchanges the colours.
#include "effectengine/lutOrder.h"

#include <cmath>

namespace tool {

namespace {

/// How much a channel changes from neighbour to neighbour, summed over the table.
/// @param stride  from an entry to its neighbour along the axis
double changeAlong(const lut::LutFile& file, std::size_t stride, float lut::LutEntry::*channel)
{
    const std::size_t n = std::size_t(file.size);
    double sum = 0;
    for (std::size_t i = 0; i + stride < file.entries.size(); ++i) {
        if (i / stride % n != n - 1)
            sum += std::abs(double(file.entries[i + stride].*channel) - double(file.entries[i].*channel));
    }
    return sum;
}

} // namespace

bool looksBlueFirst(const lut::LutFile& file)
{
    constexpr double kClearly = 1.5;
    const std::size_t slowest = std::size_t(file.size) * std::size_t(file.size);
    const auto clearlyMore = [&](float lut::LutEntry::*channel, std::size_t along, std::size_t than) {
        return changeAlong(file, along, channel) > kClearly * changeAlong(file, than, channel);
    };
    return clearlyMore(&lut::LutEntry::b, 1, slowest) && clearlyMore(&lut::LutEntry::r, slowest, 1);
}

} // namespace tool
