// How a value goes on from one keyframe to the next: timing functions with names, and cubic curves.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace host {

/// A timing function of this name: the share of the way from one value to the next, for the share of the time
/// that has passed. It is asked for shares between 0 and 1; there it may leave 0..1. At 0 every function is 0
/// and at 1 it is 1.
struct NamedEasing {
    const char* name;
    int since; ///< version of the format of graph files that knows the name
    double (*at)(double share);
};

/// All names; what reads, writes, checks and documents them goes by this table.
std::span<const NamedEasing> namedEasings();

/// The control points (x1, y1) and (x2, y2) of a cubic curve from (0, 0) to (1, 1), as in CSS's
/// cubic-bezier().
using BezierPoints = std::array<double, 4>;

/// y of the curve at x in 0..1, with errors below 1e-9 for y in -1..2. The points' x lie in 0..1.
double bezierAt(const BezierPoints& points, double x);

/// The largest size of y1 and y2, far beyond what anybody draws: values stay finite.
constexpr double kLargestBezierY = 1e6;

/// Linear unless made otherwise.
class Easing {
public:
    Easing() : Easing(namedEasings().front()) { }
    static std::optional<Easing> named(std::string_view name);
    /// Throws GraphError: an x outside of 0..1, a y beyond kLargestBezierY, what is no number.
    static Easing bezier(const BezierPoints& points);
    /// Keeps the value until the next keyframe.
    static Easing hold();

    /// The share of the way for a share of the time in 0..1.
    double operator()(double share) const;

    bool holds() const;
    const NamedEasing* name() const { return name_; } ///< null: it has points()
    const BezierPoints& points() const { return points_; }
    int since() const { return name_ ? name_->since : 2; }

private:
    explicit Easing(const NamedEasing& name) : name_(&name) { }

    const NamedEasing* name_;
    BezierPoints points_{};
};

} // namespace host
