// Values that make every effect visible, for benches, sheets and tests.
#pragma once

#include "host/GraphDescription.h"
#include "host/Host.h"

namespace host {

/// A value that shows the effect: positions, whose examples are made for 640 x 480, are scaled to the given
/// size; files become a lookup table that bends every channel.
ParameterValue exampleValue(const KEXSDK::ParamInfo& param, unsigned width, unsigned height);

/// Stores such a value for each parameter that the effect reads but does not declare.
void setExampleValues(
    Filter& filter, std::span<const KEXSDK::ParamInfo* const> params, unsigned width, unsigned height);

/// The same for a node of a graph: gives it the values that it has not got.
void addExamples(GraphNode& node, unsigned width, unsigned height);

} // namespace host
