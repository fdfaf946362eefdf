// A lenient reader of Cube and 3DL files as other programs write them, and the writer of Cube files.
#include "effectengine/lutRepair.h"

#include "effectengine/ToolError.h"
#include "lut/LutFile.h"
#include "lut/LutLines.h"
#include "lut/LutNumbers.h"
#include "text/Text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>
#include <sstream>
#include <utility>

namespace tool {

namespace {

using Entry = std::array<float, 3>;

constexpr int kSizeFromOneDimension = 33;

std::string readText(const std::filesystem::path& file)
{
    std::ifstream stream;
    if (!lut::openLut(file.string(), stream))
        throw ToolError(ExitCode::unreadable, file.string() + ": cannot be opened for reading");
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// The text as UTF-8 with line feeds; UTF-16 is told by its byte-order mark.
std::string plainText(std::string text, std::vector<std::string>& changes)
{
    const auto byte = [&](std::size_t i) { return (unsigned char)text[i]; };
    const bool little = text.size() > 1 && byte(0) == 0xFF && byte(1) == 0xFE;
    const bool big = text.size() > 1 && byte(0) == 0xFE && byte(1) == 0xFF;
    if (little || big) {
        std::u16string wide;
        for (std::size_t i = 2; i + 1 < text.size(); i += 2)
            wide += char16_t(little ? byte(i) | byte(i + 1) << 8 : byte(i) << 8 | byte(i + 1));
        text = text::utf8(wide);
        changes.push_back("the file was UTF-16 text");
    } else if (text.starts_with("\xEF\xBB\xBF")) {
        text.erase(0, 3);
    }
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        lines += text[i] == '\r' ? '\n' : text[i];
    }
    return lines;
}

std::string upper(std::string_view word)
{
    std::string text(word);
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return text;
}

std::string trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos
        ? ""
        : std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

class Repairer {
public:
    Repairer(const std::filesystem::path& file, const LutRepairOptions& options)
        : name_(file.string()),
          threeDl_(lut::formatOf(name_) == lut::LutFormat::threeDl),
          options_(options)
    {
    }

    LutRepair repair()
    {
        std::istringstream lines(plainText(readText(name_), changes_));
        for (std::string line; std::getline(lines, line);) {
            ++line_;
            readLine(trimmed(line));
        }
        checkDomain();
        if (threeDl_)
            scaleThreeDl();
        settleSize();
        if (options_.blueFirst)
            reorder();
        return {cubeText(), std::move(changes_)};
    }

private:
    void note(const std::string& change)
    {
        changes_.push_back("line " + std::to_string(line_) + ": " + change);
    }
    [[noreturn]] void refuse(const std::string& reason, bool here = true) const
    {
        throw ToolError(
            ExitCode::unreadable, name_ + (here ? ":" + std::to_string(line_) : "") + ": " + reason);
    }

    void readLine(std::string line)
    {
        if (line.empty() || line.starts_with('#'))
            return;
        std::string_view rest = line;
        const std::string first(lut::takeWord(rest));
        if (std::isalpha((unsigned char)first[0]) && upper(first) != "NAN" && upper(first) != "INF")
            readKeyword(first, trimmed(rest));
        else if (threeDl_ && first == "3DMESH")
            return;
        else
            readNumbers(line);
    }

    void readKeyword(const std::string& word, const std::string& rest)
    {
        const std::string keyword = upper(word);
        const auto known = [&](const char* name) {
            if (keyword != name)
                return false;
            if (word != keyword)
                note("keyword " + word + " was not in capitals");
            return true;
        };
        if (threeDl_)
            note("keyword " + word + " is left out");
        else if (known("TITLE"))
            readTitle(rest);
        else if (known("DOMAIN_MIN"))
            low_ = bounds(rest);
        else if (known("DOMAIN_MAX"))
            high_ = bounds(rest);
        else if (known("LUT_3D_SIZE") || known("LUT_1D_SIZE"))
            readSize(keyword == "LUT_1D_SIZE", rest);
        else if (keyword == "LUT_3D_INPUT_RANGE" || keyword == "LUT_1D_INPUT_RANGE")
            readInputRange(rest);
        else
            note("keyword " + word + " is not known and left out");
    }

    void readTitle(std::string rest)
    {
        if (!title_.empty())
            return note("the second title is left out");
        if (!rest.starts_with('"') || !rest.ends_with('"') || rest.size() < 2)
            note("the title was not in quotes");
        std::erase(rest, '"');
        title_ = rest;
    }

    Entry bounds(std::string_view rest)
    {
        Entry numbers{};
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const auto number = lut::takeFiniteFloat(rest);
            if (!number && i != 1)
                refuse("a domain bound needs three numbers");
            if (!number) {
                note("one number stood for all three channels");
                numbers.fill(numbers[0]);
                break;
            }
            numbers[i] = *number;
        }
        return numbers;
    }

    void readInputRange(std::string_view rest)
    {
        const auto low = lut::takeFiniteFloat(rest);
        const auto high = lut::takeFiniteFloat(rest);
        if (!low || !high)
            refuse("an input range needs two numbers");
        low_.fill(*low);
        high_.fill(*high);
        note("the input range became DOMAIN_MIN and DOMAIN_MAX");
    }

    void readSize(bool one, std::string_view rest)
    {
        const auto size = lut::takeInt(rest);
        if (!size)
            return note("the size was no number");
        if (size_ != 0)
            return note("the second size is left out");
        oneDimensional_ = one;
        size_ = *size;
    }

    void readNumbers(std::string line)
    {
        const std::size_t comment = line.find('#');
        if (comment != std::string::npos)
            line.erase(comment);
        separate(line);
        std::vector<float> numbers;
        std::string_view rest = line;
        while (const auto number = lut::takeFloat(rest))
            numbers.push_back(*number);
        if (!trimmed(rest).empty() || std::ranges::any_of(numbers, [](float n) { return !std::isfinite(n); }))
            refuse("not three numbers: " + line.substr(0, 40));
        if (threeDl_ && size_ == 0 && numbers.size() >= 3) { // the grid comes first
            size_ = int(numbers.size());
            return;
        }
        if (numbers.size() != 3)
            refuse(std::to_string(numbers.size()) + " number(s) where three belong");
        entries_.push_back({numbers[0], numbers[1], numbers[2]});
    }

    // Puts points for decimal commas ("0,5 0,25 1,0"), and blanks for separators ("0.5, 0.25" or "0.5;0.25").
    void separate(std::string& line)
    {
        const auto commas = std::ranges::count(line, ',');
        std::string_view rest = line;
        int words = 0;
        while (!lut::takeWord(rest).empty())
            ++words;
        const bool decimal = commas > 0 && words >= 3 && line.find('.') == std::string::npos
            && line.find(", ") == std::string::npos && !line.ends_with(',');
        if (commas > 0 && !std::exchange(notedCommas_, true))
            note(decimal ? "numbers had decimal commas" : "numbers stood between commas");
        std::ranges::replace(line, ',', decimal ? '.' : ' ');
        std::ranges::replace(line, ';', ' ');
    }

    void checkDomain()
    {
        for (std::size_t i = 0; i < 3; ++i) {
            if (low_[i] > high_[i]) {
                std::swap(low_[i], high_[i]);
                changes_.push_back("DOMAIN_MIN and DOMAIN_MAX were exchanged");
            } else if (low_[i] == high_[i]) {
                low_[i] = 0;
                high_[i] = 1;
                changes_.push_back("an empty domain became 0 to 1");
            }
        }
    }

    // Scales entries to 0..1. The engine takes 3DL numbers for 12 bits; here the largest one tells the depth.
    void scaleThreeDl()
    {
        float largest = 0;
        for (const Entry& entry : entries_)
            largest = std::max({largest, entry[0], entry[1], entry[2]});
        const float full = largest > 4095 ? 65535 : largest > 1023 ? 4095 : 1023;
        if (full != 4095)
            changes_.push_back("the numbers are of " + std::string(full > 4095 ? "16" : "10") + " bits");
        for (Entry& entry : entries_)
            std::ranges::transform(entry, entry.begin(), [&](float n) { return n / full; });
        changes_.push_back("the 3DL table became a Cube table");
    }

    void settleSize()
    {
        if (entries_.empty())
            refuse("there is no table", false);
        if (oneDimensional_)
            return expand();
        const auto cube = [](int n) { return std::size_t(n) * std::size_t(n) * std::size_t(n); };
        const int root = int(std::lround(std::cbrt(double(entries_.size()))));
        if (size_ >= 2 && size_ <= 256 && entries_.size() > cube(size_) && cube(root) != entries_.size()) {
            changes_.push_back(
                std::to_string(entries_.size() - cube(size_)) + " lines after the table are left out");
            entries_.resize(cube(size_));
        }
        if (cube(root) == entries_.size() && root != size_ && root >= 2) {
            changes_.push_back((size_ == 0 ? "the size was missing" : "the size was " + std::to_string(size_))
                + "; the table has " + std::to_string(root) + " entries per axis");
            size_ = root;
        }
        if (size_ < 2 || entries_.size() != cube(size_))
            refuse("the table has " + std::to_string(entries_.size()) + " lines, "
                    + (size_ < 2 ? "which make no cube" : std::to_string(cube(size_)) + " belong there"),
                false);
        if (size_ > lut::kLargestLut)
            resample();
    }

    // Makes a cube of a one-dimensional table, which holds a curve for each channel.
    void expand()
    {
        if (entries_.size() < 2)
            refuse("a one-dimensional table needs two lines", false);
        const std::vector<Entry> curves = std::move(entries_);
        const auto value = [&](std::size_t channel, int i) {
            const double at = double(i) / (kSizeFromOneDimension - 1) * double(curves.size() - 1);
            const std::size_t below = std::min(std::size_t(at), curves.size() - 2);
            const double share = at - double(below);
            return float(curves[below][channel] * (1 - share) + curves[below + 1][channel] * share);
        };
        entries_.clear();
        size_ = kSizeFromOneDimension;
        for (int b = 0; b < size_; ++b) {
            for (int g = 0; g < size_; ++g) {
                for (int r = 0; r < size_; ++r)
                    entries_.push_back({value(0, r), value(1, g), value(2, b)});
            }
        }
        changes_.push_back("the one-dimensional table became a cube of 33");
    }

    void resample()
    {
        const int from = size_;
        const std::vector<Entry> table = std::move(entries_);
        entries_.clear();
        size_ = lut::kLargestLut;
        const auto place = [&](int i) { return double(i) * (from - 1) / (size_ - 1); };
        const auto mixed = [&](double r, double g, double b, std::size_t channel) {
            double sum = 0;
            for (int corner = 0; corner < 8; ++corner) {
                const std::array<double, 3> at{r, g, b};
                std::size_t index = 0;
                double weight = 1;
                for (int axis = 2; axis >= 0; --axis) {
                    const int below = std::min(int(at[std::size_t(axis)]), from - 2);
                    const double share = at[std::size_t(axis)] - below;
                    const bool upper = corner >> axis & 1;
                    weight *= upper ? share : 1 - share;
                    index = index * std::size_t(from) + std::size_t(below + upper);
                }
                sum += weight * double(table[index][channel]);
            }
            return float(sum);
        };
        for (int b = 0; b < size_; ++b) {
            for (int g = 0; g < size_; ++g) {
                for (int r = 0; r < size_; ++r)
                    entries_.push_back({mixed(place(r), place(g), place(b), 0),
                        mixed(place(r), place(g), place(b), 1), mixed(place(r), place(g), place(b), 2)});
            }
        }
        changes_.push_back("size " + std::to_string(from) + " is larger than the engine takes; resampled to "
            + std::to_string(size_));
    }

    void reorder()
    {
        const std::vector<Entry> table = entries_;
        const std::size_t n = std::size_t(size_);
        for (std::size_t i = 0; i < table.size(); ++i)
            entries_[i] = table[(i % n) * n * n + i / n % n * n + i / n / n];
        changes_.push_back("the order was turned round: red varies fastest now");
    }

    static std::string triple(const Entry& entry)
    {
        std::string text;
        for (const float number : entry) {
            char digits[32];
            const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
            text += (text.empty() ? "" : " ") + std::string(digits, end);
        }
        return text;
    }

    std::string cubeText() const
    {
        std::string text = title_.empty() ? "" : "TITLE \"" + title_ + "\"\n";
        text += "DOMAIN_MIN " + triple(low_) + "\nDOMAIN_MAX " + triple(high_) + "\nLUT_3D_SIZE "
            + std::to_string(size_) + "\n";
        for (const Entry& entry : entries_)
            text += triple(entry) + "\n";
        return text;
    }

    std::string name_;
    bool threeDl_;
    LutRepairOptions options_;
    int line_ = 0;
    std::string title_;
    Entry low_{0, 0, 0};
    Entry high_{1, 1, 1};
    int size_ = 0;
    bool oneDimensional_ = false;
    bool notedCommas_ = false;
    std::vector<Entry> entries_;
    std::vector<std::string> changes_;
};

} // namespace

LutRepair repairLut(const std::filesystem::path& file, const LutRepairOptions& options)
{
    return Repairer(file, options).repair();
}

} // namespace tool
