// Reading of attribute values, which hosts may have filled with anything.
#pragma once

#include "core/Types.h"

#include <OgreColourValue.h>
#include <OgreVector.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <span>

namespace particles {

using Words = std::span<const u32>;

/// The largest number that is taken from a host: far more than any scene measures, and small enough that sums
/// and products stay finite.
constexpr float kLargestNumber = 1e6f;

/// The real number of a word within +-kLargestNumber; nothing when it is no number.
inline std::optional<float> realOf(u32 word)
{
    const float number = std::bit_cast<float>(word);
    return std::isnan(number) ? std::nullopt
                              : std::optional(std::clamp(number, -kLargestNumber, kLargestNumber));
}

inline std::optional<Ogre::Vector3> vectorOf(Words words)
{
    Ogre::Vector3 vector;
    if (words.size() != 3)
        return std::nullopt;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto number = realOf(words[i]);
        if (!number)
            return std::nullopt;
        vector[i] = *number;
    }
    return vector;
}

inline std::optional<Ogre::ColourValue> colourOf(Words words)
{
    Ogre::ColourValue colour;
    if (words.size() != 4)
        return std::nullopt;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto number = realOf(words[i]);
        if (!number)
            return std::nullopt;
        colour[i] = *number;
    }
    return colour;
}

} // namespace particles
