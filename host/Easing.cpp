// The timing functions. docs/graphs.md states their formulas.
#include "host/Easing.h"

#include "host/GraphError.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {

namespace {

using std::numbers::pi;

double linear(double t) { return t; }
double held(double) { return 0; }
double smooth(double t) { return t * t * (3 - 2 * t); }

double ease(double t) { return bezierAt({0.25, 0.1, 0.25, 1}, t); }
double easeIn(double t) { return bezierAt({0.42, 0, 1, 1}, t); }
double easeOut(double t) { return bezierAt({0, 0, 0.58, 1}, t); }
double easeInOut(double t) { return bezierAt({0.42, 0, 0.58, 1}, t); }

// A family is given by its way in: the way out is its mirror image, and both in a row are each half as large.
template <double (*in)(double)> double out(double t) { return 1 - in(1 - t); }
template <double (*in)(double)> double inOut(double t)
{
    return t < 0.5 ? in(2 * t) / 2 : 1 - in(2 - 2 * t) / 2;
}

template <int power> double powerIn(double t)
{
    double product = t;
    for (int i = 1; i < power; ++i)
        product *= t;
    return product;
}

double sineIn(double t) { return 1 - std::cos(t * pi / 2); }
double expoIn(double t) { return t > 0 ? std::exp2(10 * t - 10) : 0; }
double circIn(double t) { return 1 - std::sqrt(1 - t * t); }

// How far it draws back is a tenth of the way, and more in each half of in and out.
constexpr double kBack = 1.70158;
constexpr double kBackInOut = kBack * 1.525;
double back(double t, double by) { return t * t * ((by + 1) * t - by); }
double backIn(double t) { return back(t, kBack); }
double backInHalf(double t) { return back(t, kBackInOut); }

// Swings of a period given in tenths of the duration.
double elastic(double t, double period)
{
    if (t <= 0 || t >= 1)
        return t;
    const double x = 10 * t - 10;
    return -std::exp2(x) * std::sin((x - period / 4) * 2 * pi / period);
}
double elasticIn(double t) { return elastic(t, 3); }
double elasticInHalf(double t) { return elastic(t, 4.5); }

// Four parabolas of a falling ball, each at its turning point.
double bounceOut(double t)
{
    constexpr double kSteepness = 7.5625;
    constexpr double kParts = 2.75;
    struct Arc {
        double end, middle, height;
    };
    constexpr Arc kArcs[] = {{1, 0, 0}, {2, 1.5, 0.75}, {2.5, 2.25, 0.9375}, {3, 2.625, 0.984375}};
    const Arc& arc = *std::ranges::find_if(
        kArcs, [&](const Arc& a) { return t < a.end / kParts || &a == std::end(kArcs) - 1; });
    const double x = t - arc.middle / kParts;
    return kSteepness * x * x + arc.height;
}
double bounceIn(double t) { return 1 - bounceOut(1 - t); }

constexpr NamedEasing kEasings[] = {
    {"linear", 1, linear},
    {"hold", 1, held},
    {"smooth", 1, smooth},
    {"ease", 2, ease},
    {"ease-in", 2, easeIn},
    {"ease-out", 2, easeOut},
    {"ease-in-out", 2, easeInOut},
    {"sine-in", 2, sineIn},
    {"sine-out", 2, out<sineIn>},
    {"sine-in-out", 2, inOut<sineIn>},
    {"quad-in", 2, powerIn<2>},
    {"quad-out", 2, out<powerIn<2>>},
    {"quad-in-out", 2, inOut<powerIn<2>>},
    {"cubic-in", 2, powerIn<3>},
    {"cubic-out", 2, out<powerIn<3>>},
    {"cubic-in-out", 2, inOut<powerIn<3>>},
    {"quart-in", 2, powerIn<4>},
    {"quart-out", 2, out<powerIn<4>>},
    {"quart-in-out", 2, inOut<powerIn<4>>},
    {"quint-in", 2, powerIn<5>},
    {"quint-out", 2, out<powerIn<5>>},
    {"quint-in-out", 2, inOut<powerIn<5>>},
    {"expo-in", 2, expoIn},
    {"expo-out", 2, out<expoIn>},
    {"expo-in-out", 2, inOut<expoIn>},
    {"circ-in", 2, circIn},
    {"circ-out", 2, out<circIn>},
    {"circ-in-out", 2, inOut<circIn>},
    {"back-in", 2, backIn},
    {"back-out", 2, out<backIn>},
    {"back-in-out", 2, inOut<backInHalf>},
    {"elastic-in", 2, elasticIn},
    {"elastic-out", 2, out<elasticIn>},
    {"elastic-in-out", 2, inOut<elasticInHalf>},
    {"bounce-in", 2, bounceIn},
    {"bounce-out", 2, bounceOut},
    {"bounce-in-out", 2, inOut<bounceIn>},
};

template <class Number> Number cubic(Number first, Number second, Number s)
{
    const Number rest = 1 - s;
    return 3 * s * rest * (first * rest + second * s) + s * s * s;
}

#ifdef __SIZEOF_FLOAT128__
__extension__ using Wide = __float128;
#else
using Wide = long double;
#endif

} // namespace

std::span<const NamedEasing> namedEasings() { return kEasings; }

// x rises with the curve's own variable, which is found by halving. Where x hardly rises, a fault of x in the
// last digit moves that variable by its cube root: close calls are decided with more digits.
double bezierAt(const BezierPoints& points, double x)
{
    const auto [x1, y1, x2, y2] = points;
    constexpr double kClose = 1e-14; // above what rounding does to cubic()
    double low = 0;
    double high = 1;
    for (int i = 0; i < 64; ++i) {
        const double middle = low + (high - low) / 2;
        const double difference = cubic(x1, x2, middle) - x;
        const bool below = std::abs(difference) > kClose
            ? difference < 0
            : cubic<Wide>(Wide(x1), Wide(x2), Wide(middle)) < Wide(x);
        (below ? low : high) = middle;
    }
    return cubic(y1, y2, high);
}

std::optional<Easing> Easing::named(std::string_view name)
{
    const auto found = std::ranges::find(kEasings, name, [](auto& e) { return std::string_view(e.name); });
    if (found == std::end(kEasings))
        return std::nullopt;
    return Easing(*found);
}

Easing Easing::bezier(const BezierPoints& points)
{
    const auto fits = [](double x, double y) { return x >= 0 && x <= 1 && std::abs(y) <= kLargestBezierY; };
    if (!fits(points[0], points[1]) || !fits(points[2], points[3]))
        throw GraphError(GraphFault::content,
            "\"bezier\" takes x1, y1, x2 and y2 with x1 and x2 in 0..1 and y1 and y2 in -1000000..1000000");
    Easing easing;
    easing.name_ = nullptr;
    easing.points_ = points;
    return easing;
}

Easing Easing::hold() { return *named("hold"); }

double Easing::operator()(double share) const
{
    if (holds() || !(share > 0))
        return 0;
    if (share >= 1)
        return 1;
    return name_ ? name_->at(share) : bezierAt(points_, share);
}

bool Easing::holds() const { return name_ && name_->at == held; }

} // namespace host
