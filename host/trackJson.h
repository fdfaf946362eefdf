// Values and movements of parameters as members of a graph file.
#pragma once

#include "host/ParameterTrack.h"
#include "host/graphMembers.h"

#include <json/json.h>

namespace host {

/// What a file gives for a parameter. Throws GraphError.
ParameterTrack readTrack(const KEXSDK::ParamInfo& info, const Json::Value& json, const GraphFile& file);

/// The same as JSON; paths of files become absolute.
Json::Value trackJson(const ParameterTrack& track);

} // namespace host
