// Unknown members are errors, so that misspelt ones are noticed.
#include "host/graphMembers.h"

#include "text/nearest.h"

#include <algorithm>
#include <cmath>

namespace host {

void fail(const std::string& message) { throw GraphError(GraphFault::content, message); }

void needVersion2(const GraphFile& file, const std::string& what)
{
    if (file.version < 2)
        fail(what + " needs version 2 of the format (\"effectengine\": 2)");
}

void allowMembers(const GraphFile& file, const Json::Value& object, std::vector<std::string_view> allowed,
    const std::vector<std::string_view>& since2)
{
    for (const std::string& name : object.getMemberNames()) {
        if (std::ranges::find(since2, name) != since2.end())
            needVersion2(file, '"' + name + '"');
    }
    allowed.insert(allowed.end(), since2.begin(), since2.end());
    for (const std::string& name : object.getMemberNames()) {
        if (std::ranges::find(allowed, name) == allowed.end())
            fail("there is no member \"" + name + "\" here" + text::didYouMean(allowed, name));
    }
}

std::string stringMember(const Json::Value& object, const char* name)
{
    const Json::Value& value = object[name];
    if (value.isNull())
        return {};
    if (!value.isString())
        fail(std::string("\"") + name + "\" must be a string");
    return value.asString();
}

double numberOf(const Json::Value& value, const char* name)
{
    if (!value.isNumeric() || !std::isfinite(value.asDouble()))
        fail(std::string("\"") + name + "\" must be a number");
    return value.asDouble();
}

std::string shortText(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["useSpecialFloats"] = true;
    constexpr std::size_t kMost = 40;
    const std::string text = Json::writeString(builder, value);
    return text.size() > kMost ? text.substr(0, kMost) + "..." : text;
}

} // namespace host
