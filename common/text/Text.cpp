// UTF-8, UTF-16 and wide strings without the locale.
#include "text/Text.h"

namespace text {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }
constexpr bool isCodePoint(char32_t c) { return c <= 0x10FFFF && !isSurrogate(c); }
constexpr bool isHigh(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool isLow(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void appendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | c >> 6);
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | c >> 12);
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | c >> 18);
        out += char(0x80 | (c >> 12 & 0x3F));
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// One code point from the front of the text, which shrinks by at least one byte.
char32_t takeUtf8(std::string_view& rest)
{
    const auto lead = static_cast<unsigned char>(rest.front());
    rest.remove_prefix(1);
    if (lead < 0x80)
        return lead;
    const int following = lead >= 0xF0 && lead < 0xF8 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
    if (following == 0 || lead >= 0xF8 || rest.size() < std::size_t(following))
        return kReplacement;
    char32_t c = lead & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        const auto next = static_cast<unsigned char>(rest[i]);
        if ((next & 0xC0) != 0x80)
            return kReplacement;
        c = c << 6 | (next & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (c < kSmallest[following] || !isCodePoint(c))
        return kReplacement;
    rest.remove_prefix(following);
    return c;
}

} // namespace

std::u16string utf16(const wchar_t* wide)
{
    static_assert(sizeof(wchar_t) == 4, "wide strings hold code points");
    std::u16string out;
    for (; *wide; ++wide) {
        const char32_t c = isCodePoint(char32_t(*wide)) ? char32_t(*wide) : kReplacement;
        if (c < 0x10000) {
            out += char16_t(c);
        } else {
            out += char16_t(0xD800 + ((c - 0x10000) >> 10));
            out += char16_t(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return out;
}

std::string utf8(std::u16string_view utf16)
{
    std::string out;
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        const char16_t c = utf16[i];
        if (isHigh(c) && i + 1 < utf16.size() && isLow(utf16[i + 1]))
            appendUtf8(out, 0x10000 + (char32_t(c - 0xD800) << 10) + (utf16[++i] - 0xDC00));
        else
            appendUtf8(out, isSurrogate(c) ? kReplacement : char32_t(c));
    }
    return out;
}

std::wstring wide(std::string_view utf8)
{
    std::wstring out;
    while (!utf8.empty())
        out += wchar_t(takeUtf8(utf8));
    return out;
}

} // namespace text
