// Dust and scratches: drawn once per frame, then laid over each row when its turn comes.
#pragma once

#include "core/Random.h"
#include "pixels/View.h"

#include <array>

namespace KEXSDK::am {

class FilmDamage {
public:
    /// Draws up to 29 specks and up to 4 scratches for a picture of this size. Pictures without room for a
    /// speck's mask and a position beside it stay clean, and draw nothing.
    FilmDamage(pixels::Extent size, pixels::RandomGenerator& random);

    /// Darkens the specks of row y and lights up its scratches.
    void applyToRow(pixels::Bgra* row, int y) const;

private:
    static constexpr int kMaxSpecks = 29;
    static constexpr int kMaxScratches = 4;

    struct Speck {
        int mask;
        int row;
        int column;
    };
    struct Scratch {
        int width;
        int column;
    };

    std::array<Speck, kMaxSpecks> specks_;
    std::array<Scratch, kMaxScratches> scratches_;
    int speckCount_ = 0;
    int scratchCount_ = 0;
};

} // namespace KEXSDK::am
