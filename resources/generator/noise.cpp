// Hashing of lattice points, and noise, clouds, ridges and cells built on it.
#include "noise.h"

#include <cmath>

namespace artwork {

namespace {

std::uint32_t mixed(int x, int y, std::uint32_t seed)
{
    std::uint32_t h = std::uint32_t(x) * 0x9E3779B1u ^ (std::uint32_t(y) * 0x85EBCA77u + seed * 0xC2B2AE3Du);
    h ^= h >> 16;
    h *= 0x7FEB352Du;
    h ^= h >> 15;
    h *= 0x846CA68Bu;
    return h ^ h >> 16;
}

// The dot product of a lattice point's gradient, one of sixteen directions, with the way to it.
float slope(int x, int y, std::uint32_t seed, float dx, float dy)
{
    static constexpr float kDirections[16][2] = {{1, 0}, {0.9239f, 0.3827f}, {0.7071f, 0.7071f},
        {0.3827f, 0.9239f}, {0, 1}, {-0.3827f, 0.9239f}, {-0.7071f, 0.7071f}, {-0.9239f, 0.3827f}, {-1, 0},
        {-0.9239f, -0.3827f}, {-0.7071f, -0.7071f}, {-0.3827f, -0.9239f}, {0, -1}, {0.3827f, -0.9239f},
        {0.7071f, -0.7071f}, {0.9239f, -0.3827f}};
    const float* const direction = kDirections[mixed(x, y, seed) >> 28];
    return direction[0] * dx + direction[1] * dy;
}

float eased(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }

} // namespace

float hashed(int x, int y, std::uint32_t seed)
{
    return float(mixed(x, y, seed) >> 8) * (1.0f / 16777216.0f);
}

float noise(float x, float y, std::uint32_t seed)
{
    const float left = std::floor(x);
    const float top = std::floor(y);
    const int column = int(left);
    const int row = int(top);
    const float dx = x - left;
    const float dy = y - top;
    const float u = eased(dx);
    const float v = eased(dy);
    const float above = slope(column, row, seed, dx, dy)
        + u * (slope(column + 1, row, seed, dx - 1, dy) - slope(column, row, seed, dx, dy));
    const float lower = slope(column, row + 1, seed, dx, dy - 1);
    const float below = lower + u * (slope(column + 1, row + 1, seed, dx - 1, dy - 1) - lower);
    return above + v * (below - above);
}

float clouds(float x, float y, int octaves, std::uint32_t seed)
{
    float sum = 0;
    float strength = 0.85f;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * noise(x, y, seed + std::uint32_t(i) * 101);
        x = x * 2 + 17.3f;
        y = y * 2 + 5.9f;
        strength /= 2;
    }
    return sum;
}

float ridges(float x, float y, int octaves, std::uint32_t seed)
{
    float sum = 0;
    float strength = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        const float ridge = 1 - std::abs(noise(x, y, seed + std::uint32_t(i) * 101)) * 2;
        sum += strength * ridge * ridge * ridge;
        x = x * 2 + 17.3f;
        y = y * 2 + 5.9f;
        strength /= 2;
    }
    return sum;
}

Cell cells(float x, float y, std::uint32_t seed)
{
    const int column = int(std::floor(x));
    const int row = int(std::floor(y));
    Cell found{9, 9, 0};
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
            const int cx = column + dx;
            const int cy = row + dy;
            const float px = float(cx) + hashed(cx, cy, seed) - x;
            const float py = float(cy) + hashed(cx, cy, seed + 1) - y;
            const float distance = std::sqrt(px * px + py * py);
            if (distance < found.nearest)
                found = {distance, found.nearest, hashed(cx, cy, seed + 2)};
            else if (distance < found.second)
                found.second = distance;
        }
    return found;
}

float Random::normal()
{
    float sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += uniform();
    const float value = sum - 6;
    return value < -3 ? -3 : value > 3 ? 3 : value;
}

} // namespace artwork
