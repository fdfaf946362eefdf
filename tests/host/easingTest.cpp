// Timing functions: exact roots of cubic curves, and values of the named families that can be known by hand.
#include "host/Easing.h"

#include "host/GraphError.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>

namespace {

using host::bezierAt;
using host::Easing;

double valueOf(const std::string& name, double share)
{
    const auto easing = Easing::named(name);
    if (!easing)
        throw std::invalid_argument(name);
    return (*easing)(share);
}

// In the third curve x stands still in the middle: what rounding does to x there, s shows as its cube root.
TEST(BezierCurves, MeetTheExactRoots)
{
    struct Curve {
        double x1, x2;
        long double (*root)(long double);
    };
    const Curve curves[] = {
        {0, 0, [](long double x) { return cbrtl(x); }},
        {1, 1, [](long double x) { return 1 - cbrtl(1 - x); }},
        {1, 0, [](long double x) { return 0.5L + cbrtl((x - 0.5L) / 4); }},
        {0, 1, [](long double x) { return 0.5L - cosl((acosl(1 - 2 * x) + acosl(-1)) / 3); }},
    };
    double worst = 0;
    const auto compare = [&](const Curve& curve, double x) {
        for (const auto& [y1, y2] : {std::pair{0.0, 1.0}, {0.1, -1.0}, {2.0, 0.3}, {-0.5, 1.5}}) {
            const long double s = curve.root(x);
            const long double exact = 3 * s * (1 - s) * (y1 * (1 - s) + y2 * s) + s * s * s;
            worst = std::max(worst, double(fabsl(bezierAt({curve.x1, y1, curve.x2, y2}, x) - exact)));
        }
    };
    for (const Curve& curve : curves) {
        for (int i = 0; i <= 1000; ++i)
            compare(curve, i / 1000.0);
        for (int power = -52; power < -4; ++power) {
            for (const double from : {0.0, 0.5, 1.0})
                compare(curve, from + std::ldexp(from < 1 ? 1 : -1, power));
        }
    }
    EXPECT_LT(worst, 1e-9);
}

TEST(BezierCurves, RefuseWhatIsNoFunctionOfTime)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const host::BezierPoints& points : {host::BezierPoints{-0.1, 0, 1, 1}, {0, 0, 1.1, 1},
             {nan, 0, 1, 1}, {0, nan, 1, 1}, {0, 0, 1, 1e7}, {0, -1e7, 1, 1}})
        EXPECT_THROW(Easing::bezier(points), host::GraphError) << points[0] << " " << points[3];
    EXPECT_EQ(Easing::bezier({0, 1e6, 1, -1e6})(0.5), 0.125) << "as far as they go";
}

TEST(NamedEasings, BeginAtTheFirstValueAndEndAtTheSecond)
{
    std::set<std::string> names;
    for (const host::NamedEasing& row : host::namedEasings()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name << " twice";
        EXPECT_EQ(valueOf(row.name, 0), 0) << row.name;
        if (row.name == std::string("hold"))
            continue;
        EXPECT_EQ(valueOf(row.name, 1), 1) << row.name;
        EXPECT_NEAR(valueOf(row.name, 1e-9), 0, 2e-3) << row.name;
        EXPECT_NEAR(valueOf(row.name, 1 - 1e-9), 1, 2e-3) << row.name;
    }
}

TEST(NamedEasings, HaveTheValuesOfTheirFormulas)
{
    struct Value {
        const char* name;
        double share, value;
    };
    const Value values[] = {
        {"linear", 0.3, 0.3},
        {"hold", 0.999, 0},
        {"smooth", 0.25, 0.15625},
        {"ease-in-out", 0.5, 0.5},
        {"sine-in", 1 / 3.0, 1 - std::sqrt(0.75)},
        {"sine-out", 1 / 3.0, 0.5},
        {"sine-in-out", 1 / 3.0, 0.25},
        {"quad-in", 0.25, 0.0625},
        {"quad-out", 0.25, 0.4375},
        {"quad-in-out", 0.25, 0.125},
        {"cubic-in", 0.5, 0.125},
        {"cubic-out", 0.5, 0.875},
        {"cubic-in-out", 0.75, 0.9375},
        {"quart-in", 0.5, 0.0625},
        {"quart-in-out", 0.25, 0.03125},
        {"quint-in", 0.5, 0.03125},
        {"quint-out", 0.5, 0.96875},
        {"expo-in", 0.5, 0.03125},
        {"expo-out", 0.1, 0.5},
        {"expo-in-out", 0.45, 0.25},
        {"circ-in", 0.6, 0.2},
        {"circ-out", 0.4, 0.8},
        {"circ-in-out", 0.3, 0.1},
        {"back-in", 0.5, -0.0876975},
        {"back-out", 0.5, 1.0876975},
        {"back-in-out", 0.25, -0.09968184375},
        {"elastic-in", 0.5, -0.015625},
        {"elastic-out", 0.5, 1.015625},
        {"elastic-out", 0.15, 1 + std::exp2(-1.5)},
        {"elastic-in-out", 0.25, std::sin(std::acos(-1.0) * 5 / 18) / 64},
        {"bounce-out", 0.2, 0.3025},
        {"bounce-out", 1 / 2.75, 1},
        {"bounce-out", 0.5, 0.765625},
        {"bounce-out", 0.8, 0.94},
        {"bounce-out", 2.625 / 2.75, 0.984375},
        {"bounce-in", 0.5, 0.234375},
        {"bounce-in-out", 0.25, 0.1171875},
        {"bounce-in-out", 0.75, 0.8828125},
    };
    for (const Value& v : values)
        EXPECT_NEAR(valueOf(v.name, v.share), v.value, 1e-12) << v.name << " at " << v.share;
}

} // namespace
