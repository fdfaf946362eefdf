// The vignette: an ellipse with a soft edge, outside which the picture is darkened or brightened.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/ByteTables.h"

namespace lightroom {

/// The values as hosts give them, in percent.
struct VignetteValues {
    float amount = 0;
    float feather = 0;
    float highlights = 0;
    float size = 0;
    float roundness = 0;
    float exposure = 0;

    bool neutral() const { return amount == 0 && exposure == 0; }
};

/// Keeps the mask, which depends on size, roundness and feather only, from frame to frame.
class Vignette {
public:
    /// To be called before the rows of a frame. False without memory for the mask.
    bool prepare(const VignetteValues& values, pixels::Extent size);

    /// Draws row y of the frame; from and to, one row each, may be the same.
    void applyToRow(pixels::ConstView from, pixels::View to, int y) const;

private:
    struct Shape {
        double a, b; ///< half axes of the ellipse that is left alone
        double band; ///< width of the soft edge
        friend bool operator==(Shape, Shape) = default;
    };
    struct RowZones {
        int edge;   ///< the first column of the left half where the mask is above 0
        int inside; ///< and where it is 1; half the width, rounded up, if there is none
    };
    static Shape shapeOf(const VignetteValues& values, pixels::Extent size);
    static double maskAt(const Shape& shape, double dx, double dy);
    void drawMask();
    void fillTables();

    pixels::Extent size_{0, 0};
    Shape shape_{};
    double amount_ = 0;
    double highlights_ = 0;
    double exposure_ = 1;
    pixels::Buffer<double> mask_;    ///< the lower half of the picture; the upper one mirrors it
    pixels::Buffer<RowZones> zones_; ///< of the mask's rows
    bool insideTabled_ = false;      ///< the tables hold what becomes of bytes where the mask is 1
    bool outsideTabled_ = false;     ///< and where it is 0
    pixels::ByteTables inside_{};
    pixels::ByteTables outside_{};
};

} // namespace lightroom
