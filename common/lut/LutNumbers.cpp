// Converts text to numbers by std::from_chars, which no locale changes.
#include "lut/LutNumbers.h"

#include "lut/LutLines.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace lut {

namespace {

enum class Found { none, inRange, outOfRange };

template <class Number> Found take(std::string_view& text, Number& number, std::string_view& digits)
{
    skipBlanks(text);
    std::string_view rest = text;
    if (rest.size() > 1 && rest[0] == '+' && rest[1] != '-')
        rest.remove_prefix(1); // from_chars knows no plus sign
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error == std::errc::invalid_argument)
        return Found::none;
    digits = rest.substr(0, std::size_t(end - rest.data()));
    text = rest.substr(digits.size());
    return error == std::errc() ? Found::inRange : Found::outOfRange;
}

// What a number beyond the range of float becomes: infinity or zero, of its sign.
float beyondRange(std::string_view digits)
{
    double wide = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), wide);
    bool large = std::fabs(wide) > 1;
    if (error != std::errc()) {
        const std::size_t exponent = digits.find_first_of("eE");
        large = exponent == std::string_view::npos || digits.substr(exponent + 1, 1) != "-";
    }
    const float magnitude = large ? std::numeric_limits<float>::infinity() : 0.0f;
    return digits.front() == '-' ? -magnitude : magnitude;
}

} // namespace

std::optional<float> takeFloat(std::string_view& text)
{
    float number = 0;
    std::string_view digits;
    switch (take(text, number, digits)) {
    case Found::none:
        return std::nullopt;
    case Found::inRange:
        return number;
    case Found::outOfRange:
        break;
    }
    return beyondRange(digits);
}

std::optional<float> takeFiniteFloat(std::string_view& text)
{
    float number = 0;
    std::string_view digits;
    if (take(text, number, digits) != Found::inRange || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<int> takeInt(std::string_view& text)
{
    int number = 0;
    std::string_view digits;
    if (take(text, number, digits) != Found::inRange)
        return std::nullopt;
    return number;
}

} // namespace lut
