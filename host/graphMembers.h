// Reading of the members of a graph file: what is allowed, in which version, and errors that name the place.
#pragma once

#include "host/GraphError.h"

#include <json/json.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What all of one file's readers need to know of it.
struct GraphFile {
    std::filesystem::path directory; ///< where its paths count from
    int version = 1;                 ///< of the format, as its member "effectengine" says
};

constexpr int kNewestGraphVersion = 2;

[[noreturn]] void fail(const std::string& message);

/// Throws GraphError when the file is of version 1; `what` names what it may not use, for the message.
void needVersion2(const GraphFile& file, const std::string& what);

/// Throws GraphError for a member that is in neither list, and for one of `since2` in a file of version 1.
void allowMembers(const GraphFile& file, const Json::Value& object, std::vector<std::string_view> allowed,
    const std::vector<std::string_view>& since2 = {});

/// The member's text, or "" without it. Throws GraphError when it is no string.
std::string stringMember(const Json::Value& object, const char* name);

/// Throws GraphError, with the name, when the value is no finite number.
double numberOf(const Json::Value& value, const char* name);

/// The value as JSON in one line, cut where it is long: for messages.
std::string shortText(const Json::Value& value);

} // namespace host
