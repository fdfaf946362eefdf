// The process-wide preference, and the names of software renderers.
#include "effects/gpu/preferredForm.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <string>
#include <utility>

namespace KEXSDK {

namespace {

constinit std::atomic<EffectForm> preferred = EffectForm::gpu;
constinit std::atomic<bool> undecided = false; ///< `preferred` is what chooser() answers
constinit std::mutex deciding;

/// Guarded by `deciding`. Never destroyed: nodes may run while the process exits.
std::function<EffectForm()>& chooser()
{
    static auto* const function = new std::function<EffectForm()>;
    return *function;
}

} // namespace

EffectForm preferredForm()
{
    if (undecided) {
        const std::lock_guard lock(deciding);
        if (undecided) {
            preferred = chooser()();
            undecided = false;
        }
    }
    return preferred;
}

void preferForm(std::function<EffectForm()> choose)
{
    const std::lock_guard lock(deciding);
    chooser() = std::move(choose);
    undecided = true;
}

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
