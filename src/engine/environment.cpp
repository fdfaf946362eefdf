// Reading of the environment variables, when the engine starts.
#include "engine/environment.h"

#include "core/Log.h"
#include "graphics/GraphicsService.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace KEXSDK::environment {

namespace {

constexpr const char* kSeed = "EFFECTENGINE_SEED";
constexpr const char* kPath = "EFFECTENGINE_PATH";
constexpr const char* kGraphics = "EFFECTENGINE_GRAPHICS";

std::string_view valueOf(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

void warn(const char* variable, std::string_view value, const char* expected)
{
    logging::warning("KEXSDK::environment",
        std::string(variable) + " is \"" + std::string(value) + "\" and not " + expected
            + "; it counts as not set");
}

EffectForm chosen(const std::string& what, EffectForm form)
{
    logging::info("KEXSDK::environment", "Paths: effects with a GPU and a CPU form take the " + what);
    return form;
}

EffectForm formOf(const std::string& word)
{
    const std::string asked = " (" + std::string(kPath) + "=" + word + ")";
    if (word == "cpu")
        return chosen("CPU" + asked, EffectForm::cpu);
    if (!word.empty() && word != "gpu" && word != "auto")
        warn(kPath, word, "gpu, cpu or auto");
    if (!graphics().available())
        return chosen("CPU: there is no GPU", EffectForm::gpu);
    const std::string renderer = graphics().capabilities().renderer;
    if (word == "auto" && isSoftwareRenderer(renderer))
        return chosen("CPU: " + renderer + " is software" + asked, EffectForm::completeOnCpu);
    if (word == "auto")
        return chosen("GPU: " + renderer + " is hardware" + asked, EffectForm::gpu);
    return chosen(word == "gpu" ? "GPU" + asked : "GPU, as usual", EffectForm::gpu);
}

} // namespace

std::optional<i64> seed()
{
    const std::string_view text = valueOf(kSeed);
    i64 number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (!text.empty() && error == std::errc() && end == text.data() + text.size())
        return number;
    if (!text.empty())
        warn(kSeed, text, "a whole number of 64 bits");
    return std::nullopt;
}

bool graphicsWhenNeeded()
{
    const std::string_view word = valueOf(kGraphics);
    if (!word.empty() && word != "at-start" && word != "when-needed")
        warn(kGraphics, word, "at-start or when-needed");
    return word == "when-needed";
}

std::function<EffectForm()> chooseForm()
{
    return [word = std::string(valueOf(kPath))] { return formOf(word); };
}

} // namespace KEXSDK::environment
