// The HTML of an effect's page and of the index, from the catalogue.
#include "effectengine/gallery/effectPages.h"

#include "effectengine/PartialFile.h"
#include "effectengine/gallery/pageParts.h"
#include "effectengine/gallery/pageText.h"

#include <string>

namespace tool {

namespace fs = std::filesystem;

namespace {

std::string text(const Json::Value& value) { return escaped(value.asString()); }

std::string pictureAddress(const Json::Value& file) { return "../pictures/" + text(file); }

std::string sizeAttributes(const Json::Value& size)
{
    return "width=\"" + text(size["width"]) + "\" height=\"" + text(size["height"]) + "\"";
}

// "0.5", "1, 0.9, 0.3"
std::string numbers(const Json::Value& value)
{
    if (!value.isArray())
        return value.isNull() ? "" : text(value);
    std::string list;
    for (const Json::Value& number : value)
        list += (list.empty() ? "" : ", ") + text(number);
    return list;
}

std::string figures(const Json::Value& data, const Json::Value& effect)
{
    const Json::Value& pictures = effect["pictures"];
    if (!pictures.isMember("still"))
        return "<p>There is no picture: the effect could not be made where these pages were.</p>\n";
    std::string out = "<div class=\"pictures\">\n<figure><img src=\"" + pictureAddress(pictures["still"])
        + "\" " + sizeAttributes(data["size"]) + " alt=\"A photograph after " + text(effect["title"])
        + "\"></figure>\n";
    if (pictures.isMember("loop"))
        out += "<figure class=\"loop\"><span class=\"strip\" role=\"img\" aria-label=\""
            + text(effect["title"]) + " in motion\" style=\"aspect-ratio: " + text(data["cell"]["width"])
            + " / " + text(data["cell"]["height"]) + "; background-image: url("
            + pictureAddress(pictures["loop"]) + "); --cells: " + text(data["loop"]["frames"]) + "; --rate: "
            + text(data["loop"]["rate"]) + "\"></span><figcaption>In motion</figcaption></figure>\n";
    return out + "</div>\n";
}

std::string facts(const Json::Value& effect)
{
    const auto row = [](const std::string& name, const std::string& value) {
        return "<dt>" + name + "</dt><dd>" + value + "</dd>\n";
    };
    std::string history = "this frame alone";
    if (effect["history"] == "frames")
        history = "this frame and up to " + text(effect["historyFrames"]) + " before it";
    if (effect["history"] == "from-start")
        history = "every frame since the first";
    return row("Name", text(effect["name"])) + row("GUID", text(effect["guid"]))
        + row("Family", text(effect["family"])) + row("Pictures in", text(effect["inputs"]))
        + row("Depends on", history) + row("Alpha", text(effect["alpha"]))
        + row("Random", effect["random"].asBool() ? "yes" : "no")
        + row("Needs the GPU", effect["needsGpu"].asBool() ? "yes" : "no");
}

std::string parameterTable(const Json::Value& effect)
{
    std::string rows;
    for (const Json::Value& parameter : effect["parameters"]) {
        std::string meaning = text(parameter["help"]);
        std::string values;
        for (const Json::Value& choice : parameter["values"])
            values += (values.empty() ? ": " : ", ") + text(choice["value"]) + " " + text(choice["name"]);
        meaning += values;
        const Json::Value& range = parameter["advised"];
        std::string advised = range.isArray() ? text(range[0]) + " to " + text(range[1]) : "";
        if (const std::string unit = text(parameter["unit"]); !unit.empty())
            advised += " " + unit;
        std::string initial =
            numbers(parameter[parameter.isMember("hostDefault") ? "hostDefault" : "default"]);
        if (initial.empty())
            initial =
                "to be set" + (parameter.isMember("example") ? ", say " + numbers(parameter["example"]) : "");
        rows += "<tr><td>" + text(parameter["title"]) + "</td><td><code>" + text(parameter["name"])
            + "</code></td><td>" + text(parameter["type"]) + "</td><td>" + initial + "</td><td>" + advised
            + "</td><td>" + meaning + "</td></tr>\n";
    }
    return "<table>\n<thead><tr><th>Title</th><th>Name</th><th>Type</th><th>Default</th>"
           "<th>Advised</th><th>Meaning</th></tr></thead>\n<tbody>\n"
        + rows + "</tbody>\n</table>\n";
}

std::string command(const Json::Value& effect)
{
    const std::string name = text(effect["name"]);
    if (effect["inputs"].asUInt() > 1)
        return "effectengine transition " + name + " from.jpg to.jpg out.png\neffectengine transition " + name
            + " from.mp4 to.mp4 out.mp4";
    const std::string video = "effectengine video in.mp4 out.mp4 -e " + name;
    return effect["history"] == "none" ? "effectengine apply " + name + " in.jpg out.png\n" + video : video;
}

std::string elementName(const Json::Value& effect)
{
    return (effect["family"] == "transition" ? "ee-transition-" : "ee-") + text(effect["name"]);
}

// The element that the effect is in GStreamer.
std::string pipeline(const Json::Value& effect)
{
    const std::string element = elementName(effect);
    if (effect["inputs"].asUInt() > 1)
        return "gst-launch-1.0 " + element
            + " name=both ! videoconvert ! autovideosink \\\n"
              "    filesrc location=from.mp4 ! decodebin ! both. \\\n"
              "    filesrc location=to.mp4 ! decodebin ! both.";
    return "gst-launch-1.0 filesrc location=in.mp4 ! decodebin ! videoconvert ! " + element
        + " ! videoconvert ! autovideosink\ngst-inspect-1.0 " + element;
}

std::string code(const Json::Value& effect)
{
    std::string lines = "GetFilter(&quot;" + text(effect["guid"]) + "&quot;, width, height, &amp;filter);\n";
    for (unsigned i = 0; i < effect["inputs"].asUInt(); ++i) {
        const std::string index = std::to_string(i);
        lines += "SetInputImage(filter, pictures[" + index + "], " + index + ");\n";
    }
    return lines + "setParamFloatValue(filter, kEffectCurrentTime, seconds);\nDoFilter(filter, &amp;output);";
}

std::string effectPage(const Json::Value& data, const Json::Value& effect)
{
    return filledIn(pageParts::effectPageHtml,
        {{"title", text(effect["title"])}, {"summary", text(effect["summary"])},
            {"pictures", figures(data, effect)}, {"facts", facts(effect)},
            {"parameters", parameterTable(effect)}, {"command", command(effect)},
            {"pipeline", pipeline(effect)}, {"code", code(effect)}});
}

std::string indexPage(const Json::Value& data)
{
    std::string families;
    std::string sections;
    std::string family;
    for (const Json::Value& effect : data["effects"]) {
        if (const std::string next = text(effect["family"]); next != family) {
            sections += (family.empty() ? "" : "</ul>\n") + ("<h2 id=\"" + next + "\">" + next)
                + "</h2>\n<ul class=\"effects\">\n";
            families += "<a href=\"#" + next + "\">" + next + "</a>\n";
            family = next;
        }
        sections += "<li><a href=\"" + text(effect["name"]) + ".html\">";
        if (effect["pictures"].isMember("small"))
            sections += "<img src=\"" + pictureAddress(effect["pictures"]["small"]) + "\" "
                + sizeAttributes(data["cell"]) + " alt=\"\" loading=\"lazy\">";
        sections += text(effect["title"]) + "</a></li>\n";
    }
    return filledIn(pageParts::effectIndexHtml,
        {{"families", families}, {"count", std::to_string(data["effects"].size())},
            {"effects", sections + "</ul>\n"}});
}

} // namespace

void writeEffectPages(const Json::Value& data, const fs::path& directory)
{
    for (const Json::Value& effect : data["effects"])
        writeTextFile(directory / (effect["name"].asString() + ".html"), effectPage(data, effect));
    writeTextFile(directory / "index.html", indexPage(data));
    writeTextFile(directory / "style.css", std::string(pageParts::effectPageCss));
}

} // namespace tool
