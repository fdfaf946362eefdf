// Sampling of single pixels; it goes without a filter on purpose, for the look of a video wall.
#include "pixels/Thumbnail.h"

#include "pixels/rows.h"

namespace pixels {

bool Thumbnail::resize(Extent size)
{
    if (pixels_ && size == size_)
        return true;
    size_ = size;
    return pixels_.allocate(std::size_t(size.width) * size.height);
}

void Thumbnail::fill(ConstView src)
{
    const int stepX = src.width() / size_.width;
    const int stepY = src.height() / size_.height;
    const View to = view();
    rows::anyOrder(size_, [=](int y) {
        const auto row = to.row(y);
        if (y == 0) {
            std::ranges::fill(row, kOpaqueBlack);
            return;
        }
        const Bgra* const from = src.row(y * stepY).data();
        row[0] = kOpaqueBlack;
        for (int x = 1; x < to.width(); ++x)
            row[std::size_t(x)] = from[x * stepX];
    });
}

void Thumbnail::copyRow(int y, Bgra* to) const
{
    const auto row = view().row(y);
    std::memcpy(to, row.data(), row.size_bytes());
}

} // namespace pixels
