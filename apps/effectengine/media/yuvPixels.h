// Conversion of planar YUV to the engine's pixels and back, with the same bytes on every processor.
#pragma once

#include "effectengine/media/ClipReader.h"
#include "pixels/View.h"

namespace tool::media {

/// Whether the format is 4:2:0, 4:2:2 or 4:4:4 with 8 bits in planes, alpha or not.
bool isPlainYuv(AVPixelFormat format);

/// Whether the format is 4:2:0, 4:2:2 or 4:4:4 with 9 to 16 bits in planes, alpha or not.
bool isDeepYuv(AVPixelFormat format);

/// Whether the numbers stand for colours through a matrix of red, green and blue.
bool hasYuvMatrix(AVColorSpace space);

/// The colour marks with what a file left open filled in as players do: the matrix by the picture's size,
/// studio range but for the formats that mean the full one.
Colour completed(Colour colour, AVPixelFormat format, int width, int height);

/// Converts a frame to pixels. Each chroma sample colours all pixels that share it; without alpha each pixel
/// becomes opaque. The frame is plain or deep (then its samples are rounded to 8 bits, or dithered); the view
/// has its size.
void yuvToBgra(const AVFrame& frame, const Colour& colour, pixels::View picture, bool dither);

/// Converts pixels to a frame. Each chroma sample is the mean of the pixels that share it, so a picture that
/// came from such samples gives them back. The frame is writable and has the view's size.
void bgraToYuv(pixels::ConstView picture, const Colour& colour, AVFrame& frame);

} // namespace tool::media
