// The blurs of the resource pack, which are drawn in several passes at several sizes: what comes out is what
// one pass over every pixel would give.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "engine/effectList.h"
#include "hosting/Host.h"
#include "support/TemporaryDirectory.h"
#include "support/paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>

namespace {

using Bytes = std::vector<unsigned char>;
using Values = std::vector<float>;

class ShaderBlur : public testing::Test {
protected:
    void SetUp() override
    {
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        listShaderEffectsOf(test::kResourceDirectory);
        engine.emplace(test::kResourceDirectory, logs.path().c_str());
        ASSERT_TRUE(KEXSDK::gpuAvailable());
    }
    void TearDown() override
    {
        engine.reset();
        listShaderEffectsOf("");
    }

    static host::Filter filter(const char* effect, const host::Image& input)
    {
        host::Filter filter(findEffect(effect)->guid, int(input.width()), int(input.height()));
        filter.setInput(input);
        return filter;
    }
    static Bytes run(host::Filter& filter)
    {
        const auto bytes = host::bytesOf(filter.run());
        return {bytes.begin(), bytes.end()};
    }
    static void set(host::Filter& filter, const char* param, const Values& values)
    {
        if (values.size() == 1)
            filter.set(param, values[0]);
        else
            filter.set(param, values);
    }

    test::TemporaryDirectory logs;
    std::optional<host::Engine> engine;
};

/// Squares of random greys with hard edges in a plain frame; fine ones have a pattern of single pixels.
host::Image squares(unsigned width, unsigned height, bool fine)
{
    std::mt19937 random(7);
    std::vector<int> greys(64 * 64);
    for (int& grey : greys)
        grey = int(random() % 256);
    host::Image image(width, height);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x) {
            const bool framed = x < 22 || x >= width - 22 || y < 26 || y >= height - 26;
            const int grey = framed ? 128 : greys[y / 13 * 64 + x / 11];
            unsigned char* const pixel = &image.bytes()[(y * width + x) * 4];
            std::fill_n(pixel, 3, (unsigned char)(fine && !framed && (x + y) % 3 == 0 ? 255 - grey : grey));
            pixel[3] = 255;
        }
    return image;
}

/// One channel of an image, blurred with symmetric weights; positions past the border take the border's
/// value.
class Reference {
public:
    explicit Reference(const host::Image& image) : width_(int(image.width())), height_(int(image.height()))
    {
        for (std::size_t i = 0; i < image.bytes().size(); i += 4)
            values_.push_back(image.bytes()[i]);
    }

    void blur(const std::vector<double>& weights, int stepX, int stepY)
    {
        const int reach = int(weights.size()) - 1;
        std::vector<double> blurred(values_.size());
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) {
                double sum = 0;
                double all = 0;
                for (int i = -reach; i <= reach; ++i) {
                    const double weight = weights[std::size_t(std::abs(i))];
                    const int atX = std::clamp(x + i * stepX, 0, width_ - 1);
                    const int atY = std::clamp(y + i * stepY, 0, height_ - 1);
                    sum += weight * values_[std::size_t(atY * width_ + atX)];
                    all += weight;
                }
                blurred[std::size_t(y * width_ + x)] = sum / all;
            }
        values_ = std::move(blurred);
    }

    /// The largest and the mean difference from what was drawn.
    std::pair<double, double> differenceFrom(const Bytes& drawn) const
    {
        double worst = 0;
        double sum = 0;
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const double off = std::abs(drawn[i * 4] - values_[i]);
            worst = std::max(worst, off);
            sum += off;
        }
        return {worst, sum / double(values_.size())};
    }

private:
    int width_, height_;
    std::vector<double> values_;
};

TEST_F(ShaderBlur, TheSoftBlurIsAGaussianOnEveryRung)
{
    const host::Image image = squares(150, 400, true);
    for (const float radius : {1.2f, 2.0f, 2.8f, 3.3f, 4.0f, 6.0f, 10.0f, 14.5f, 17.0f, 20.0f}) {
        host::Filter blur = filter("soft-blur", image);
        blur.set("Radius", radius);
        const double deviation = 0.39 * radius / 100 * 400;
        std::vector<double> weights;
        for (int i = 0; i <= int(4 * deviation); ++i)
            weights.push_back(std::exp(-0.5 * i * i / (deviation * deviation)));
        Reference expected(image);
        expected.blur(weights, 1, 0);
        expected.blur(weights, 0, 1);
        const auto [worst, mean] = expected.differenceFrom(run(blur));
        EXPECT_LT(worst, radius < 2 ? 8 : 5) << "radius " << radius;
        EXPECT_LT(mean, 0.7) << "radius " << radius;
    }
}

TEST_F(ShaderBlur, TheDirectionalBlurIsATriangleOfAnyReach)
{
    struct Direction {
        int x, y; // one step
        unsigned width, height;
        double worst, mean;
    };
    // Oblique lines pass between the rows of blocks, of which few are kept beyond the border.
    constexpr Direction kDirections[] = {
        {1, 0, 400, 80, 8, 0.6}, {0, 1, 80, 400, 8, 0.6}, {1, 1, 400, 200, 18, 1}, {1, -1, 400, 400, 18, 1}};
    for (const Direction& direction : kDirections)
        for (const int reach : {1, 3, 7, 10, 11, 16, 33, 50, 64, 77, 96, 130}) {
            const host::Image image = squares(direction.width, direction.height, true);
            host::Filter blur = filter("directional-blur", image);
            blur.set("delta",
                Values{float(reach * direction.x) / float(direction.width),
                    float(reach * direction.y) / float(direction.height)});
            std::vector<double> weights;
            const double halfWidth = std::sqrt(reach * reach + 1.0);
            for (int i = 0; i < halfWidth; ++i)
                weights.push_back(1 - i / halfWidth);
            Reference expected(image);
            expected.blur(weights, direction.x, direction.y);
            const auto [worst, mean] = expected.differenceFrom(run(blur));
            // Of this picture's pattern of three pixels, the shortest blocks, of four, let a little through.
            const bool isShort = reach == 11;
            EXPECT_LT(worst, isShort ? 16 : direction.worst)
                << direction.x << ", " << direction.y << " by " << reach;
            EXPECT_LT(mean, isShort ? 2 : direction.mean)
                << direction.x << ", " << direction.y << " by " << reach;
        }
}

TEST_F(ShaderBlur, ValuesThatMoveLetNothingJump)
{
    struct Move {
        const char* effect;
        const char* param;
        float from, step;
        int steps, most; // the most that a channel changes in one step
    };
    // Over the radii where one rung takes over from another, and the reach where samples move apart.
    constexpr Move kMoves[] = {{"soft-blur", "Radius", 2.2f, 0.05f, 48, 8},
        {"soft-blur", "Radius", 12, 0.25f, 32, 4}, {"bloom", "Radius", 2.5f, 0.1f, 40, 8},
        {"motion-blur", "Length", 6, 0.05f, 40, 16}, {"directional-blur", "delta", 0.2f, 0.002f, 60, 16}};
    const host::Image image = squares(150, 400, false);
    for (const Move& move : kMoves) {
        host::Filter blur = filter(move.effect, image);
        Bytes before;
        int worst = 0;
        float where = 0;
        for (int i = 0; i < move.steps; ++i) {
            const float value = move.from + float(i) * move.step;
            if (move.effect == std::string("directional-blur"))
                blur.set(move.param, Values{value, 0.2f * value});
            else
                blur.set(move.param, value);
            const Bytes now = run(blur);
            for (std::size_t k = 0; k < before.size(); ++k)
                if (std::abs(now[k] - before[k]) > worst) {
                    worst = std::abs(now[k] - before[k]);
                    where = value;
                }
            before = now;
        }
        EXPECT_GT(worst, 0) << move.effect;
        EXPECT_LE(worst, move.most) << move.effect << " at " << where;
    }
}

TEST_F(ShaderBlur, ClearPixelsLendNoColourAndPlainOnesStayPlain)
{
    struct Case {
        const char* effect;
        const char* param;
        Values value;
    };
    const Case cases[] = {{"soft-blur", "Radius", {1.5f}}, {"soft-blur", "Radius", {3}},
        {"soft-blur", "Radius", {20}}, {"motion-blur", "Length", {2}}, {"motion-blur", "Length", {40}},
        {"zoom-blur-gpu", "Strength", {5}}, {"zoom-blur-gpu", "Strength", {80}},
        {"directional-blur", "delta", {0.01f, 0.02f}}, {"directional-blur", "delta", {1, 0.3f}},
        {"miniature", "Blur", {6}}};
    constexpr unsigned char kBlue[] = {200, 80, 40, 255};
    constexpr unsigned char kClear[] = {0, 255, 0, 0};
    for (const auto& [width, height] : {std::pair(1u, 1u), {1u, 50u}, {50u, 1u}, {37u, 23u}, {160u, 120u}})
        for (const unsigned blueColumns : {width, 2 * width / 3 + 1}) {
            host::Image image(width, height);
            for (unsigned i = 0; i < width * height; ++i)
                std::copy_n(i % width < blueColumns ? kBlue : kClear, 4, &image.bytes()[i * 4]);
            for (const Case& test : cases) {
                host::Filter blur = filter(test.effect, image);
                set(blur, test.param, test.value);
                blur.set("Saturation", 1.0f); // the miniature's
                const Bytes drawn = run(blur);
                if (width > 100 && blueColumns < width) {
                    EXPECT_FALSE(std::ranges::equal(drawn, image.bytes()))
                        << test.effect << " shows its input";
                }
                int worst = 0;
                for (std::size_t i = 0; i < drawn.size(); ++i)
                    if (blueColumns == width || (i % 4 != 3 && drawn[i / 4 * 4 + 3] > 64))
                        worst = std::max(worst, std::abs(drawn[i] - kBlue[i % 4]));
                EXPECT_LE(worst, blueColumns == width ? 1 : 4)
                    << test.effect << ' ' << test.value[0] << ", " << width << " x " << height;
            }
        }
}

} // namespace
