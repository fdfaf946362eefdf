// Masks drawn by cairo, and letters made of strokes.
#include "drawing.h"

#include <memory>
#include <stdexcept>

namespace artwork {

namespace {

struct Destroy {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

// The strokes of a letter, in the style of a viewfinder with cut corners: places "xyxy..." on a grid four
// wide and six high, from the upper left corner, with a blank between strokes.
const char* strokesOf(char letter)
{
    switch (letter) {
    case '0':
        return "103041453616050110";
    case '1':
        return "112026 1636";
    case '2':
        return "01103041420646";
    case '3':
        return "011030414233 1333 334445361605";
    case '4':
        return "300444 3036";
    case '5':
        return "400002324345361605";
    case '6':
        return "133344453616050413 0501103041";
    case '7':
        return "00404126";
    case '8':
        return "103041423313020110 133344453616050413";
    case '9':
        return "103041423313020110 4145361605";
    case 'A':
        return "0602204246 0444";
    case 'B':
        return "00063645443303 0030414233";
    case 'C':
        return "4130100105163645";
    case 'D':
        return "00063645413000";
    case 'E':
        return "40000646 0333";
    case 'F':
        return "400006 0333";
    case 'G':
        return "41301001051636454323";
    case 'H':
        return "0006 4046 0343";
    case 'I':
        return "1030 2026 1636";
    case 'J':
        return "4045361605";
    case 'K':
        return "0006 400346";
    case 'L':
        return "000646";
    case 'M':
        return "0600234046";
    case 'N':
        return "06004640";
    case 'O':
        return "103041453616050110";
    case 'P':
        return "06003041423303";
    case 'Q':
        return "103041453616050110 2446";
    case 'R':
        return "06003041423303 2346";
    case 'S':
        return "413010010213334445361605";
    case 'T':
        return "0040 2026";
    case 'U':
        return "000516364540";
    case 'V':
        return "002640";
    case 'W':
        return "0016233640";
    case 'X':
        return "0046 4006";
    case 'Y':
        return "002340 2326";
    case 'Z':
        return "00400646";
    case '.':
        return "2626";
    case ':':
        return "2222 2525";
    case '-':
        return "1333";
    case '/':
        return "4006";
    case '+':
        return "1333 2224";
    default:
        return "";
    }
}

constexpr float kGridHeight = 6;
constexpr float kAdvance = 5.6f; // four units of letter, the rest between letters

} // namespace

Plane drawn(Size size, const std::function<void(cairo_t*)>& draw)
{
    const std::unique_ptr<cairo_surface_t, Destroy> surface(
        cairo_image_surface_create(CAIRO_FORMAT_A8, size.width, size.height));
    const std::unique_ptr<cairo_t, Destroy> cairo(cairo_create(surface.get()));
    cairo_translate(cairo.get(), size.width / 2.0, size.height / 2.0);
    cairo_scale(cairo.get(), size.height, size.height);
    cairo_set_line_cap(cairo.get(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo.get(), CAIRO_LINE_JOIN_ROUND);
    cairo_set_tolerance(cairo.get(), 0.1 / size.height);
    draw(cairo.get());
    if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(cairo_status_to_string(cairo_status(cairo.get())));
    cairo_surface_flush(surface.get());
    const unsigned char* const bytes = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    return planeOf(size, [&](const Place& p) { return float(bytes[p.row * stride + p.column]) / 255.0f; });
}

void strokeText(cairo_t* cairo, std::string_view text, float x, float y, float height)
{
    const float unit = height / kGridHeight;
    for (const char letter : text) {
        bool penDown = false;
        for (const char* point = strokesOf(letter); *point; point += 2) {
            if (*point == ' ') {
                penDown = false;
                ++point;
            }
            const double px = x + float(point[0] - '0') * unit;
            const double py = y + float(point[1] - '0') * unit;
            if (penDown)
                cairo_line_to(cairo, px, py);
            else
                cairo_move_to(cairo, px, py);
            penDown = true;
        }
        x += kAdvance * unit;
    }
    cairo_stroke(cairo);
}

float textWidth(std::string_view text, float height)
{
    return (float(text.size()) * kAdvance - (kAdvance - 4)) * height / kGridHeight;
}

void circle(cairo_t* cairo, float x, float y, float radius)
{
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x, y, radius, 0, 2 * double(kPi));
}

void line(cairo_t* cairo, float x0, float y0, float x1, float y1)
{
    cairo_move_to(cairo, x0, y0);
    cairo_line_to(cairo, x1, y1);
}

void roundedBox(cairo_t* cairo, float x, float y, float halfWidth, float halfHeight, float corner)
{
    constexpr double kQuarter = double(kPi) / 2;
    const auto arc = [&](float sideX, float sideY, int first) {
        cairo_arc(cairo, x + sideX * (halfWidth - corner), y + sideY * (halfHeight - corner), corner,
            first * kQuarter, (first + 1) * kQuarter);
    };
    cairo_new_sub_path(cairo);
    arc(1, 1, 0);
    arc(-1, 1, 1);
    arc(-1, -1, 2);
    arc(1, -1, 3);
    cairo_close_path(cairo);
}

void star(cairo_t* cairo, float x, float y, float outer, float inner, int points, float turn)
{
    cairo_new_sub_path(cairo);
    for (int i = 0; i < 2 * points; ++i) {
        const float angle = turn + kPi * float(i) / float(points);
        const float radius = i % 2 ? inner : outer;
        cairo_line_to(cairo, x + radius * std::sin(angle), y - radius * std::cos(angle));
    }
    cairo_close_path(cairo);
}

float outsideBox(float x, float y, float halfWidth, float halfHeight, float corner)
{
    const float dx = std::abs(x) - halfWidth + corner;
    const float dy = std::abs(y) - halfHeight + corner;
    return length(std::max(dx, 0.0f), std::max(dy, 0.0f)) + std::min(std::max(dx, dy), 0.0f) - corner;
}

float outsideSoftBox(float x, float y, float halfWidth, float halfHeight)
{
    constexpr float kRounding = 0.24f;
    const float dx = std::abs(x) - halfWidth;
    const float dy = std::abs(y) - halfHeight;
    const float h = std::max(kRounding - std::abs(dx - dy), 0.0f) / kRounding;
    return std::max(dx, dy) + h * h * kRounding / 4;
}

} // namespace artwork
