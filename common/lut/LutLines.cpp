// Splits blocks of bytes into lines, and lines into words.
#include "lut/LutLines.h"

#include <algorithm>

namespace lut {

namespace {

// What the C locale counts as white space; the host's locale must not change how files are read.
constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kSeparatorWithin = 251;

} // namespace

LutLines::LutLines(std::istream& stream) : stream_(stream)
{
    refill();
    if (std::string_view(block_.data(), end_).starts_with(kByteOrderMark))
        begin_ = kByteOrderMark.size();
    findSeparator();
}

void LutLines::findSeparator()
{
    const std::string_view start(block_.data() + begin_, end_ - begin_);
    const std::size_t found = start.substr(0, kSeparatorWithin).find_first_of("\r\n");
    if (found == std::string_view::npos)
        hasSeparator_ = start.size() < kSeparatorWithin; // a short file is all one line
    else if (start[found] == '\r' && start.substr(found + 1, 1) != "\n")
        separator_ = '\r';
}

bool LutLines::refill()
{
    stream_.read(block_.data(), std::streamsize(kBlock));
    begin_ = 0;
    end_ = std::size_t(stream_.gcount());
    return end_ > 0;
}

LutLines::Next LutLines::nextOfAnyKind()
{
    text_.clear();
    bool any = false;
    while (begin_ < end_ || refill()) {
        any = true;
        const char* const from = block_.data() + begin_;
        const char* const stop = block_.data() + end_;
        const char* const found = std::find(from, stop, separator_);
        text_.append(from, std::min(std::size_t(found - from), kLongestLine - text_.size()));
        begin_ = std::size_t(found - block_.data());
        if (found != stop) {
            ++begin_;
            break;
        }
    }
    if (stream_.bad())
        return Next::failed;
    number_ += any;
    return any ? Next::line : Next::end;
}

LutLines::Next LutLines::next()
{
    Next result;
    do
        result = nextOfAnyKind();
    while (result == Next::line && (text_.empty() || text_.front() == '#' || text_ == "\r"));
    return result;
}

void skipBlanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
}

std::string_view takeWord(std::string_view& text)
{
    skipBlanks(text);
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

} // namespace lut
