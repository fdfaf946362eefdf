// Wipe pictures: found, scaled to a node's size, and freed of the steps that 8 bits leave.
#include "effects/transitions/WipeOrder.h"

#include "core/resourceDirectory.h"
#include "pictures/PictureCodecs.h"
#include "pixels/Scratch.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <span>

namespace transitions {

namespace {

namespace fs = std::filesystem;
namespace rows = pixels::rows;
using pixels::Extent;

/// Places while they are scaled and smoothed, in 16ths of the order's unit.
using Plane = std::vector<i32>;
constexpr int kFraction = 16;

bool isFile(const std::string& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

std::string fileOf(const std::string& name)
{
    if (name.find('/') != std::string::npos || isFile(name))
        return name;
    const std::string inPack = core::resourceDirectory() + kWipeFolder + "/" + name;
    return isFile(inPack) ? inPack : inPack + ".png";
}

/// What the places along a scaled side are made of: a run of the source's places, with weights that are 1
/// together. Enlarging mixes two neighbours by their distance, shrinking takes all by what the place covers.
class ScaledSide {
public:
    struct Run {
        int first;
        std::span<const float> weights;
    };

    ScaledSide(int from, int to)
    {
        const double step = double(from) / to;
        for (int i = 0; i < to; ++i) {
            if (step < 1)
                addMix(i * step + (step - 1) / 2, from);
            else
                addCover(i * step, (i + 1) * step, from);
        }
        starts_.push_back({0, weights_.size()});
    }

    Run at(int i) const
    {
        const Start& start = starts_[std::size_t(i)];
        const std::size_t count = starts_[std::size_t(i) + 1].weight - start.weight;
        return {start.first, {weights_.data() + start.weight, count}};
    }

private:
    struct Start {
        int first;
        std::size_t weight;
    };

    void addMix(double position, int count)
    {
        position = std::clamp(position, 0.0, double(count - 1));
        const int first = int(position);
        starts_.push_back({first, weights_.size()});
        weights_.push_back(float(1 - (position - first)));
        if (first + 1 < count)
            weights_.push_back(float(position - first));
    }

    void addCover(double low, double high, int count)
    {
        const int first = std::min(int(low), count - 1);
        const int end = std::clamp(int(std::ceil(high)), first + 1, count);
        starts_.push_back({first, weights_.size()});
        for (int j = first; j < end; ++j)
            weights_.push_back(
                float(std::max(std::min(high, j + 1.0) - std::max(low, double(j)), 0.0) / (high - low)));
    }

    std::vector<Start> starts_;
    std::vector<float> weights_;
};

Plane scaled(const pictures::DecodedGrey& picture, Extent size)
{
    const Extent source{int(picture.width), int(picture.height)};
    const std::size_t width = std::size_t(size.width);
    const ScaledSide columns(source.width, size.width);
    std::vector<float> narrow(width * std::size_t(source.height));
    rows::anyOrder({size.width, source.height}, [&](int y) {
        const u16* const from = picture.values.data() + std::size_t(y) * std::size_t(source.width);
        float* const to = narrow.data() + std::size_t(y) * width;
        for (int x = 0; x < size.width; ++x) {
            const ScaledSide::Run run = columns.at(x);
            float sum = 0;
            for (std::size_t i = 0; i < run.weights.size(); ++i)
                sum += run.weights[i] * float(from[std::size_t(run.first) + i]);
            to[x] = sum;
        }
    });
    const ScaledSide lines(source.height, size.height);
    Plane plane(width * std::size_t(size.height));
    rows::anyOrder(size, [&](int y) {
        const ScaledSide::Run run = lines.at(y);
        const pixels::Scratch<float> sums(width);
        std::ranges::fill(sums, 0.0f);
        for (std::size_t i = 0; i < run.weights.size(); ++i) {
            const float* const from = narrow.data() + (std::size_t(run.first) + i) * width;
            const float weight = run.weights[i];
            for (std::size_t x = 0; x < width; ++x)
                sums[x] += weight * from[x];
        }
        i32* const to = plane.data() + std::size_t(y) * width;
        for (std::size_t x = 0; x < width; ++x)
            to[x] = pixels::roundHalfUp(double(sums[x]) * kFraction);
    });
    return plane;
}

/// The mean of the values around each of `count` values that lie `step` apart, up to `reach` on both sides,
/// and fewer near the ends: as many on one side as on the other, so that slopes stay what they are. Sums wrap
/// round; their differences do not.
void blurLine(i32* values, int count, std::size_t step, int reach, u32* sums)
{
    sums[0] = 0;
    for (int i = 0; i < count; ++i)
        sums[i + 1] = sums[i] + u32(values[std::size_t(i) * step]);
    for (int i = 0; i < count; ++i) {
        const int around = std::min({reach, i, count - 1 - i});
        const u32 sum = sums[i + around + 1] - sums[i - around];
        const u32 size = u32(2 * around + 1);
        values[std::size_t(i) * step] = i32((sum + size / 2) / size);
    }
}

void blur(Plane& plane, Extent size, int reach)
{
    const std::size_t width = std::size_t(size.width);
    rows::anyOrderRuns(size, [&](int first, int last) {
        const pixels::Scratch<u32> sums(width + 1);
        for (int y = first; y < last; ++y)
            blurLine(plane.data() + std::size_t(y) * width, size.width, 1, reach, sums.data());
    });
    rows::anyOrderRuns({size.height, size.width}, [&](int first, int last) {
        const pixels::Scratch<u32> sums(std::size_t(size.height) + 1);
        for (int x = first; x < last; ++x)
            blurLine(plane.data() + x, size.height, width, reach, sums.data());
    });
}

/// Slopes of 8-bit greys are stairs. Blurs flatten the stairs, the widest first, and keep every place within
/// the half step that rounding to 8 bits may have moved it; so edges stay edges.
void smoothSteps(Plane& plane, Extent size)
{
    constexpr i32 kHalfStep = kLastPlace * kFraction / 255 / 2;
    const Plane stairs = plane;
    for (int reach = std::max(size.width, size.height) / 64; reach > 0; reach /= 2) {
        blur(plane, size, reach);
        rows::anyOrder(size, [&](int y) {
            const std::size_t start = std::size_t(y) * std::size_t(size.width);
            for (std::size_t i = start; i < start + std::size_t(size.width); ++i)
                plane[i] = std::clamp(plane[i], stairs[i] - kHalfStep, stairs[i] + kHalfStep);
        });
    }
}

} // namespace

WipeOrder orderFromLeft(Extent size)
{
    WipeOrder order(std::size_t(size.width) * std::size_t(size.height));
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = u16((2 * (i % std::size_t(size.width)) + 1) * kLastPlace / (2 * std::size_t(size.width)));
    return order;
}

WipePicture readWipePicture(const std::string& name, Extent size)
{
    const std::string file = fileOf(name);
    if (!isFile(file)) // opening a pipe could take for ever
        return {{}, "there is no such file"};
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return {{}, "the file cannot be opened"};
    const pictures::DecodedGrey picture = pictures::decodeGrey(stream);
    if (picture.outcome == pictures::Decoded::Outcome::tooLarge)
        return {{}, "the picture is too large"};
    if (picture.outcome != pictures::Decoded::Outcome::picture)
        return {{}, "the file is no picture that can be read"};
    Plane plane = scaled(picture, size);
    if (!picture.fine)
        smoothSteps(plane, size);
    WipeOrder order(plane.size());
    std::ranges::transform(plane, order.begin(),
        [](i32 value) { return u16(std::clamp((value + kFraction / 2) / kFraction, 0, kLastPlace)); });
    return {std::move(order), {}};
}

} // namespace transitions
