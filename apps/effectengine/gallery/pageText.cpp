// Escaping of text for HTML, and replacement of {{names}}.
#include "effectengine/gallery/pageText.h"

namespace tool {

std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string filledIn(std::string_view page, const std::map<std::string, std::string, std::less<>>& texts)
{
    std::string out;
    for (std::size_t at = 0; at < page.size();) {
        const std::size_t open = page.find("{{", at);
        out += page.substr(at, open - at);
        if (open == std::string_view::npos)
            break;
        const std::size_t close = page.find("}}", open);
        out += texts.find(page.substr(open + 2, close - open - 2))->second;
        at = close + 2;
    }
    return out;
}

} // namespace tool
