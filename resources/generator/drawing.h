// Vector drawing into masks: paths by cairo, letters by strokes of our own.
#pragma once

#include "Picture.h"

#include <cairo.h>

#include <functional>
#include <string_view>

namespace artwork {

/// The coverage, 0..1, of what `draw` paints. The unit is the picture's height, the origin its middle, y
/// grows downward; caps and joins are round.
Plane drawn(Size size, const std::function<void(cairo_t*)>& draw);

/// Strokes text with the current line width: capitals, digits and ". : - / +" of this height, upper left
/// corner at (x, y). Other characters are spaces.
void strokeText(cairo_t* cairo, std::string_view text, float x, float y, float height);

/// The width of a text that strokeText() draws.
float textWidth(std::string_view text, float height);

void circle(cairo_t* cairo, float x, float y, float radius);
void line(cairo_t* cairo, float x0, float y0, float x1, float y1);
/// Adds a box with round corners: centre, half sides, radius of the corners.
void roundedBox(cairo_t* cairo, float x, float y, float halfWidth, float halfHeight, float corner);
/// Adds a star with `points` points, one of them upward.
void star(cairo_t* cairo, float x, float y, float outer, float inner, int points, float turn = 0);

/// How far a place lies outside a box around the origin with round corners; negative inside.
float outsideBox(float x, float y, float halfWidth, float halfHeight, float corner);

/// About what outsideBox() gives, without the creases that run into the corners; for wide shades.
float outsideSoftBox(float x, float y, float halfWidth, float halfHeight);

} // namespace artwork
