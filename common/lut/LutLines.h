// The lines of a lookup-table file, whatever ends them.
#pragma once

#include <array>
#include <cstddef>
#include <istream>
#include <string>
#include <string_view>

namespace lut {

/// Reads blocks of bytes and hands out lines. What ends a line is found in the first characters of the file:
/// a line feed, alone or after a carriage return, or carriage returns. A byte-order mark at the start is
/// skipped: it says how the text is encoded and is no part of it.
class LutLines {
public:
    enum class Next {
        line,
        end,    ///< no line is left
        failed, ///< the stream reported an error
    };

    /// The stream must outlive this object.
    explicit LutLines(std::istream& stream);

    /// False when the first 251 characters end no line: this is no text file of this kind.
    bool hasSeparator() const { return hasSeparator_; }

    /// Moves to the next line that is neither empty (a lone carriage return included) nor a comment.
    Next next();

    /// The current line without its end; valid until next(). At most the first 64 KiB of it.
    std::string_view text() const { return text_; }
    /// The current line's number in the file, from 1; 0 before the first.
    int number() const { return number_; }

private:
    static constexpr std::size_t kBlock = 8 * 1024;
    static constexpr std::size_t kLongestLine = 64 * 1024;

    bool refill();
    Next nextOfAnyKind();
    void findSeparator();

    std::istream& stream_;
    std::array<char, kBlock> block_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::string text_;
    int number_ = 0;
    char separator_ = '\n';
    bool hasSeparator_ = true;
};

/// The first word at the front of the text, which is then shortened by it and the white space before it.
/// Empty when nothing but white space is left.
std::string_view takeWord(std::string_view& text);

/// Shortens the text by the white space at its front.
void skipBlanks(std::string_view& text);

} // namespace lut
