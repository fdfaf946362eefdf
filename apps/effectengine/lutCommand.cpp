// lut check and lut info: lookup-table files, as the engine reads them.
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "effects/lut/LutFile.h"
#include "effects/lut/lutTiles.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

namespace {

lut::LutFile readLut(const std::string& path)
{
    if (!std::filesystem::exists(path))
        throw ToolError(ExitCode::missingInput, "no such file: " + path);
    const lut::LutFormat format = lut::formatOf(path);
    if (format == lut::LutFormat::none)
        throw ToolError(ExitCode::unreadable, path + ": the name ends neither in .cube nor in .3dl");
    std::ifstream stream;
    if (!lut::openLut(path, stream))
        throw ToolError(ExitCode::unreadable, path + ": cannot be opened for reading");
    lut::LutFile file = format == lut::LutFormat::cube ? lut::parseCube(stream) : lut::parse3dl(stream);
    if (file.status != lut::LutStatus::success) {
        const std::string place = file.line > 0 ? path + ":" + std::to_string(file.line) : path;
        throw ToolError(ExitCode::unreadable,
            place + ": " + file.reason + " (status " + std::to_string(int(file.status)) + ")");
    }
    return file;
}

void warnOfIncompleteLines(const std::string& path, const lut::LutFile& file)
{
    if (file.incompleteLines > 0)
        std::fprintf(stderr,
            "effectengine: warning: %s:%d: %d table line(s) hold fewer than three numbers; the missing ones "
            "count as 0\n",
            path.c_str(), file.firstIncompleteLine, file.incompleteLines);
}

void check(const std::string& path)
{
    const lut::LutFile file = readLut(path);
    warnOfIncompleteLines(path, file);
    std::printf("%s: can be used, %d x %d x %d, domain %g %g %g to %g %g %g\n", path.c_str(), file.size,
        file.size, file.size, double(file.domainMin[0]), double(file.domainMin[1]), double(file.domainMin[2]),
        double(file.domainMax[0]), double(file.domainMax[1]), double(file.domainMax[2]));
}

// Outputs lie on a 0..255 scale; files hold 0..1.
void printRange(const char* name, const lut::LutFile& file, float lut::LutEntry::*channel)
{
    const auto [least, most] = std::ranges::minmax(file.entries, {}, channel);
    std::printf("%-9s %g to %g\n", name, double(least.*channel) / 255, double(most.*channel) / 255);
}

void info(const std::string& path)
{
    const lut::LutFile file = readLut(path);
    warnOfIncompleteLines(path, file);
    const auto line = [](const char* name, const std::array<float, 3>& v) {
        std::printf("%-9s %g %g %g\n", name, double(v[0]), double(v[1]), double(v[2]));
    };
    std::printf("file      %s\n", path.c_str());
    std::printf("format    %s\n", lut::formatOf(path) == lut::LutFormat::cube ? "Cube" : "3DL");
    std::string title = file.title;
    std::ranges::replace_if(
        title, [](unsigned char c) { return c < ' ' || c == 127; }, '?'); // no escapes
    if (!title.empty())
        std::printf("title     %s\n", title.c_str());
    std::printf("size      %d x %d x %d\n", file.size, file.size, file.size);
    line("domain", file.domainMin);
    line("      to", file.domainMax);
    printRange("red", file, &lut::LutEntry::r);
    printRange("green", file, &lut::LutEntry::g);
    printRange("blue", file, &lut::LutEntry::b);
    if (const lut::TileLayout* const tiles = lut::tileLayoutOf(file.size))
        std::printf("texture   %d x %d tiles\n", tiles->columns, tiles->rows);
    else
        std::printf("texture   no layout for this size; the CPU applies it\n");
}

} // namespace

void addLutCommand(CLI::App& tool)
{
    CLI::App* const command = tool.add_subcommand("lut", "Examines lookup-table files (.cube, .3dl).");
    command->require_subcommand(1);
    const auto path = std::make_shared<std::string>();
    const auto add = [&](const char* name, const char* help, void (*run)(const std::string&)) {
        CLI::App* const verb = command->add_subcommand(name, help);
        verb->add_option("FILE", *path, "lookup table, .cube or .3dl")->required();
        verb->callback([path, run] { run(*path); });
    };
    add("check", "Says whether the engine can use the file, or why not (exit code 4).", check);
    add("info", "Shows what the file holds.", info);
}
