// Chooses specks and scratches at random, and applies them to rows.
#include "effects/am/looks/filmDamage.h"

#include "effects/am/data/speckMasks.h"
#include "effects/am/library/amTables.h"

namespace KEXSDK::am {

FilmDamage::FilmDamage(pixels::Extent size, pixels::RandomGenerator& random)
{
    const int rangeX = size.width - kSpeckSize;
    const int rangeY = size.height - kSpeckSize;
    if (rangeX <= 0 || rangeY <= 0)
        return;
    speckCount_ = random.next() % (kMaxSpecks + 1);
    scratchCount_ = random.next() % (kMaxScratches + 1);
    for (int i = 0; i < speckCount_; ++i) {
        Speck& speck = specks_[std::size_t(i)];
        speck.mask = random.next() % int(kSpeckMasks.size());
        speck.row = random.next() % rangeY;
        speck.column = random.next() % rangeX;
    }
    for (int i = 0; i < scratchCount_; ++i) {
        Scratch& scratch = scratches_[std::size_t(i)];
        scratch.width = random.next() % 3 + 1;
        scratch.column = random.next() % rangeX;
    }
}

void FilmDamage::applyToRow(pixels::Bgra* row, int y) const
{
    for (int i = 0; i < speckCount_; ++i) {
        const Speck& speck = specks_[std::size_t(i)];
        const int line = y - speck.row;
        if (line < 0 || line >= kSpeckSize)
            continue;
        pixels::Bgra* p = row + speck.column;
        for (const u8 mask : kSpeckMasks[std::size_t(speck.mask)][std::size_t(line)]) {
            *p = {u8(p->b & mask), u8(p->g & mask), u8(p->r & mask), p->a};
            ++p;
        }
    }
    constexpr std::array<u8, 3> kScratchMasks{0xF3, 0xE3, 0xE1};
    constexpr int kGlint = 30;
    for (int i = 0; i < scratchCount_; ++i) {
        const Scratch& scratch = scratches_[std::size_t(i)];
        for (int column = 0; column < scratch.width; ++column) {
            pixels::Bgra& p = row[scratch.column + column];
            const u8 mask = kScratchMasks[std::size_t(column)];
            const auto lit = [&](u8 c) { return amClampTable[std::size_t((c & mask) + kGlint + 256)]; };
            p = {lit(p.b), lit(p.g), lit(p.r), p.a};
        }
    }
}

} // namespace KEXSDK::am
