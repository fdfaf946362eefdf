// The viewfinder of a camcorder, with its recording light on or off.
#include "drawing.h"
#include "pieces.h"

namespace artwork {

namespace {

constexpr float kThin = 0.0028f;
constexpr float kLetters = 0.034f;
constexpr float kMargin = 0.075f;
constexpr Colour kInk = rgb(242, 246, 244);
constexpr Colour kRecord = rgb(255, 46, 38);

class Viewfinder {
public:
    explicit Viewfinder(Picture& picture) : picture_(picture), side_(picture.edge() - kMargin) { }

    float side() const { return side_; }

    /// Draws bright lines with a soft dark rim, so that they show on any picture.
    template <class Draw> void ink(Colour colour, Draw draw)
    {
        const Plane mask = drawn(picture_.size(), draw);
        cover(picture_, blurred(mask, 0.0045f), kBlack, 0.75f);
        cover(picture_, mask, colour, 0.95f);
    }
    void glow(Colour colour, float x, float y, float radius)
    {
        picture_.each([&](const Place& p, Pixel& pixel) {
            const float distance = length(p.x - x, p.y - y);
            cover(pixel, colour, 0.6f * bell(distance, radius * 1.25f));
            cover(pixel, mix(colour, rgb(255, 150, 130), bell(distance, radius * 0.55f)),
                smooth(radius, radius * 0.88f, distance));
        });
    }
    /// Paints the glass and the lines of the small screen, weak enough to look through.
    void screen()
    {
        picture_.each([&](const Place& p, Pixel& pixel) {
            const float corner = length(p.x / picture_.edge(), p.y / 0.5f);
            cover(pixel, kBlack, 0.5f * smooth(0.85f, 1.5f, corner));
            cover(pixel, kBlack, p.row % 4 < 2 ? 0.05f : 0);
        });
    }

private:
    Picture& picture_;
    float side_;
};

constexpr float kTop = -0.5f + kMargin;
constexpr float kBottom = 0.5f - kMargin;

void drawCorners(cairo_t* cairo, float side)
{
    constexpr float kArm = 0.085f;
    cairo_set_line_width(cairo, 2 * kThin);
    for (const float sx : {-1.0f, 1.0f})
        for (const float sy : {-1.0f, 1.0f}) {
            const float x = sx * (side + 0.025f);
            const float y = sy * (kBottom + 0.025f);
            cairo_move_to(cairo, x - sx * kArm, y);
            cairo_line_to(cairo, x, y);
            cairo_line_to(cairo, x, y - sy * kArm);
        }
    cairo_stroke(cairo);
}

void drawFocus(cairo_t* cairo)
{
    constexpr float kWidth = 0.13f;
    constexpr float kHeight = 0.09f;
    constexpr float kArm = 0.032f;
    cairo_set_line_width(cairo, 1.4 * double(kThin));
    for (const float sx : {-1.0f, 1.0f})
        for (const float sy : {-1.0f, 1.0f}) {
            cairo_move_to(cairo, sx * (kWidth - kArm), sy * kHeight);
            cairo_line_to(cairo, sx * kWidth, sy * kHeight);
            cairo_line_to(cairo, sx * kWidth, sy * (kHeight - kArm));
        }
    line(cairo, -0.018f, 0, 0.018f, 0);
    line(cairo, 0, -0.018f, 0, 0.018f);
    cairo_stroke(cairo);
}

void drawBattery(cairo_t* cairo, float right)
{
    constexpr float kHalf = 0.038f;
    const float x = right - kHalf - 0.01f;
    const float y = kTop + kLetters / 2;
    cairo_set_line_width(cairo, 1.4 * double(kThin));
    roundedBox(cairo, x, y, kHalf, 0.019f, 0.004f);
    cairo_stroke(cairo);
    roundedBox(cairo, x + kHalf + 0.006f, y, 0.004f, 0.008f, 0.002f);
    for (int bar = 0; bar < 3; ++bar)
        roundedBox(cairo, x - 0.0245f + float(bar) * 0.0165f, y, 0.0062f, 0.0118f, 0.0015f);
    cairo_fill(cairo);
}

// Draws two levels of sound: a row of small bars each, the later ones unlit.
void drawLevels(cairo_t* cairo, float left)
{
    constexpr int kLit[2] = {11, 9};
    for (int channel = 0; channel < 2; ++channel)
        for (int bar = 0; bar < 16; ++bar) {
            const float x = left + 0.035f + float(bar) * 0.0115f;
            const float y = kBottom - kLetters - 0.058f + float(channel) * 0.022f;
            const bool lit = bar < kLit[channel];
            roundedBox(cairo, x, y, 0.0036f, lit ? 0.0075f : 0.0014f, 0.001f);
        }
    cairo_fill(cairo);
    cairo_set_line_width(cairo, 1.1 * double(kThin));
    strokeText(cairo, "1", left, kBottom - kLetters - 0.066f, 0.0155f);
    strokeText(cairo, "2", left, kBottom - kLetters - 0.044f, 0.0155f);
}

void drawZoom(cairo_t* cairo, float right)
{
    constexpr float kHalf = 0.13f;
    const float x = right - 0.012f;
    cairo_set_line_width(cairo, 1.2 * double(kThin));
    line(cairo, x, -kHalf, x, kHalf);
    for (int tick = 0; tick <= 8; ++tick) {
        const float y = -kHalf + 2 * kHalf * float(tick) / 8;
        line(cairo, x - (tick % 4 ? 0.006f : 0.012f), y, x, y);
    }
    cairo_stroke(cairo);
    strokeText(cairo, "T", x - 0.0075f, -kHalf - 0.04f, 0.0215f);
    strokeText(cairo, "W", x - 0.0075f, kHalf + 0.019f, 0.0215f);
    cairo_move_to(cairo, x + 0.005, -0.035);
    cairo_line_to(cairo, x + 0.022, -0.045);
    cairo_line_to(cairo, x + 0.022, -0.025);
    cairo_close_path(cairo);
    cairo_fill(cairo);
}

void drawTexts(cairo_t* cairo, float side)
{
    const auto rightAligned = [&](const char* text, float y, float height) {
        strokeText(cairo, text, side - textWidth(text, height), y, height);
    };
    cairo_set_line_width(cairo, 1.75 * double(kThin));
    strokeText(cairo, "REC", -side + 0.052f, kTop, kLetters);
    strokeText(cairo, "1080 25P", -textWidth("1080 25P", 0.027f) / 2, kTop + 0.004f, 0.027f);
    rightAligned("00:12:47:08", kBottom - kLetters, kLetters);
    cairo_set_line_width(cairo, 1.35 * double(kThin));
    strokeText(cairo, "82 MIN", side - 0.112f - textWidth("82 MIN", 0.025f), kTop + 0.005f, 0.025f);
    strokeText(cairo, "F2.8   1/50   +0.3", -side, kBottom - 0.027f, 0.025f);
    rightAligned("AWB   AF", kBottom - kLetters - 0.05f, 0.025f);
}

void paintViewfinder(Picture& picture, bool lightOn)
{
    Viewfinder finder(picture);
    const float side = finder.side();
    finder.screen();
    finder.ink(kInk, [&](cairo_t* cairo) {
        drawCorners(cairo, side);
        drawFocus(cairo);
        drawBattery(cairo, side);
        drawLevels(cairo, -side);
        drawZoom(cairo, side);
        drawTexts(cairo, side);
    });
    if (lightOn)
        finder.glow(kRecord, -side + 0.02f, kTop + kLetters / 2, 0.0175f);
}

} // namespace

void paintCamcorderOn(Picture& picture) { paintViewfinder(picture, true); }

void paintCamcorderOff(Picture& picture) { paintViewfinder(picture, false); }

} // namespace artwork
