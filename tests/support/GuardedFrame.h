// A frame in memory of the test's own, with guard bytes on both sides.
#pragma once

#include "hosting/Host.h"
#include "pixels/View.h"

#include <algorithm>
#include <random>
#include <vector>

namespace test {

class GuardedFrame {
public:
    GuardedFrame(int width, int height)
        : size_{width, height},
          memory_(kGuard + std::size_t(width) * height * 4 + kGuard, kMark)
    {
        std::fill(begin(), end(), u8(0));
        const ImageCreateInfo info{u32(width), u32(height), {}, pixels()};
        CreateImage(&info, &image_);
    }
    ~GuardedFrame() { ReleaseImage(image_); }
    GuardedFrame(const GuardedFrame&) = delete;
    GuardedFrame& operator=(const GuardedFrame&) = delete;

    /// Fills the frame with any bytes, alpha included; the same for the same seed.
    void fillWithNoise(unsigned seed)
    {
        std::mt19937 random(seed);
        std::generate(begin(), end(), [&] { return u8(random()); });
    }
    void fill(pixels::Bgra value)
    {
        for (int y = 0; y < size_.height; ++y)
            std::ranges::fill(view().row(y), value);
    }

    CEffectImage* image() const { return image_; }
    u8* pixels() { return memory_.data() + kGuard; }
    pixels::View view() { return {pixels(), size_}; }
    std::vector<u8> bytes() { return {begin(), end()}; }

    bool guardsIntact() const
    {
        const auto marked = [](u8 b) { return b == kMark; };
        return std::all_of(memory_.begin(), memory_.begin() + kGuard, marked)
            && std::all_of(memory_.end() - kGuard, memory_.end(), marked);
    }

private:
    static constexpr std::ptrdiff_t kGuard = 256;
    static constexpr u8 kMark = 0xA5;

    std::vector<u8>::iterator begin() { return memory_.begin() + kGuard; }
    std::vector<u8>::iterator end() { return memory_.end() - kGuard; }

    pixels::Extent size_;
    std::vector<u8> memory_;
    CEffectImage* image_ = nullptr;
};

} // namespace test
