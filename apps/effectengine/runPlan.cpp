// The description of a run as JSON and as lines for people.
#include "effectengine/runPlan.h"

#include "effectengine/effectList.h"
#include "text/jsonText.h"

#include <json/reader.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace tool {

namespace fs = std::filesystem;

namespace {

using Action = PlannedStep::Action;

// Effects that the GPU can draw and the CPU compute.
constexpr std::array<std::string_view, 2> kTwoForms{"cube-lut", "light-room"};

constexpr std::array<std::pair<Action, const char*>, 4> kCounted{{{Action::make, " to make"},
    {Action::replace, " to replace"}, {Action::skip, " to skip"}, {Action::fail, " cannot be done"}}};

const char* nameOf(Action action)
{
    switch (action) {
    case Action::make:
        return "make";
    case Action::replace:
        return "replace";
    case Action::skip:
        return "skip";
    case Action::fail:
        break;
    }
    return "fail";
}

std::string runsOn(const KEXSDK::EffectInfo& effect)
{
    if (effect.needsGpu)
        return "gpu";
    if (std::ranges::find(kTwoForms, effect.name) == kTwoForms.end())
        return "cpu";
    const char* const path = std::getenv("EFFECTENGINE_PATH");
    const std::string_view given = path ? path : "";
    return given == "gpu" || given == "cpu" ? std::string(given) : "either";
}

// Frames before the one to be shown: a number, or "from-start".
Json::Value historyOf(int frames)
{
    return frames == KEXSDK::History::kFromStart ? Json::Value("from-start") : Json::Value(frames);
}

std::string words(const Json::Value& value)
{
    if (value.isBool())
        return value.asBool() ? "yes" : "no";
    return value.asString();
}

std::string historyText(const Json::Value& history)
{
    if (history.isString())
        return "all frames from the first one on";
    const int frames = history.asInt();
    return frames == 0 ? "none" : std::to_string(frames) + (frames == 1 ? " frame" : " frames");
}

Json::Value jsonOf(const PlannedFile& file)
{
    Json::Value json;
    json["file"] = file.file.string();
    if (file.size) {
        json["width"] = file.size->width;
        json["height"] = file.size->height;
    }
    for (const auto& [name, value] : file.facts)
        json[name] = value;
    return json;
}

Json::Value jsonOf(const std::vector<PlannedFile>& files)
{
    Json::Value list(Json::arrayValue);
    for (const PlannedFile& file : files)
        list.append(jsonOf(file));
    return list;
}

Json::Value jsonOf(const PlannedStep& step)
{
    Json::Value json;
    json["action"] = nameOf(step.action);
    json["reads"] = jsonOf(step.reads);
    json["writes"] = jsonOf(step.writes);
    if (!step.reason.empty())
        json["reason"] = step.reason;
    if (step.action == Action::fail)
        json["code"] = int(step.code);
    return json;
}

std::string textOf(const std::vector<PlannedFile>& files)
{
    std::string text;
    for (const PlannedFile& file : files) {
        std::string details;
        if (file.size)
            details = std::to_string(file.size->width) + " x " + std::to_string(file.size->height);
        for (const auto& [name, value] : file.facts)
            details += (details.empty() ? "" : ", ") + name + " " + words(value);
        text += (text.empty() ? "" : " + ") + file.file.string()
            + (details.empty() ? details : " (" + details + ")");
    }
    return text;
}

std::string line(std::string name, const std::string& value)
{
    constexpr std::size_t kColumn = 10;
    name.resize(std::max(name.size() + 1, kColumn), ' ');
    return name + value + "\n";
}

// The files that the look's parameters and masks name.
std::vector<fs::path> filesOf(const Look& look)
{
    Json::Value json;
    std::istringstream(look.info().json) >> json;
    std::vector<fs::path> files;
    for (const Json::Value& node : json["nodes"]) {
        const Json::Value& parameters = node["parameters"];
        for (const auto* const parameter : describeParameters(effectNamed(node["effect"].asString()))) {
            if (parameter->type == KEXSDK::ParamType::filePath && parameters[parameter->name].isString())
                files.emplace_back(parameters[parameter->name].asString());
        }
        const Json::Value& mask = node["mask"];
        if (mask.isString())
            files.emplace_back(mask.asString());
        else if (mask.isObject() && mask["picture"].isString())
            files.emplace_back(mask["picture"].asString());
    }
    return files;
}

} // namespace

void addDryRunOptions(CLI::App& command, DryRunOptions& options)
{
    CLI::Option* const dryRun = command.add_flag("--dry-run", options.wanted,
        "write nothing; tell what would be read and written, and which effects would run");
    command.add_flag("--json", options.json, "what --dry-run tells as JSON")->needs(dryRun);
}

Action actionFor(const fs::path& target)
{
    std::error_code ignored;
    return fs::exists(target, ignored) ? Action::replace : Action::make;
}

RunPlan::RunPlan(std::string verb) : verb_(std::move(verb)) { }

void RunPlan::addEffect(std::string node, const std::string& name)
{
    const KEXSDK::EffectInfo& effect = effectNamed(name);
    effects_.push_back({std::move(node), effect.name, runsOn(effect), historyOf(effect.history.frames)});
}

void RunPlan::setLook(const Look& look)
{
    for (const EffectHostNode& node : look.nodes())
        addEffect(node.id, node.effect->name);
    history_ = historyOf(look.info().historyFrames);
    lookFiles_ = filesOf(look);
}

void RunPlan::setEffects(const std::vector<std::string>& names)
{
    for (const std::string& name : names)
        addEffect("", name);
}

void RunPlan::setFact(std::string name, Json::Value value)
{
    facts_.emplace_back(std::move(name), std::move(value));
}

void RunPlan::add(PlannedStep step) { steps_.push_back(std::move(step)); }

std::size_t RunPlan::count(Action action) const
{
    return std::size_t(std::ranges::count(steps_, action, &PlannedStep::action));
}

Json::Value RunPlan::json() const
{
    Json::Value json;
    json["verb"] = verb_;
    Json::Value& effects = json["effects"] = Json::Value(Json::arrayValue);
    for (const Effect& effect : effects_) {
        Json::Value one;
        if (!effect.node.empty())
            one["node"] = effect.node;
        one["effect"] = effect.name;
        one["runsOn"] = effect.runsOn;
        one["history"] = effect.history;
        effects.append(one);
    }
    if (history_)
        json["history"] = *history_;
    Json::Value& files = json["lookFiles"] = Json::Value(Json::arrayValue);
    for (const fs::path& file : lookFiles_)
        files.append(file.string());
    for (const auto& [name, value] : facts_)
        json[name] = value;
    Json::Value& steps = json["steps"] = Json::Value(Json::arrayValue);
    for (const PlannedStep& step : steps_)
        steps.append(jsonOf(step));
    for (const Action action : {Action::make, Action::replace, Action::skip, Action::fail})
        json["counts"][nameOf(action)] = Json::UInt64(count(action));
    return json;
}

std::string RunPlan::text() const
{
    std::string effects;
    for (const Effect& effect : effects_) {
        const char* const where = effect.runsOn == "gpu" ? "GPU"
            : effect.runsOn == "cpu"                     ? "CPU"
                                                         : "GPU, or CPU where OpenGL is software";
        effects += (effects.empty() ? "" : ", ") + effect.name + " (" + where + ")";
    }
    std::string text = line("effects", effects);
    if (history_)
        text += line("history", historyText(*history_));
    for (const fs::path& file : lookFiles_)
        text += line("reads", file.string());
    for (const auto& [name, value] : facts_)
        text += line(name, words(value));
    for (const PlannedStep& step : steps_)
        text += line(nameOf(step.action),
            textOf(step.reads) + (step.writes.empty() ? "" : " -> " + textOf(step.writes))
                + (step.reason.empty() ? "" : ": " + step.reason));
    std::string counts;
    for (const auto& [action, words] : kCounted) {
        if (const std::size_t n = count(action))
            counts += (counts.empty() ? "" : ", ") + std::to_string(n) + words;
    }
    return text + line("in all", counts.empty() ? "nothing" : counts);
}

void print(const RunPlan& plan, const DryRunOptions& options)
{
    std::fputs((options.json ? text::jsonText(plan.json()) : plan.text()).c_str(), stdout);
}

} // namespace tool
