// Evening out the greys of wipe pictures.
#include "wipes.h"

#include <cstdint>

namespace artwork {

void paintOrder(Picture& picture, const Plane& when)
{
    struct Ranked {
        float value;
        std::uint32_t cell;
    };
    const int width = picture.size().width;
    std::vector<Ranked> all;
    when.each([&](const Place& p, float value) {
        all.push_back({value, std::uint32_t(p.row) * std::uint32_t(width) + std::uint32_t(p.column)});
    });
    std::sort(all.begin(), all.end(), [](const Ranked& a, const Ranked& b) {
        return a.value < b.value || (a.value == b.value && a.cell < b.cell);
    });
    const std::size_t count = all.size();
    for (std::size_t first = 0, next = 0; first < count; first = next) {
        while (next < count && all[next].value == all[first].value)
            ++next;
        // Half the sum of the first and the last rank, in 256ths of all ranks.
        const int level = int((first + next - 1) * 128 / count);
        for (std::size_t i = first; i < next; ++i) {
            const int cell = int(all[i].cell);
            picture.at(cell % width, cell / width) = {grey(float(level) / 255), 1};
        }
    }
}

} // namespace artwork
