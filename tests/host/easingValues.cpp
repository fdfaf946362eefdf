// Prints values of timing functions: each line of the input is a name or x1,y1,x2,y2, and a share of the
// time.
#include "host/Easing.h"

#include <cstdio>
#include <iostream>
#include <sstream>

int main()
{
    std::string curve;
    double share = 0;
    while (std::cin >> curve >> share) {
        auto easing = host::Easing::named(curve);
        if (!easing) {
            std::istringstream numbers(curve);
            host::BezierPoints points{};
            char comma = 0;
            for (double& point : points) {
                numbers >> point;
                numbers >> comma;
            }
            easing = host::Easing::bezier(points);
        }
        std::printf("%.17g\n", (*easing)(share));
    }
}
