// Pictures while they are painted: floating-point pixels, rows from the top, coordinates in heights.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace artwork {

inline constexpr float kPi = 3.14159265f;

struct Size {
    int width;
    int height;
};

/// A colour in display values, 0..1; painting may go beyond, saving clamps.
struct Colour {
    float r, g, b;

    friend constexpr Colour operator+(Colour p, Colour q) { return {p.r + q.r, p.g + q.g, p.b + q.b}; }
    friend constexpr Colour operator*(Colour p, Colour q) { return {p.r * q.r, p.g * q.g, p.b * q.b}; }
    friend constexpr Colour operator*(Colour p, float k) { return {p.r * k, p.g * k, p.b * k}; }
};

constexpr Colour rgb(int r, int g, int b)
{
    return {float(r) / 255.0f, float(g) / 255.0f, float(b) / 255.0f};
}
constexpr Colour grey(float value) { return {value, value, value}; }
inline constexpr Colour kWhite{1, 1, 1};
inline constexpr Colour kBlack{0, 0, 0};

/// A colour with straight alpha.
struct Pixel {
    Colour colour;
    float alpha;
};

constexpr float clamp01(float x) { return x < 0 ? 0 : x > 1 ? 1 : x; }
constexpr float mix(float p, float q, float share) { return p + (q - p) * share; }
constexpr Colour mix(Colour p, Colour q, float share) { return p * (1 - share) + q * share; }

/// 0 at `from`, 1 at `to`, a smooth step between; `from` may be the larger one.
constexpr float smooth(float from, float to, float x)
{
    const float t = clamp01((x - from) / (to - from));
    return t * t * (3 - 2 * t);
}

/// 1 at x = 0, falling to exp(-1/2) at `width`.
inline float bell(float x, float width) { return std::exp(-x * x / (2 * width * width)); }

inline float length(float x, float y) { return std::sqrt(x * x + y * y); }

/// A colour of the wheel, `hue` in turns: 0 red, 1/3 green, 2/3 blue.
Colour hued(float hue, float saturation, float value);

/// The centre of a pixel, in heights from the middle of the picture; y grows downward.
struct Place {
    float x, y;
    int column, row;
};

template <class T> class Grid {
public:
    Grid(Size size, T value) : size_(size), cells_(std::size_t(size.width) * std::size_t(size.height), value)
    {
    }

    Size size() const { return size_; }
    T& at(int x, int y) { return cells_[std::size_t(y) * std::size_t(size_.width) + std::size_t(x)]; }
    const T& at(int x, int y) const
    {
        return cells_[std::size_t(y) * std::size_t(size_.width) + std::size_t(x)];
    }
    /// Half the width, in heights.
    float edge() const { return float(size_.width) / float(size_.height) / 2; }

    Place place(int x, int y) const
    {
        const float unit = 1 / float(size_.height);
        return {(float(x) + 0.5f) * unit - edge(), (float(y) + 0.5f) * unit - 0.5f, x, y};
    }
    /// change(place, cell) for every cell.
    template <class Change> void each(Change change)
    {
        for (int y = 0; y < size_.height; ++y)
            for (int x = 0; x < size_.width; ++x)
                change(place(x, y), at(x, y));
    }

    /// look(place, cell) at every cell.
    template <class Look> void each(Look look) const
    {
        for (int y = 0; y < size_.height; ++y)
            for (int x = 0; x < size_.width; ++x)
                look(place(x, y), at(x, y));
    }

private:
    Size size_;
    std::vector<T> cells_;
};

using Plane = Grid<float>;
using Picture = Grid<Pixel>;

/// value(place) for every cell.
template <class Value> Plane planeOf(Size size, Value value)
{
    Plane plane(size, 0);
    plane.each([&](const Place& p, float& cell) { cell = value(p); });
    return plane;
}

/// Every pixel opaque, of colour(place).
template <class Paint> void paint(Picture& picture, Paint colour)
{
    picture.each([&](const Place& p, Pixel& pixel) { pixel = {colour(p), 1}; });
}

/// Lays a colour over the pixel; what was transparent takes the colour.
void cover(Pixel& pixel, Colour colour, float opacity);

/// Lays a colour over the picture through a mask.
void cover(Picture& picture, const Plane& mask, Colour colour, float opacity = 1);

/// A Gaussian blur by three box filters; edges are repeated. `width` in heights.
Plane blurred(const Plane& plane, float width);

} // namespace artwork
