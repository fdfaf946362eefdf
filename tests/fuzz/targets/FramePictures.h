// The pictures of one frame, as random bytes describe them.
#pragma once

#include "abi/paddedPicture.h"
#include "fuzz/targets/Bytes.h"

#include <limits>
#include <vector>

namespace fuzz {

/// Valid pictures with their memory, and perhaps one that cannot be.
class FramePictures {
public:
    FramePictures(Bytes& in, int width, int height, std::size_t inputs)
    {
        for (std::size_t i = 0; i <= inputs; ++i) {
            made_.push_back(makePadded(width, height, std::uint32_t(in.pick(6)), std::uint32_t(in.pick(4)),
                in.pick(2) ? in.pick(20) : 0, int(in.pick(2))));
            pictures_.push_back(made_.back().picture);
            fill(in, made_.back());
        }
        if (height == 1 && in.pick(2))
            pictures_.back().stride = in.pick(2) ? std::numeric_limits<std::ptrdiff_t>::min() : PTRDIFF_MAX;
        if (in.oneIn(6))
            spoil(in, pictures_[in.pick(pictures_.size())]);
    }

    std::size_t inputs() const { return made_.size() - 1; }
    const EffectHostPicture* input() const { return pictures_.data(); }
    const EffectHostPicture& output() const { return pictures_.back(); }

    /// Frees all memory. @return whether padding or an input was written to
    bool end()
    {
        bool written = false;
        for (std::size_t i = 0; i < inputs(); ++i)
            written |= contentOf(made_[i]) != before_[i];
        for (PaddedPicture& one : made_)
            written |= endPadded(&one) != 0;
        return written;
    }

private:
    static std::vector<unsigned char> contentOf(const PaddedPicture& padded)
    {
        std::vector<unsigned char> all;
        for (int y = 0; y < padded.picture.height; ++y)
            all.insert(all.end(), rowOf(&padded, y), rowOf(&padded, y) + padded.rowBytes);
        return all;
    }

    void fill(Bytes& in, const PaddedPicture& padded)
    {
        unsigned state = in.word();
        for (int y = 0; y < padded.picture.height; ++y) {
            for (std::size_t i = 0; i < padded.rowBytes; ++i)
                rowOf(&padded, y)[i] =
                    static_cast<unsigned char>((state = state * 1664525u + 1013904223u) >> 24);
        }
        before_.push_back(contentOf(padded));
    }

    static void spoil(Bytes& in, EffectHostPicture& picture)
    {
        constexpr std::int32_t kWild[]{0, -1, 1, 4096, 4097, INT32_MAX, INT32_MIN};
        switch (in.pick(6)) {
        case 0:
            picture.pixels = nullptr;
            break;
        case 1:
            picture.width = picture.width == 1 ? 2 : in.of(std::span<const std::int32_t>(kWild)) & ~1;
            break;
        case 2:
            picture.height += 1 + int(in.pick(100));
            break;
        case 3:
            picture.stride = std::ptrdiff_t(in.pick(std::size_t(picture.width) * 3)) * (in.pick(2) ? 1 : -1);
            break;
        case 4:
            picture.format = 6 + in.word();
            break;
        default:
            picture.flags |= 4u << in.pick(30);
        }
    }

    std::vector<PaddedPicture> made_;
    std::vector<EffectHostPicture> pictures_;
    std::vector<std::vector<unsigned char>> before_;
};

} // namespace fuzz
