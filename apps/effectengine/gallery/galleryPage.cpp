// The gallery's data as JSON, and the template that it goes into.
#include "effectengine/gallery/galleryPage.h"

#include "effectengine/effectList.h"
#include "effectengine/gallery/pageParts.h"
#include "effectengine/gallery/pageText.h"
#include "hosting/exampleValues.h"

#include <json/writer.h>

namespace tool {

namespace fs = std::filesystem;

namespace {

Json::Value sweepEntry(const KEXSDK::ParamInfo& param, const std::string& file, PictureSize work)
{
    Json::Value json;
    json["name"] = param.name;
    json["file"] = file;
    for (const SweepStep& step : sweepOf(param, work)) {
        json["values"].append(step.text);
        json["labels"].append(step.label);
    }
    return json;
}

Json::Value picturesOf(
    const KEXSDK::EffectInfo& effect, const GalleryLayout& layout, const fs::path& directory)
{
    Json::Value json(Json::objectValue);
    const auto add = [&](const char* name, const std::string& file) {
        if (fs::exists(directory / file))
            json[name] = file;
    };
    add("still", stillFile(effect));
    add("small", thumbnailFile(effect));
    add("loop", loopFile(effect));
    json["sweeps"] = Json::Value(Json::arrayValue);
    const auto params = describeParameters(effect);
    for (std::size_t i = 0; i < params.size(); ++i) {
        const std::string file = sweepFile(effect, i);
        if (fs::exists(directory / file))
            json["sweeps"].append(sweepEntry(*params[i], file, layout.work()));
    }
    json["examples"] = Json::Value(Json::objectValue);
    for (const KEXSDK::ParamInfo* const param : params) {
        if (!param->declared && param->type != KEXSDK::ParamType::filePath)
            json["examples"][param->name] = commandText(std::get<std::vector<double>>(
                host::exampleValue(*param, layout.work().width, layout.work().height)));
    }
    return json;
}

// JSON for a script element, in which "</" could end the element early.
std::string scriptData(const Json::Value& data)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    std::string text = Json::writeString(builder, data);
    for (std::size_t at = text.find("</"); at != std::string::npos; at = text.find("</", at + 3))
        text.replace(at, 2, "<\\/");
    return text;
}

} // namespace

Json::Value galleryData(
    std::span<const KEXSDK::EffectInfo> effects, const GalleryLayout& layout, const fs::path& pictures)
{
    Json::Value data = catalogueOf(effects);
    data["cell"]["width"] = layout.cell.width;
    data["cell"]["height"] = layout.cell.height;
    data["size"]["width"] = layout.work().width;
    data["size"]["height"] = layout.work().height;
    data["moment"] = kMoment;
    data["duration"] = kDuration;
    data["original"] = kOriginalFile;
    data["second"] = kSecondFile;
    for (const std::string& name : commonParameters())
        data["common"].append(name);
    data["loop"]["frames"] = kLoopFrames;
    data["loop"]["rate"] = kLoopRate;
    for (Json::ArrayIndex i = 0; i < data["effects"].size(); ++i)
        data["effects"][i]["pictures"] = picturesOf(effects[i], layout, pictures);
    return data;
}

std::string galleryPage(const Json::Value& data, const std::string& title)
{
    return filledIn(pageParts::galleryHtml,
        {{"mark", kPageMark}, {"title", escaped(title)}, {"style", std::string(pageParts::galleryCss)},
            {"script", std::string(pageParts::galleryJs)}, {"data", scriptData(data)}});
}

} // namespace tool
