// A soft spot of colour over the picture.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <cmath>

namespace KEXSDK {
namespace {

constexpr auto kMouse = ArrayParam<float>{"iMouse", {320, 240}, 2, {0, pixels::kLargestSide},
    "centre of the spot: column, row from the bottom", "pixels"}
                            .titled("Centre");
constexpr auto kColor =
    ArrayParam<float>{"Color", {1, 0.9, 0.3}, 3, {0, 1}, "colour of the spot: red, green, blue"}.titled(
        "Colour");
constexpr auto kRadius =
    Param<float>{"Radius", 0.5f, {0, 2}, "size of the spot; 4 spans the picture's width"}.undeclared();
constexpr auto kOpacity = Param<float>{"Opacity", 0.6f, {0, 1}, "strength of the spot"}.undeclared();
constexpr auto kSpotEnable =
    Param<float>{"Enable", 1.0f, {0, 1}, "the spot is drawn above 0.5"}.titled("Show Spot").undeclared();
constexpr auto kSoftness = Param<float>{"Softness", 0.0f, {0, 1}, "kept for hosts; no effect"}.undeclared();

class CHightLight final : public CPureCEffect {
public:
    CHightLight(u32 w, u32 h) : CPureCEffect(w, h)
    {
        declare(kMouse, kColor, kRadius, kOpacity, kSpotEnable, kSoftness);
    }

    void processFrame(const u8* src, u8* dst) override
    {
        pixels::rows::copy(input(src), output(dst));
        const auto centre = get(kMouse);
        const auto colour = get(kColor);
        if (centre.size() >= 2 && colour.size() >= 3 && get(kSpotEnable) > 0.5f)
            drawSpot(output(dst), centre[0], centre[1], colour);
    }

private:
    void drawSpot(pixels::View picture, float x, float y, std::span<const float> colour)
    {
        const float w = float(width());
        const float inner = get(kRadius) * 0.25f * 0.97f;
        const float outer = get(kRadius) * 0.25f * 1.03f;
        const float reach = float(pixels::truncated(w * outer));
        const float opacity = pixels::clamped(get(kOpacity), 0.0f, 1.0f);

        const auto first = [reach](float centre, int limit) {
            return std::clamp(pixels::truncated(centre - reach - 1), 0, limit);
        };
        const auto end = [reach](float centre, int limit) {
            return std::clamp(pixels::truncated(std::ceil(centre + reach + 1)), 0, limit);
        };
        const int left = first(x, picture.width());
        const int right = end(x, picture.width());
        const int bottom = first(y, picture.height());
        const int top = end(y, picture.height());
        const pixels::Extent visited{std::max(0, right - left), std::max(0, top - bottom)};
        const float red = colour[0];
        const float green = colour[1];
        const float blue = colour[2];
        pixels::rows::anyOrderRuns(visited, [=](int firstLine, int endLine) {
            pixels::widest([=] {
                for (int row = bottom + firstLine; row < bottom + endLine; ++row) {
                    pixels::Bgra* const line = picture.row(row).data();
                    const float dy = float(row) - y;
                    for (int column = left; column < right; ++column) {
                        const float dx = float(column) - x;
                        const float distance = std::sqrt(dx * dx + dy * dy) / w;
                        const float u = pixels::clamped((distance - inner) / (outer - inner), 0.0f, 1.0f);
                        const float alpha =
                            pixels::clamped((1 - (3 - 2 * u) * (u * u)) * opacity, 0.0f, 1.0f);
                        const pixels::Bgra p = pixels::load(line + column);
                        const pixels::Bgra spot{tinted(p.b, alpha, blue), tinted(p.g, alpha, green),
                            tinted(p.r, alpha, red), p.a};
                        pixels::store(line + column, distance < outer ? spot : p);
                    }
                }
            });
        });
    }

    static u8 tinted(u8 byte, float alpha, float colour)
    {
        return u8(int(pixels::clamped(float(byte) * (1 - alpha) + alpha * colour * 255, 0.0f, 255.0f)));
    }
};

const Registration<CHightLight> registered{{
    .guid = "AA82D502-0B8D-4BEC-B553-CD33A9C71C6E",
    .name = "highlight",
    .title = "Highlight Spot",
    .family = "colour",
    .summary = "A soft spot of colour; the host sets its place, colour and strength.",
}};

} // namespace
} // namespace KEXSDK
