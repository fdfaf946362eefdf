// A stencilled poster, torn paper, washes of ink.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

namespace {

// 1 inside the stencil's frame, whose lines are held by bridges.
Plane stencilFrame(Size size)
{
    return drawn(size, [&](cairo_t* cairo) {
        const float edge = float(size.width) / float(size.height) / 2;
        const float x = edge - 0.062f;
        const float y = 0.438f;
        cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
        cairo_set_line_width(cairo, 0.014);
        constexpr float kBridge = 0.020f;
        constexpr float kCorner = 0.085f;
        for (const float side : {-1.0f, 1.0f}) {
            for (const float half : {-1.0f, 1.0f}) {
                line(cairo, half * (x - kCorner), side * y, half * kBridge, side * y);
                line(cairo, side * x, half * (y - kCorner), side * x, half * kBridge);
            }
        }
        cairo_stroke(cairo);
        for (const float sx : {-1.0f, 1.0f})
            for (const float sy : {-1.0f, 1.0f})
                star(cairo, sx * x - sx * 0.012f, sy * y - sy * 0.012f, 0.042f, 0.0165f, 5);
        cairo_fill(cairo);
    });
}

} // namespace

// A poster's paper and frame, for multiplying with a picture washed in one colour: reds with little green and
// blue turn it into a poster of two inks.
void paintStencilPoster(Picture& picture)
{
    const float edge = picture.edge();
    const Plane frame = stencilFrame(picture.size());
    const Plane mist = blurred(frame, 0.012f);
    const Plane spray = specks(picture.size(), 401, 2200, 0.0042f);
    paint(picture, [&](const Place& p) {
        const float angle = std::atan2(p.y - 0.72f, p.x);
        const float turn = angle / (2 * kPi) * 34;
        const float inRay = std::abs(turn - std::floor(turn) - 0.5f) * 2;
        const float sharp = 0.03f / std::max(0.05f, length(p.x, p.y - 0.72f));
        const float ray = smooth(0.5f - sharp, 0.5f + sharp, inRay);
        const float wear = clouds(p.x * 7, p.y * 7, 6, 402);
        const float tooth = clouds(p.x * 75, p.y * 75, 3, 403);
        const float rolled = smooth(0.25f, 0.75f, tooth + 0.55f * wear);
        const Colour ink = mix(rgb(250, 38, 30), rgb(218, 28, 30), ray);
        const Colour printed = mix(ink, rgb(255, 70, 58), 0.5f * rolled) * (1 + 0.06f * wear);
        const float spots = spray.at(p.column, p.row) * smooth(0.45f, 0.95f, towardCorner(p, edge));
        const float painted = clamp01(0.95f * frame.at(p.column, p.row) * (1 - 0.7f * rolled)
            + 0.35f * mist.at(p.column, p.row) + 0.55f * spots);
        const float corner = smooth(0.6f, 1.1f, towardCorner(p, edge));
        return mix(printed * (1 - 0.35f * corner), rgb(40, 8, 12), painted);
    });
}

// White paper whose middle was torn out, laid over a picture by its alpha.
void paintTornPaper(Picture& picture)
{
    const float edge = picture.edge();
    const Plane hairs = fibres(picture.size(), 411, 1500, 0.03f, 0.0012f);
    picture.each([&](const Place& p, Pixel& pixel) {
        const float fine = 0.0045f * clouds(p.x * 34, p.y * 34, 4, 412);
        const auto tear = [&](float x, float y, float margin) {
            return outsideBox(x, y, edge - margin, 0.5f - margin, 0.02f)
                + 0.020f * clouds(x * 4.2f, y * 4.2f, 5, 413);
        };
        const float core = tear(p.x, p.y, 0.082f) + fine;
        // The upper layer tore farther back than the soft white one below it.
        const float upper = tear(p.x, p.y, 0.068f) + 0.010f * noise(p.x * 9, p.y * 9, 414) + fine;
        const float shadow = tear(p.x - 0.006f, p.y - 0.011f, 0.082f);
        cover(pixel, rgb(20, 16, 14), 0.60f * smooth(-0.042f, 0.004f, shadow));
        const float tooth = clouds(p.x * 55, p.y * 55, 3, 415);
        cover(pixel, grey(0.965f + 0.030f * tooth) * rgb(255, 252, 246), smooth(-0.0016f, 0.0016f, core));
        const float age = clouds(p.x * 2, p.y * 2, 5, 416);
        const float lit = 0.97f + 0.02f * tooth - 0.05f * hairs.at(p.column, p.row);
        const Colour sheet = mix(rgb(238, 229, 212), rgb(214, 198, 172), clamp01(0.4f + 0.6f * age)) * lit;
        cover(pixel, kBlack, 0.22f * bell(upper + 0.0015f, 0.0030f) * smooth(-0.001f, 0.001f, core));
        cover(pixel, sheet, smooth(-0.0012f, 0.0012f, upper));
    });
}

// Washes of indigo that run in from the border, for the burning blend, in which white leaves the picture.
void paintInkWash(Picture& picture)
{
    const float edge = picture.edge();
    const Plane spatter = blurred(specks(picture.size(), 421, 130, 0.0105f), 0.0008f);
    paint(picture, [&](const Place& p) {
        float dark = 0;
        for (int layer = 0; layer < 3; ++layer) {
            const std::uint32_t seed = 422 + std::uint32_t(layer) * 10;
            const float margin = 0.005f + 0.036f * float(layer);
            const float box = beyondRagged(p, edge, margin, 0.105f, 1.9f, seed)
                + 0.010f * clouds(p.x * 14, p.y * 14, 4, seed + 1);
            // Pigment gathers where a wash dries.
            const float wash = smooth(-0.006f, 0.006f, box);
            const float line = bell(box - 0.007f, 0.007f);
            dark += wash * (0.20f + 0.14f * clouds(p.x * 3, p.y * 3, 4, seed + 2)) + 0.16f * line;
        }
        const float pits = 1 + 0.16f * clouds(p.x * 70, p.y * 70, 3, 455);
        const float border = smooth(0.45f, 0.95f, towardCorner(p, edge));
        const float drops = 0.55f * spatter.at(p.column, p.row) * border;
        const float ink = clamp01(std::max(dark, drops) * pits * 1.15f);
        return mix(
            rgb(254, 253, 250), mix(rgb(176, 190, 232), rgb(92, 100, 156), ink), smooth(0, 0.55f, ink));
    });
}

} // namespace artwork
