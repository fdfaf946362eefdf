// The values that show what a parameter does.
#pragma once

#include "effectengine/pictureFiles.h"
#include "hosting/parameterValue.h"

#include <set>

namespace tool {

struct SweepStep {
    host::ParameterValue value;
    std::string text;  ///< as a command line takes it
    std::string label; ///< for people: a mode's name, or the text
};

/// Names of parameters that come with the kind of a node, such as times and placement: so many effects have
/// the very same ones that they tell nothing about one of them.
const std::set<std::string>& commonParameters();

/// Numbers as a command line takes them.
std::string commandText(const std::vector<double>& numbers);

/// From one end of the advised range to the other, or every value of a mode; lists of numbers move together.
/// Empty for files, common parameters, and those without a range.
/// @param size  of the pictures, the range of positions
std::vector<SweepStep> sweepOf(const KEXSDK::ParamInfo& param, PictureSize size);

} // namespace tool
