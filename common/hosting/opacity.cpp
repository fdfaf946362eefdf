// Passes over the alpha bytes of pictures.
#include "hosting/opacity.h"

#include "hosting/Host.h"

#include <algorithm>

namespace host {

namespace {

constexpr unsigned char kOpaque = 255;

bool isOpaque(std::span<const unsigned char> pixels)
{
    // In pieces: there is no branch at each pixel, and the first transparent piece ends the search.
    constexpr std::size_t kPiece = 16 * 1024;
    for (std::size_t first = 0; first < pixels.size(); first += kPiece) {
        unsigned char all = kOpaque;
        for (std::size_t i = first + 3; i < std::min(first + kPiece, pixels.size()); i += 4)
            all &= pixels[i];
        if (all != kOpaque)
            return false;
    }
    return true;
}

} // namespace

bool areOpaque(std::span<CEffectImage* const> pictures)
{
    return std::ranges::all_of(pictures, [](CEffectImage* picture) { return isOpaque(bytesOf(picture)); });
}

void makeOpaque(CEffectImage* picture)
{
    const auto pixels = bytesOf(picture);
    for (std::size_t i = 3; i < pixels.size(); i += 4)
        pixels[i] = kOpaque;
}

} // namespace host
