// The choice of a duration, and the looks that cannot do without.
#include "effectengine/media/totalTime.h"

#include "effectengine/ToolError.h"

#include <json/reader.h>

#include <algorithm>

namespace tool::media {

namespace {

bool countsPercent(const Json::Value& value)
{
    if (value.isObject() && value.isMember("keyframes")) {
        const Json::Value& keyframes = value["keyframes"];
        return std::any_of(keyframes.begin(), keyframes.end(),
            [](const Json::Value& keyframe) { return keyframe.isObject() && keyframe.isMember("percent"); });
    }
    return (value.isObject() || value.isArray()) && std::any_of(value.begin(), value.end(), countsPercent);
}

bool countsPercent(const Look& look)
{
    const std::string text = look.info().json;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value graph;
    return reader->parse(text.data(), text.data() + text.size(), &graph, nullptr) && countsPercent(graph);
}

} // namespace

double totalTime(const InputOptions& options, double known, const Look* look)
{
    if (options.total)
        return *options.total;
    if (known > 0)
        return known;
    if (look && countsPercent(*look))
        throw ToolError(ExitCode::usage,
            "keyframes count in percent of the duration, which the input does not tell; give --total-time "
            "SECONDS");
    return FrameTime().total;
}

} // namespace tool::media
