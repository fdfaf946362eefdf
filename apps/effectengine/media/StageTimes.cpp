// The table and the line of JSON.
#include "effectengine/media/StageTimes.h"

#include "effectengine/media/threadShares.h"

#include <json/json.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace tool::media {

namespace {

struct Step {
    const char* name;
    double ms;
};

/// A stage, with its times for each frame.
struct Stage {
    const char* name;
    double busy;
    std::vector<Step> steps; ///< none when it has but one
};

double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::string lineOf(const Json::Value& value)
{
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "";
    writer["precision"] = 3;
    writer["precisionType"] = "decimal";
    return Json::writeString(writer, value);
}

} // namespace

RunReport::RunReport() : begin_(std::chrono::steady_clock::now()), processorSeconds_(processorSeconds()) { }

void RunReport::print(const StageTimes& times, long long frames, ProgressKind progress) const
{
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
    const double processors = processorSeconds() - processorSeconds_;
    const auto count = double(std::max(1LL, frames));
    const auto perFrame = [=](StageTimes::Duration time) {
        return std::chrono::duration<double, std::milli>(time).count() / count;
    };
    const double whole = seconds * 1000 / count;
    const std::array stages{
        Stage{"read", perFrame(times.read),
            {{"decode", perFrame(times.decode)}, {"convert", perFrame(times.read - times.decode)}}},
        Stage{"effects", perFrame(times.effects + times.convert),
            {{"effects", perFrame(times.effects)}, {"convert", perFrame(times.convert)}}},
        Stage{"write", perFrame(times.write), {}},
    };
    const char* const slowest = std::ranges::max_element(stages, {}, &Stage::busy)->name;

    if (progress == ProgressKind::json) {
        Json::Value stats;
        stats["frames"] = Json::Int64(frames);
        stats["seconds"] = seconds;
        stats["processorSeconds"] = processors;
        stats["cores"] = coreCount();
        for (const Stage& stage : stages) {
            Json::Value& entry = stats["stages"][stage.name];
            entry["busy"] = stage.busy;
            entry["waiting"] = std::max(0.0, whole - stage.busy);
            for (const Step& step : stage.steps)
                entry["steps"][step.name] = step.ms;
        }
        stats["bottleneck"] = slowest;
        Json::Value line;
        line["stats"] = stats;
        std::printf("%s\n", lineOf(line).c_str());
        return;
    }
    std::printf("%lld frames in %s s, %s a second; %s of %u cores at work\n", frames,
        fixedText(seconds, 2).c_str(), fixedText(double(frames) / seconds, 1).c_str(),
        fixedText(processors / seconds, 2).c_str(), coreCount());
    std::printf("%-8s %10s %11s\n", "stage", "ms busy", "ms waiting");
    for (const Stage& stage : stages) {
        std::printf("%-8s %10s %11s", stage.name, fixedText(stage.busy, 2).c_str(),
            fixedText(std::max(0.0, whole - stage.busy), 2).c_str());
        const char* separator = "   ";
        for (const Step& step : stage.steps) {
            std::printf("%s%s %s", separator, step.name, fixedText(step.ms, 2).c_str());
            separator = ", ";
        }
        std::printf("%s\n", stage.name == slowest ? "   the others wait for this one" : "");
    }
}

} // namespace tool::media
