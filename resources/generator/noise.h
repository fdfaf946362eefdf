// Randomness that is the same in every build: hashed lattices and a counted generator.
#pragma once

#include <cstdint>

namespace artwork {

/// Uniform in [0, 1), a function of its arguments alone.
float hashed(int x, int y, std::uint32_t seed);

/// Uniform in [-1, 1), a value for every pixel.
inline float grain(int x, int y, std::uint32_t seed) { return hashed(x, y, seed) * 2 - 1; }

/// Smooth gradient noise with features of size 1, about -0.7..0.7.
float noise(float x, float y, std::uint32_t seed);

/// Octaves of noise, each twice as fine and half as strong; about -1..1.
float clouds(float x, float y, int octaves, std::uint32_t seed);

/// Bright thin ridges among dark cells, 0..1.
float ridges(float x, float y, int octaves, std::uint32_t seed);

/// The two nearest of points scattered one to a unit cell.
struct Cell {
    float nearest;
    float second;
    float id; ///< of the nearest, uniform in [0, 1)
};
Cell cells(float x, float y, std::uint32_t seed);

/// A sequence of random numbers. Draw one to a statement: the order of a call's arguments is the compiler's.
class Random {
public:
    explicit Random(std::uint32_t seed) : seed_(seed) { }

    float uniform() { return hashed(count_++, 0, seed_); }
    float uniform(float low, float high) { return low + (high - low) * uniform(); }
    /// Mean 0, deviation 1, at most 3.
    float normal();

private:
    std::uint32_t seed_;
    int count_ = 0;
};

} // namespace artwork
