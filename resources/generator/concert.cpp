// A concert: truss and coloured beams above, curtains at the sides, the crowd below.
#include "drawing.h"
#include "noise.h"
#include "pieces.h"

namespace artwork {

namespace {

constexpr float kTruss = -0.447f;

struct Lamp {
    float share; ///< place along the truss, -1..1
    float lean;  ///< how far the beam goes aside on its way down
    Colour colour;
};
constexpr Lamp kLamps[] = {
    {-0.86f, 0.55f, rgb(255, 60, 150)},
    {-0.58f, -0.12f, rgb(90, 120, 255)},
    {-0.30f, 0.42f, rgb(60, 220, 255)},
    {0.0f, -0.06f, rgb(255, 214, 140)},
    {0.30f, -0.48f, rgb(190, 90, 255)},
    {0.58f, 0.16f, rgb(255, 90, 90)},
    {0.86f, -0.55f, rgb(80, 160, 255)},
};

void paintBeams(const Place& p, float edge, Pixel& pixel)
{
    const float depth = p.y - kTruss;
    for (const Lamp& lamp : kLamps) {
        const float x = lamp.share * edge;
        if (depth > 0.012f) {
            const float width = 0.010f + 0.085f * depth;
            const float smoke = 0.72f + 0.5f * clouds(p.x * 3 - lamp.share * 5, p.y * 4, 3, 61);
            const float strength = 0.62f * std::exp(-depth * 3.0f) * smooth(0.92f, 0.30f, depth);
            cover(pixel, lamp.colour, clamp01(strength * smoke * bell(p.x - x - lamp.lean * depth, width)));
        }
        const float from = length(p.x - x, depth - 0.02f);
        cover(pixel, lamp.colour, 0.5f * bell(from, 0.032f));
        cover(pixel, mix(lamp.colour, kWhite, 0.8f), bell(from, 0.010f));
    }
}

void drawTruss(cairo_t* cairo, float edge)
{
    constexpr float kTall = 0.030f;
    cairo_set_line_width(cairo, 0.005);
    line(cairo, -edge, kTruss - kTall, edge, kTruss - kTall);
    line(cairo, -edge, kTruss, edge, kTruss);
    cairo_stroke(cairo);
    cairo_set_line_width(cairo, 0.0028);
    for (float x = -edge; x < edge; x += kTall * 1.6f) {
        line(cairo, x, kTruss, x + kTall * 0.8f, kTruss - kTall);
        line(cairo, x + kTall * 0.8f, kTruss - kTall, x + kTall * 1.6f, kTruss);
    }
    cairo_stroke(cairo);
    for (const Lamp& lamp : kLamps) {
        cairo_save(cairo);
        cairo_translate(cairo, lamp.share * edge, kTruss + 0.008);
        cairo_rotate(cairo, -std::atan(double(lamp.lean)));
        roundedBox(cairo, 0, 0, 0.014f, 0.017f, 0.005f);
        cairo_restore(cairo);
    }
    cairo_fill(cairo);
}

// One fan from behind, about `size` from ear to ear, the crown of the head at (x, y).
class Fan {
public:
    Fan(cairo_t* cairo, Random& random, float x, float y, float size)
        : cairo_(cairo),
          random_(random),
          x_(x),
          y_(y),
          size_(size)
    {
    }

    void draw()
    {
        body();
        const float mood = random_.uniform();
        if (mood < 0.30f)
            arm(-1);
        if (mood < 0.14f || mood > 0.80f)
            arm(1);
    }

private:
    void body()
    {
        const float neck = y_ + size_ * 1.0f;
        cairo_save(cairo_);
        cairo_translate(cairo_, x_, y_ + size_ * 0.62f);
        cairo_rotate(cairo_, random_.uniform(-0.1f, 0.1f));
        head(random_.uniform());
        cairo_restore(cairo_);
        const auto shoulder = [&](float side) {
            cairo_curve_to(cairo_, x_ + side * size_ * 0.34f, neck + size_ * 0.40f, x_ + side * size_ * 1.0f,
                neck + size_ * 0.24f, x_ + side * size_ * 1.22f, neck + size_ * 0.95f);
            cairo_line_to(cairo_, x_ + side * size_ * 1.3f, 0.6);
        };
        for (const float side : {-1.0f, 1.0f}) {
            cairo_move_to(cairo_, x_ - side * size_ * 0.05f, neck - size_ * 0.2f);
            cairo_line_to(cairo_, x_ + side * size_ * 0.32f, neck - size_ * 0.2f);
            shoulder(side);
            cairo_line_to(cairo_, x_ - side * size_ * 0.05f, 0.6);
            cairo_close_path(cairo_);
            cairo_fill(cairo_);
        }
    }
    // Draws a head around the origin; `kind` chooses the hair.
    void head(float kind)
    {
        cairo_scale(cairo_, size_, size_);
        cairo_save(cairo_);
        cairo_scale(cairo_, 0.5, 0.62);
        circle(cairo_, 0, 0, 1);
        cairo_restore(cairo_);
        cairo_fill(cairo_);
        if (kind < 0.3f)
            roundedBox(cairo_, 0, 0.15f, 0.60f, 0.80f, 0.55f); // long
        else if (kind < 0.42f)
            circle(cairo_, random_.uniform(-0.1f, 0.1f), -0.68f, 0.24f); // tied up
        else if (kind < 0.54f)
            circle(cairo_, 0, -0.16f, 0.66f); // curls
        else if (kind < 0.64f)
            roundedBox(cairo_, 0.18f, -0.26f, 0.62f, 0.09f, 0.08f); // a cap
        cairo_fill(cairo_);
    }
    void arm(float side)
    {
        const float shoulderX = x_ + side * size_ * 0.95f;
        const float shoulderY = y_ + size_ * 1.7f;
        const float elbowX = x_ + side * size_ * random_.uniform(1.1f, 1.5f);
        const float elbowY = y_ + size_ * random_.uniform(0.2f, 0.6f);
        const float wristX = elbowX - side * size_ * random_.uniform(-0.3f, 0.5f);
        const float wristY = elbowY - size_ * random_.uniform(1.1f, 1.6f);
        cairo_set_line_width(cairo_, size_ * 0.40);
        line(cairo_, shoulderX, shoulderY, elbowX, elbowY);
        cairo_stroke(cairo_);
        cairo_set_line_width(cairo_, size_ * 0.30);
        line(cairo_, elbowX, elbowY, wristX, wristY);
        cairo_stroke(cairo_);
        hand(wristX, wristY, side, wristX - elbowX, wristY - elbowY);
    }
    void hand(float x, float y, float side, float alongX, float alongY)
    {
        cairo_save(cairo_);
        cairo_translate(cairo_, x, y);
        cairo_rotate(cairo_, std::atan2(double(alongX), -double(alongY)));
        cairo_scale(cairo_, size_ * side, size_);
        roundedBox(cairo_, 0, -0.17f, 0.19f, 0.21f, 0.09f);
        cairo_fill(cairo_);
        cairo_set_line_width(cairo_, 0.105);
        const bool horns = random_.uniform() < 0.5f;
        for (int finger = 0; finger < 4; ++finger) {
            const float at = (float(finger) - 1.5f) * 0.11f;
            const bool folded = horns && (finger == 1 || finger == 2);
            const float reach = folded ? 0.42f : 0.62f - 0.06f * std::abs(float(finger) - 1.3f);
            line(cairo_, at, -0.3f, at * (folded ? 1 : 1.5f), -reach);
        }
        line(cairo_, -0.14f, -0.12f, -0.34f, horns ? -0.22f : -0.32f);
        cairo_stroke(cairo_);
        cairo_restore(cairo_);
    }

    cairo_t* cairo_;
    Random& random_;
    float x_;
    float y_;
    float size_;
};

struct Row {
    float crown; ///< height of the heads
    float size;
    float spacing;
    float light; ///< on the hair
    std::uint32_t seed;
};
constexpr Row kRows[] = {
    {0.315f, 0.030f, 0.066f, 0.55f, 71},
    {0.355f, 0.042f, 0.094f, 0.75f, 72},
    {0.405f, 0.066f, 0.150f, 1.0f, 73},
};

// Paints one row of the crowd. People in the middle stand a little lower, so that the stage shows.
void paintRow(Picture& picture, const Row& row)
{
    const float edge = picture.edge();
    const Plane people = drawn(picture.size(), [&](cairo_t* cairo) {
        Random random(row.seed);
        for (float x = -edge - row.spacing / 2; x < edge + row.spacing; x += row.spacing) {
            const float place = x + random.uniform(-0.2f, 0.2f) * row.spacing;
            const float dip = 0.035f * bell(place, 0.35f);
            Fan(cairo, random, place, row.crown + dip + random.uniform(-0.3f, 0.3f) * row.size, row.size)
                .draw();
        }
    });
    const int up = int(0.0042f * float(picture.size().height));
    const Plane rim = blurred(planeOf(picture.size(),
                                  [&](const Place& p) {
                                      const float above = people.at(p.column, std::max(0, p.row - up));
                                      return people.at(p.column, p.row) * (1 - above);
                                  }),
        0.0009f);
    const float nearness = row.size / kRows[2].size;
    const Colour dark = mix(rgb(38, 14, 52), rgb(4, 2, 7), nearness);
    picture.each([&](const Place& p, Pixel& pixel) {
        // Hair and hands catch the light of the stage; shoulders lie in the shade of those before them.
        const float lit = smooth(row.crown + row.size * 1.15f, row.crown + row.size * 0.2f, p.y);
        const Colour lamp = hued(0.72f + 0.22f * noise(p.x * 2.5f, 0.5f, row.seed), 0.55f, 1) * row.light;
        const Colour colour = dark + lamp * (rim.at(p.column, p.row) * (0.06f + 0.94f * lit));
        // No gaps where shoulders do not meet.
        const float floor = smooth(row.crown + row.size * 1.6f, row.crown + row.size * 2.6f, p.y);
        cover(pixel, colour, std::max(people.at(p.column, p.row), floor));
    });
}

} // namespace

void paintConcert(Picture& picture)
{
    const float edge = picture.edge();
    picture.each([&](const Place& p, Pixel& pixel) {
        const float haze = 0.75f + 0.4f * clouds(p.x * 2, p.y * 2.5f, 4, 62);
        cover(pixel, rgb(28, 6, 46), 0.80f * haze * smooth(-0.22f, -0.5f, p.y));
        paintBeams(p, edge, pixel);
        const float side = edge - std::abs(p.x);
        const float fold = 0.5f + 0.5f * std::sin(side * 150 + 2 * noise(p.x * 4, p.y * 2, 63));
        cover(pixel, rgb(26, 4, 18) * (0.5f + fold), 0.88f * smooth(0.13f, 0.02f, side + 0.03f * p.y));
        cover(pixel, rgb(34, 10, 52), 0.7f * smooth(0.24f, 0.46f, p.y));
    });
    const Plane truss = drawn(picture.size(), [&](cairo_t* cairo) { drawTruss(cairo, edge); });
    cover(picture, truss, rgb(7, 5, 11));
    for (const Row& row : kRows)
        paintRow(picture, row);
}

} // namespace artwork
