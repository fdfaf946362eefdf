// The modules lie beside the libraries, in a directory of the tool's own.
#include "effectengine/pictureModules.h"

#include "effectengine/ToolError.h"
#include <EffectEngine/EffectEngineHost.h>

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace tool {

namespace fs = std::filesystem;

namespace {

using namespace std::string_view_literals;

constexpr std::array kModules{"picture-webp.so", "picture-avif.so", "picture-tiff.so", "picture-jxl.so"};

/// Opens a module, which stays for the process, and calls its one function.
template <class Offer> auto offered(const char* module, const char* function)
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&EffectHostOpen), &info) == 0 || !info.dli_fname)
        throw ToolError(ExitCode::internal, "cannot find the libraries' directory");
    const fs::path file = fs::weakly_canonical(info.dli_fname).parent_path() / "effectengine" / module;
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const offer = library ? dlsym(library, function) : nullptr;
    if (!offer)
        throw ToolError(ExitCode::internal,
            std::string("a part of the tool cannot be opened, install it anew: ") + dlerror());
    return reinterpret_cast<Offer*>(offer)();
}

/// Whether a file begins with a box of types that name AVIF.
bool beginsLikeAvif(std::string_view head)
{
    if (head.size() < 16 || head.substr(4, 4) != "ftyp")
        return false;
    std::size_t end = 0;
    for (const char c : head.substr(0, 4))
        end = end << 8 | u8(c);
    for (std::size_t at = 8; at + 4 <= std::min(end, head.size()); at += 4)
        if (at != 12 && (head.substr(at, 4) == "avif" || head.substr(at, 4) == "avis"))
            return true;
    return false;
}

} // namespace

std::optional<FurtherKind> furtherKindOf(std::span<const u8> file)
{
    const std::string_view head(
        reinterpret_cast<const char*>(file.data()), std::min<std::size_t>(file.size(), 256));
    if (head.starts_with("RIFF") && head.substr(std::min<std::size_t>(8, head.size())).starts_with("WEBP"))
        return FurtherKind::webp;
    if (head.starts_with("II*\0"sv) || head.starts_with("MM\0*"sv) || head.starts_with("II+\0"sv)
        || head.starts_with("MM\0+"sv))
        return FurtherKind::tiff;
    if (head.starts_with("\xFF\x0A") || head.starts_with("\0\0\0\x0CJXL \r\n\x87\n"sv))
        return FurtherKind::jxl;
    if (beginsLikeAvif(head))
        return FurtherKind::avif;
    return std::nullopt;
}

std::optional<FurtherKind> furtherKindNamed(const std::string& extension)
{
    if (extension == ".webp")
        return FurtherKind::webp;
    if (extension == ".avif")
        return FurtherKind::avif;
    if (extension == ".tif" || extension == ".tiff")
        return FurtherKind::tiff;
    if (extension == ".jxl")
        return FurtherKind::jxl;
    return std::nullopt;
}

const PictureFormat& formatOf(FurtherKind kind)
{
    static std::array<const PictureFormat*, kModules.size()> formats{};
    const PictureFormat*& format = formats[std::size_t(kind)];
    if (!format)
        format = offered<OfferFormat>(kModules[std::size_t(kind)], "effectenginePictureFormat");
    return *format;
}

const ColourConversion& colourConversion()
{
    static const ColourConversion* const conversion =
        offered<OfferColours>("picture-colours.so", "effectengineColours");
    return *conversion;
}

} // namespace tool
