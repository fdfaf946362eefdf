// --tonemap and --dither.
#include "effectengine/DepthOptions.h"

#include <CLI/CLI.hpp>

namespace tool {

namespace {

constexpr std::pair<const char*, ToneMapping> kCurves[] = {{"auto", ToneMapping::hable},
    {"none", ToneMapping::none}, {"hable", ToneMapping::hable}, {"mobius", ToneMapping::mobius},
    {"reinhard", ToneMapping::reinhard}, {"gamma", ToneMapping::gamma}, {"linear", ToneMapping::linear},
    {"clip", ToneMapping::clip}};

} // namespace

void addDepthOptions(CLI::App& command, DepthOptions& options)
{
    static const std::map<std::string, ToneMapping> kChoices(std::begin(kCurves), std::end(kCurves));
    command
        .add_option("--tonemap", options.toneMapping,
            "high dynamic range (PQ, HLG) becomes BT.709, by this curve (auto: hable); none, the default, "
            "keeps its codes")
        ->transform(CLI::CheckedTransformer(kChoices).description(
            "auto|none|hable|mobius|reinhard|gamma|linear|clip"))
        ->type_name("");
    command.add_flag(
        "--dither", options.dither, "more than 8 bits a channel are dithered to 8; else they are rounded");
}

const char* nameOf(ToneMapping curve)
{
    for (const auto& [name, value] : kCurves)
        if (value == curve && name != kCurves[0].first)
            return name;
    return "";
}

} // namespace tool
