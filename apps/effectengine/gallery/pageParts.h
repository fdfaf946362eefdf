// The hand-written parts of pages, from the files of the same names; the build puts them into the tool.
#pragma once

#include <string_view>

namespace tool {

namespace pageParts {

extern const std::string_view galleryHtml;
extern const std::string_view galleryCss;
extern const std::string_view galleryJs;
extern const std::string_view effectPageHtml;
extern const std::string_view effectPageCss;
extern const std::string_view effectIndexHtml;

} // namespace pageParts

} // namespace tool
