// Table look-ups over rows.
#include "pixels/ByteTables.h"

#include "pixels/rows.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace pixels {

namespace {

void mapRowPlain(const Bgra* from, Bgra* to, int count, const ByteTables& tables)
{
    for (int x = 0; x < count; ++x)
        to[x] = {tables.b[from[x].b], tables.g[from[x].g], tables.r[from[x].r], from[x].a};
}

#if defined(__x86_64__)

#define EE_VBMI [[gnu::target("avx512f,avx512bw,avx512vbmi")]]

bool hasVbmi()
{
    static const bool has = __builtin_cpu_supports("avx512vbmi");
    return has && vectorLevel() == VectorLevel::avx512;
}

// A 256-byte table in four registers.
struct Quarters {
    __m512i part[4];
};

EE_VBMI inline Quarters load(const ByteTable& table)
{
    Quarters quarters;
    for (int i = 0; i < 4; ++i)
        quarters.part[i] = _mm512_loadu_si512(table.data() + 64 * i);
    return quarters;
}

EE_VBMI inline __m512i lookUp(const Quarters& table, __m512i index)
{
    const __m512i low = _mm512_permutex2var_epi8(table.part[0], index, table.part[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.part[2], index, table.part[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
}

// Looks every byte up in all three tables and keeps the result of the byte's own channel.
EE_VBMI void mapRunsVbmi(
    ConstView src, View dst, const ByteTables& tables, int first, int last, int top, int end)
{
    constexpr __mmask64 kBlue = 0x1111111111111111;
    constexpr int kPixels = 16;
    const Quarters b = load(tables.b);
    const Quarters g = load(tables.g);
    const Quarters r = load(tables.r);
    for (int y = top; y < end; ++y) {
        const Bgra* const from = src.row(y).data();
        Bgra* const to = dst.row(y).data();
        for (int x = first; x < last; x += kPixels) {
            const int left = last - x;
            const __mmask16 present = left >= kPixels ? __mmask16(0xFFFF) : __mmask16((1u << left) - 1);
            const __m512i pixels = _mm512_maskz_loadu_epi32(present, from + x);
            __m512i result = _mm512_mask_mov_epi8(pixels, kBlue, lookUp(b, pixels));
            result = _mm512_mask_mov_epi8(result, kBlue << 1, lookUp(g, pixels));
            result = _mm512_mask_mov_epi8(result, kBlue << 2, lookUp(r, pixels));
            _mm512_mask_storeu_epi32(to + x, present, result);
        }
    }
}

#endif

} // namespace

void mapTables(ConstView src, View dst, const ByteTables& tables, int first, int last)
{
    rows::anyOrderRuns(dst.extent(), [&](int top, int end) {
#if defined(__x86_64__)
        if (hasVbmi())
            return mapRunsVbmi(src, dst, tables, first, last, top, end);
#endif
        for (int y = top; y < end; ++y)
            mapRowPlain(src.row(y).data() + first, dst.row(y).data() + first, last - first, tables);
    });
}

} // namespace pixels
