// Conversions between the text encodings that meet at the interface.
#pragma once

#include <string>
#include <string_view>

namespace text {

/// UTF-16 from a NUL-terminated wide string (32-bit code points here); surrogate pairs where needed.
/// A value that is no code point, or half of a pair, becomes U+FFFD.
std::u16string utf16(const wchar_t* wide);

/// UTF-8 from UTF-16; half of a surrogate pair becomes U+FFFD.
std::string utf8(std::u16string_view utf16);

/// Wide string from UTF-8, as setParamFilePathValue takes it; a malformed byte becomes U+FFFD.
std::wstring wide(std::string_view utf8);

} // namespace text
