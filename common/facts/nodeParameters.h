// Parameters that nodes have by their kind.
#pragma once

#include "facts/Param.h"
#include "pixels/View.h"

namespace KEXSDK {

// Parameters that every node carries, or that animated effects read.
inline constexpr auto kEnable =
    Param<int>{"kex_effect_enable", 1, {0, 1}, "0 passes input 0 through"}.titled("Enabled");
inline constexpr auto kGlobalTime =
    Param<float>{"u_global_time", 0.0f, {0, 3600}, "time within the effect"}.titled("Time");
inline constexpr auto kTotalTime =
    Param<float>{"u_total_time", 5.0f, {0, 3600}, "duration of the effect"}.titled("Duration");

} // namespace KEXSDK

namespace shader {

// Parameters of every shader effect, and the frame rate of those with particles. Hosts add the undeclared
// ones.
inline constexpr KEXSDK::Param<float> kRotate =
    KEXSDK::Param<float>{"stRotate", 0.0f, {-360, 360}, "turns the picture clockwise about its middle"}
        .titled("Picture Rotation")
        .in("degrees")
        .undeclared();
inline constexpr auto kScale = KEXSDK::ArrayParam<float>{"stScale", {1, 1}, 2, {-4, 4},
    "enlarges the picture about its middle, across and down"}
                                   .titled("Picture Scale");
inline constexpr auto kTranslate = KEXSDK::ArrayParam<float>{"stTranslate", {0, 0}, 2,
    {-pixels::kLargestSide, pixels::kLargestSide}, "moves the picture right and down", "pixels"}
                                       .titled("Picture Shift");
inline constexpr KEXSDK::Param<float> kFrameRate =
    KEXSDK::Param<float>{"u_frame_rate", 25.0f, {1, 240}, "steps of particle scenes"}
        .in("frames per second")
        .readingAs(25.0f)
        .undeclared();

} // namespace shader
