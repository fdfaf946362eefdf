// The numbers are those that break conversions, and those that people would write.
#include "fuzz/targets/Bytes.h"

#include <algorithm>
#include <limits>

namespace fuzz {

namespace {

constexpr double kNumbers[]{0, -0.0, 1, -1, 0.5, 2, 25, 100, 255, 256, 1e-3, 1e-300, -1e-300, 1e9, 1e15,
    1e300, -1e300, 2147483647, 2147483648.0, -2147483648.0, -2147483649.0, 4294967295.0, 4294967296.0,
    9007199254740993.0, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
    std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::denorm_min(),
    std::numeric_limits<double>::max(), 3.5e38};

} // namespace

std::uint32_t Bytes::word()
{
    std::uint32_t value = byte();
    value = value << 8 | byte();
    return value << 8 | byte();
}

double Bytes::number()
{
    switch (pick(4)) {
    case 0:
        return of(std::span<const double>(kNumbers));
    case 1:
        return double(pick(101));
    case 2:
        return double(word()) / (1 << 24);
    default:
        return double(word()) / 1000 - 8000;
    }
}

std::string Bytes::text(std::size_t most)
{
    std::string made;
    for (std::size_t length = pick(most + 1); length > 0; --length)
        made += char(std::max<unsigned char>(byte(), 1));
    return made;
}

} // namespace fuzz
