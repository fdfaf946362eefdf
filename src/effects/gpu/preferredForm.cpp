// The process-wide preference, and the names of software renderers.
#include "effects/gpu/preferredForm.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <string>

namespace KEXSDK {

namespace {

constinit std::atomic<EffectForm> preferred = EffectForm::gpu;

} // namespace

EffectForm preferredForm() noexcept { return preferred; }

void preferForm(EffectForm form) noexcept { preferred = form; }

bool isSoftwareRenderer(std::string_view name)
{
    constexpr std::array<std::string_view, 7> kMarks{
        "llvmpipe", "softpipe", "lavapipe", "swrast", "swr (", "swiftshader", "software"};
    std::string small(name);
    for (char& c : small)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return std::ranges::any_of(
        kMarks, [&](std::string_view mark) { return small.find(mark) != std::string::npos; });
}

} // namespace KEXSDK
