// The JSON writer's settings for indentation and digits.
#include "text/jsonText.h"

#include <charconv>

namespace text {

std::string jsonText(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["precision"] = 15; // every decimal number of 15 digits comes back as it was
    return Json::writeString(builder, value) + "\n";
}

double shortest(float number)
{
    char text[32];
    const auto written = std::to_chars(text, text + sizeof text, number);
    double value = 0;
    std::from_chars(text, written.ptr, value);
    return value;
}

} // namespace text
