// lut check, info and fix: lookup-table files, as the engine reads them.
#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "effectengine/lutOrder.h"
#include "effectengine/lutRepair.h"
#include "lut/LutFile.h"
#include "lut/lutTiles.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

namespace tool {

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
        warn(path + ":" + std::to_string(file.firstIncompleteLine) + ": "
            + std::to_string(file.incompleteLines)
            + " table line(s) hold fewer than three numbers; the missing ones count as 0");
}

/// The text, quoted where that is needed, as one word of a shell's command line.
std::string shellWord(const std::string& text)
{
    const auto plain = [](unsigned char c) {
        return std::isalnum(c) || std::string_view("/._+-,:=@%").find(char(c)) != std::string_view::npos;
    };
    if (!text.empty() && std::ranges::all_of(text, plain))
        return text;
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

/// A name beside the table for its repaired copy, under which there is no file yet.
std::string freeCubeName(std::filesystem::path path)
{
    const std::string stem = path.stem().string();
    path.replace_extension(".cube");
    for (int number = 2; std::filesystem::exists(path); ++number)
        path.replace_filename(stem + "-" + std::to_string(number) + ".cube");
    return path.string();
}

/// Warns when the table seems to be in another order than the engine reads, with the command that repairs it.
/// @param out  name for the repaired table in that command
void warnOfOrder(const std::string& path, const lut::LutFile& file, const std::string& out)
{
    if (lut::formatOf(path) == lut::LutFormat::threeDl && looksBlueFirst(file))
        warn(path
            + ": it looks as if blue varied fastest, and the engine takes red for that; to turn it round: "
            + "effectengine lut fix --blue-first " + shellWord(path) + " " + shellWord(out));
}

void check(const std::string& path)
{
    const lut::LutFile file = readLut(path);
    warnOfIncompleteLines(path, file);
    warnOfOrder(path, file, freeCubeName(path));
    std::printf("%s: can be used, %d x %d x %d, domain %g %g %g to %g %g %g\n", path.c_str(), file.size,
        file.size, file.size, double(file.domainMin[0]), double(file.domainMin[1]), double(file.domainMin[2]),
        double(file.domainMax[0]), double(file.domainMax[1]), double(file.domainMax[2]));
}

// Prints the least and the largest value of a channel on the scale of files, 0..1; entries are on 0..255.
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

void fix(const std::string& in, const std::filesystem::path& out, const LutRepairOptions& options)
{
    if (!std::filesystem::exists(in))
        throw ToolError(ExitCode::missingInput, "no such file: " + in);
    if (lut::formatOf(in) == lut::LutFormat::none)
        throw ToolError(ExitCode::unreadable, in + ": the name ends neither in .cube nor in .3dl");
    if (lut::formatOf(out.string()) != lut::LutFormat::cube)
        throw ToolError(
            ExitCode::cannotWrite, "cannot write " + out.string() + ": the name must end in .cube");
    const LutRepair repair = repairLut(in, options);
    std::istringstream result(repair.text);
    const lut::LutFile file = lut::parseCube(result);
    if (file.status != lut::LutStatus::success)
        throw ToolError(ExitCode::unreadable, in + ": cannot be put right: " + file.reason);
    writeTextFile(out, repair.text);
    if (!options.blueFirst)
        warnOfOrder(in, file, out.string());
    for (const std::string& change : repair.changes)
        std::printf("%s: %s\n", in.c_str(), change.c_str());
    if (!repair.changes.empty())
        return;
    std::ifstream stream;
    const bool usable = lut::openLut(in, stream) && lut::parseCube(stream).status == lut::LutStatus::success;
    std::printf(
        "%s: %s\n", in.c_str(), usable ? "nothing to put right" : "only the lines had to be put right");
}

} // namespace

void addLutCommand(CLI::App& tool)
{
    CLI::App* const command =
        tool.add_subcommand("lut", "Examines and repairs lookup-table files (.cube, .3dl).");
    command->require_subcommand(1);
    const auto path = std::make_shared<std::string>();
    const auto add = [&](const char* name, const char* help, void (*run)(const std::string&)) {
        CLI::App* const verb = command->add_subcommand(name, help);
        verb->add_option("FILE", *path, "lookup table, .cube or .3dl")->required();
        verb->callback([path, run] { run(*path); });
    };
    add("check", "Says whether the engine can use the file, or why not (exit code 4).", check);
    add("info", "Shows what the file holds.", info);

    struct FixOptions {
        std::string in;
        std::filesystem::path out;
        LutRepairOptions repair;
    };
    const auto options = std::make_shared<FixOptions>();
    CLI::App* const verb = command->add_subcommand("fix",
        "Writes a table that the engine reads: other spellings, a wrong or missing size, one-dimensional and "
        "too large tables are put right. Nothing is invented: a table with missing lines stays unreadable.");
    verb->add_option("IN", options->in, "lookup table, .cube or .3dl")->required();
    verb->add_option("OUT", options->out, "the repaired table, .cube")->required();
    verb->add_flag(
        "--blue-first", options->repair.blueFirst, "blue varies fastest in the file, as in most 3DL files");
    verb->callback([options] { fix(options->in, options->out, options->repair); });
    command->footer("Examples:\n"
                    "  effectengine lut check film.cube\n"
                    "  effectengine lut fix broken.cube film.cube\n"
                    "  effectengine lut fix --blue-first film.3dl film.cube");
}

} // namespace tool
