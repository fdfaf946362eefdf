// Parsers of both formats: keywords or a grid line first, then N x N x N lines of three numbers.
#include "lut/LutFile.h"

#include "lut/LutLines.h"
#include "lut/LutNumbers.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

namespace lut {

namespace {

constexpr int kSmallestCube = 2;
constexpr int kLargestCube = 256;

// A data line begins with a digit, a sign, a dot or a comma; these are the words between "+" and ":".
bool beginsTable(std::string_view word) { return word > "+" && word < ":"; }

// A word as part of a message: short, and in printable characters.
std::string quoted(std::string_view word)
{
    std::string text(word.substr(0, 40));
    std::ranges::replace_if(
        text, [](char c) { return c < ' ' || c > '~'; }, '?');
    return "\"" + text + "\"";
}

// Reads one file into a LutFile; a step that fails leaves the refusal there and answers false.
class Reader {
public:
    explicit Reader(std::istream& stream) : lines_(stream)
    {
        file_.status = LutStatus::success;
        if (!lines_.hasSeparator())
            refuse(LutStatus::lineError, "the first 251 characters hold no line end");
    }

    bool nextLine(const char* wanted)
    {
        if (file_.status != LutStatus::success)
            return false;
        switch (lines_.next()) {
        case LutLines::Next::line:
            return true;
        case LutLines::Next::end:
            return refuse(LutStatus::prematureEnd, std::string("the file ends before ") + wanted);
        case LutLines::Next::failed:
            break;
        }
        return refuse(LutStatus::readError, "the file cannot be read");
    }

    bool refuse(LutStatus status, std::string reason)
    {
        file_.status = status;
        file_.line = lines_.number();
        file_.reason = std::move(reason);
        return false;
    }
    bool refuseWhole(LutStatus status, std::string reason)
    {
        refuse(status, std::move(reason));
        file_.line = 0;
        return false;
    }

    /// The current line, to take words from.
    std::string_view text() const { return lines_.text(); }
    LutFile& file() { return file_; }

    /// Reads the table from the current line on; toBytes(channel, number) is the number on the 0..255 scale.
    template <class ToBytes> bool readTable(ToBytes toBytes)
    {
        const std::size_t n = std::size_t(file_.size);
        file_.entries.reserve(n * n * n);
        while (true) {
            readEntry(toBytes);
            if (file_.entries.size() == n * n * n)
                return true;
            if (!nextLine("the table is complete"))
                return false;
        }
    }

    LutFile finish()
    {
        if (file_.status != LutStatus::success)
            file_.entries = {};
        return std::move(file_);
    }

private:
    template <class ToBytes> void readEntry(ToBytes toBytes)
    {
        std::string_view rest = lines_.text();
        std::array<float, 3> channels{};
        for (std::size_t i = 0; i < channels.size(); ++i) {
            const std::optional<float> number = takeFloat(rest);
            if (!number) {
                if (file_.incompleteLines++ == 0)
                    file_.firstIncompleteLine = lines_.number();
                break;
            }
            channels[i] = toBytes(i, *number);
        }
        file_.entries.push_back({channels[0], channels[1], channels[2]});
    }

    LutLines lines_;
    LutFile file_;
};

class CubeReader {
public:
    explicit CubeReader(std::istream& stream) : reader_(stream) { }

    LutFile read()
    {
        if (readKeywords() && check()) {
            const LutFile& file = reader_.file();
            std::array<float, 3> extent;
            for (std::size_t i = 0; i < extent.size(); ++i)
                extent[i] = file.domainMax[i] - file.domainMin[i];
            reader_.readTable([=](std::size_t i, float number) { return number * extent[i] * 255; });
        }
        return reader_.finish();
    }

private:
    // Reads the keyword lines and stops at the first data line, which stays the current one.
    bool readKeywords()
    {
        while (reader_.nextLine("its table begins")) {
            std::string_view rest = reader_.text();
            const std::string_view word = takeWord(rest);
            if (beginsTable(word))
                return true;
            if (!readKeyword(word, rest))
                return false;
        }
        return false;
    }

    bool readKeyword(std::string_view word, std::string_view rest)
    {
        if (word == "TITLE" && !std::exchange(seenTitle_, true))
            return readTitle(rest);
        if (word == "DOMAIN_MIN" && !std::exchange(seenMin_, true))
            return readBounds(rest, reader_.file().domainMin);
        if (word == "DOMAIN_MAX" && !std::exchange(seenMax_, true))
            return readBounds(rest, reader_.file().domainMax);
        if (word == "LUT_3D_SIZE" && !std::exchange(seenSize_, true))
            return readSize(rest);
        if (isKeyword(word))
            return reader_.refuse(LutStatus::badKeyword, "keyword " + quoted(word) + " stands twice");
        if (word == "LUT_1D_SIZE")
            return reader_.refuse(LutStatus::badKeyword, "one-dimensional tables are not supported");
        return reader_.refuse(LutStatus::badKeyword, "keyword " + quoted(word) + " is not known");
    }

    static bool isKeyword(std::string_view word)
    {
        return word == "TITLE" || word == "DOMAIN_MIN" || word == "DOMAIN_MAX" || word == "LUT_3D_SIZE";
    }

    bool readTitle(std::string_view rest)
    {
        skipBlanks(rest);
        if (!rest.starts_with('"'))
            return reader_.refuse(LutStatus::titleWithoutQuote, "the title has no opening quote");
        rest.remove_prefix(1);
        if (rest.empty())
            return reader_.refuse(LutStatus::readError, "the title ends at its opening quote");
        reader_.file().title = rest.substr(0, rest.find('"'));
        return true;
    }

    bool readBounds(std::string_view rest, std::array<float, 3>& bounds)
    {
        for (float& bound : bounds) {
            const std::optional<float> number = takeFiniteFloat(rest);
            if (!number)
                return reader_.refuse(LutStatus::readError, "a domain bound needs three numbers");
            bound = *number;
        }
        return true;
    }

    bool readSize(std::string_view rest)
    {
        const std::optional<int> size = takeInt(rest);
        if (!size)
            return reader_.refuse(LutStatus::readError, "LUT_3D_SIZE needs a whole number");
        if (*size < kSmallestCube || *size > kLargestCube)
            return reader_.refuse(
                LutStatus::sizeOutOfRange, "size " + std::to_string(*size) + " is outside 2..256");
        if (*size > kLargestLut)
            return reader_.refuse(LutStatus::sizeOutOfRange,
                "size " + std::to_string(*size) + " is larger than the 64 that fit");
        reader_.file().size = *size;
        return true;
    }

    bool check()
    {
        const LutFile& file = reader_.file();
        if (!seenSize_)
            return reader_.refuseWhole(LutStatus::sizeOutOfRange, "LUT_3D_SIZE is missing");
        for (std::size_t i = 0; i < 3; ++i) {
            if (!(file.domainMax[i] > file.domainMin[i]))
                return reader_.refuseWhole(
                    LutStatus::domainReversed, "DOMAIN_MAX is not greater than DOMAIN_MIN");
        }
        return true;
    }

    Reader reader_;
    bool seenTitle_ = false;
    bool seenMin_ = false;
    bool seenMax_ = false;
    bool seenSize_ = false;
};

int countWords(std::string_view text)
{
    int count = 0;
    while (!takeWord(text).empty())
        ++count;
    return count;
}

// Skips everything before the grid line and takes the size from it.
bool readGrid(Reader& reader)
{
    while (reader.nextLine("its grid line")) {
        std::string_view rest = reader.text();
        const std::string_view word = takeWord(rest);
        if (word == "3DMESH" || !beginsTable(word))
            continue;
        const int count = 1 + countWords(rest);
        if (count < 3)
            return reader.refuse(LutStatus::unusableTable, "the grid line holds fewer than 3 values");
        if (count > kLargestLut)
            return reader.refuse(LutStatus::sizeOutOfRange,
                "a grid of " + std::to_string(count) + " values is larger than the 64 that fit");
        reader.file().size = count;
        return true;
    }
    return false;
}

} // namespace

LutFile parseCube(std::istream& stream) { return CubeReader(stream).read(); }

LutFile parse3dl(std::istream& stream)
{
    constexpr float kFullScale = 4095; // 12 bits
    Reader reader(stream);
    if (readGrid(reader) && reader.nextLine("its table begins"))
        reader.readTable([](std::size_t, float number) { return number / kFullScale * 255; });
    return reader.finish();
}

LutFormat formatOf(std::string_view path)
{
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos)
        return LutFormat::none;
    std::string extension(path.substr(dot));
    std::ranges::transform(
        extension, extension.begin(), [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
    return extension == ".CUBE" ? LutFormat::cube
        : extension == ".3DL"   ? LutFormat::threeDl
                                : LutFormat::none;
}

bool openLut(const std::string& path, std::ifstream& stream)
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored))
        return false;
    stream.open(path, std::ios::binary);
    return stream.is_open();
}

} // namespace lut
