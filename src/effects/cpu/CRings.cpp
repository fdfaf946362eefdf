// Two sets of coloured rings that spread from a point as the progress runs from 0 to 1.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <cmath>
#include <cstdlib>

namespace KEXSDK {
namespace {

constexpr auto kMouse = ArrayParam<float>{"iMouse", {320, 240}, 2, {0, pixels::kLargestSide},
    "centre of the rings: column, row from the bottom", "pixels"}
                            .titled("Centre");
constexpr auto kColor =
    ArrayParam<float>{"Color", {1, 0.9, 0.3}, 3, {0, 1}, "colour of the rings: red, green, blue"}.titled(
        "Colour");
constexpr auto kRadius =
    Param<float>{"Radius", 15.0f, {0, 50}, "how far the rings spread; 30 for about the width"}.undeclared();
constexpr auto kOpacity = Param<float>{"Opacity", 0.6f, {0, 1}, "strength of the rings"}.undeclared();
constexpr auto kRingsEnable =
    Param<float>{"Enable", 1.0f, {0, 1}, "pixels are touched above 0.5"}.titled("Drawing").undeclared();
constexpr auto kClicked =
    Param<float>{"clicked", 1.0f, {0, 1}, "rings are drawn above 0.5"}.titled("Show Rings").undeclared();
constexpr auto kProcess = Param<float>{"process", 0.5f, {0, 1}, "progress; nothing shows at either end"}
                              .titled("Progress")
                              .undeclared();

/// The cosine for 0 <= x < 100, right to about one unit of the last place below 1. Written out here so
/// that the rings are the same with every runtime library, and so that the loop vectorises.
inline float cosine(float x)
{
    // Pi in two parts: the first has few bits, so that its multiples are exact.
    constexpr float kPiHigh = 3.140625f;
    constexpr float kPiLow = 9.67653589793e-4f;
    const int halfTurns = int(x * 0.318309886f + 0.5f);
    const float r = (x - float(halfTurns) * kPiHigh) - float(halfTurns) * kPiLow;
    // Coefficients with the least largest error, 2.4e-10, on a quarter turn to both sides.
    const float s = r * r;
    const float series =
        (((-2.60771051e-7f * s + 2.47618862e-5f) * s - 1.38884035e-3f) * s + 4.16666407e-2f) * s
        - 0.499999995f;
    const float value = series * s + 1;
    return halfTurns % 2 ? -value : value;
}

/// Everything about the rings that is the same for all pixels; single precision throughout.
struct Rings {
    float pixelsToDistance; ///< divides a distance in pixels, together with `spread`
    float spread;
    float innerWave, outerWave; ///< wave lengths of the two sets
    float innerGain, outerGain;
    float inner, outer; ///< distances where the fade begins and where it is complete
    float strength;
    float red, green, blue;

    float alphaAt(float dx, float dy) const
    {
        const float distance = std::sqrt(dx * dx + dy * dy) / pixelsToDistance * spread;
        // Beyond the rings only the bound matters: the cosine takes no large angles.
        const float d = pixels::clamped(distance, 0.0f, outer);
        const float s = pixels::clamped((d - inner) / (outer - inner), 0.0f, 1.0f);
        const float g1 = pixels::clamped((cosine(d / innerWave) - 0.1f) * innerGain, 0.0f, 1.0f);
        const float g2 = pixels::clamped((cosine(d / outerWave) - 0.1f) * outerGain, 0.0f, 1.0f);
        const float alpha = pixels::clamped(strength * (g1 + g2), 0.0f, 1.0f) * (1 - (3 - 2 * s) * (s * s));
        return distance < outer ? alpha : 0;
    }
    static u8 tinted(u8 byte, float alpha, float colour)
    {
        return u8(int(pixels::clamped(float(byte) * (1 - alpha) + alpha * colour * 255, 0.0f, 255.0f)));
    }
    pixels::Bgra over(pixels::Bgra p, float alpha) const
    {
        const pixels::Bgra ring{
            tinted(p.b, alpha, blue), tinted(p.g, alpha, green), tinted(p.r, alpha, red), p.a};
        return alpha > 0 ? ring : p;
    }
};

// Distances from a centre coordinate that a range of coordinates [first, end) covers. Both sides of the
// centre share them.
struct Distances {
    i64 least;
    int count;

    static Distances from(int centre, int first, int end)
    {
        const i64 low = i64(first) - centre;
        const i64 high = i64(end) - 1 - centre;
        const i64 least = low > 0 ? low : high < 0 ? -high : 0;
        return {least, int(std::max(std::abs(low), std::abs(high)) - least) + 1};
    }
};

// Alphas of the first `count` distances in both orders: `leftward` has them descending, as columns to the
// left of the centre meet them.
void computeAlphas(Rings rings, float dx, float dy, int count, float* rightward, float* leftward)
{
#pragma GCC ivdep
    for (int i = 0; i < count; ++i)
        rightward[i] = rings.alphaAt(dx + float(i), dy);
    std::reverse_copy(rightward, rightward + count, leftward);
}

void tint(Rings rings, pixels::Bgra* line, int count, const float* alphas)
{
#pragma GCC ivdep
    for (int i = 0; i < count; ++i)
        store(line + i, rings.over(pixels::load(line + i), alphas[i]));
}

class CRings final : public CPureCEffect {
public:
    CRings(u32 w, u32 h) : CPureCEffect(w, h)
    {
        declare(kMouse, kColor, kRadius, kOpacity, kRingsEnable, kClicked, kProcess);
    }

    void processFrame(const u8* src, u8* dst) override
    {
        pixels::rows::copy(input(src), output(dst));
        const auto centre = get(kMouse);
        const auto colour = get(kColor);
        const float progress = get(kProcess);
        if (centre.size() < 2 || colour.size() < 3 || !(get(kRingsEnable) > 0.5f) || !(get(kClicked) > 0.5f)
            || !(progress > 0 && progress < 1))
            return;
        draw(output(dst), ringsAt(progress, colour),
            {pixels::truncated(centre[0]), pixels::truncated(centre[1])});
    }

private:
    Rings ringsAt(float p, std::span<const float> colour)
    {
        const float outerWave = p * 0.3f + 0.1f;
        return {.pixelsToDistance = float(std::max(width(), height())),
            .spread = 100 / (get(kRadius) / 1.2f + 0.01f),
            .innerWave = p * 0.1f + 0.1f,
            .outerWave = outerWave,
            .innerGain = std::sin(((1 - p) * 1.34f + 1) * (1 - p) * 1.34f),
            .outerGain = std::sin((p * 1.34f + 1) * p * 1.34f),
            .inner = outerWave * 6.2831855f * 0.8f,
            .outer = outerWave * 6.2831855f * 1.2f,
            .strength = get(kOpacity) + 0.2f,
            .red = colour[0],
            .green = colour[1],
            .blue = colour[2]};
    }

    void draw(pixels::View picture, const Rings& rings, pixels::Point centre)
    {
        const float scale = get(kRadius) / 1.2f + 0.01f;
        const i64 reach = i64(pixels::truncated(rings.outer * scale / 100 * float(width()))) + 1;
        if (!(scale > 0) || reach < 1)
            return;
        const auto first = [reach](int c) { return int(std::max<i64>(c - reach, 0)); };
        const auto end = [reach](int c, int limit) { return int(std::min<i64>(c + reach, limit)); };
        const int left = first(centre.x);
        const int right = end(centre.x, picture.width());
        const int bottom = first(centre.y);
        const int lines = end(centre.y, picture.height()) - bottom;
        if (left >= right || lines <= 0)
            return;
        const Distances dx = Distances::from(centre.x, left, right);
        const Distances dy = Distances::from(centre.y, bottom, bottom + lines);
        const double radius = double(rings.outer) * rings.pixelsToDistance / rings.spread;
        pixels::rows::anyOrder({2 * (right - left), dy.count}, [&](int line) {
            const i64 y = dy.least + line;
            // The rings' own row is shorter than the square's; a pixel more covers all rounding.
            const double chord = std::sqrt(std::max(0.0, (radius + 1) * (radius + 1) - double(y * y))) + 2;
            const int count =
                pixels::truncated(pixels::clamped(chord - double(dx.least), 0.0, double(dx.count)));
            const i64 beyond = dx.least + count;
            const int rightFirst = std::max(left, centre.x);
            const int rightEnd = int(std::min<i64>(right, centre.x + beyond));
            const int leftFirst = int(std::max<i64>(left, centre.x - beyond + 1));
            const int leftEnd = std::min(right, centre.x);
            pixels::widest([&] {
                const pixels::Scratch<float> rightward(count);
                const pixels::Scratch<float> leftward(count);
                computeAlphas(rings, float(dx.least), float(y), count, rightward.data(), leftward.data());
                const auto tintRow = [&](i64 row) {
                    if (row < bottom || row >= bottom + lines)
                        return;
                    pixels::Bgra* const to = picture.row(int(row)).data();
                    if (rightFirst < rightEnd)
                        tint(rings, to + rightFirst, rightEnd - rightFirst,
                            rightward.data() + (rightFirst - centre.x - dx.least));
                    if (leftFirst < leftEnd)
                        tint(rings, to + leftFirst, leftEnd - leftFirst,
                            leftward.data() + (leftFirst - (centre.x - beyond + 1)));
                };
                tintRow(centre.y + y);
                if (y > 0)
                    tintRow(centre.y - y);
            });
        });
    }
};

const Registration<CRings> registered{{
    .guid = "737F8965-7D66-4670-83E8-C470A7B2AED1",
    .name = "rings",
    .title = "Rings",
    .family = "temporal",
    .summary = "Coloured rings spread from a point; the host sets place, colour and progress.",
}};

} // namespace
} // namespace KEXSDK
