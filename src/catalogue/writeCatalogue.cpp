// The program that prints the catalogue of this build: effectengine_catalogue RESOURCES > effects.json.
#include "engine/effectList.h"
#include "facts/catalogueJson.h"
#include "text/jsonText.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace {

void print(const std::string& resources)
{
    if (!std::filesystem::exists(resources + "/resources.cfg"))
        throw std::runtime_error("no resource directory: " + resources);
    listShaderEffectsOf(resources + "/");
    Json::Value entries(Json::arrayValue);
    for (const KEXSDK::EffectInfo& effect : listEffects())
        entries.append(catalogue::entryOf(effect, describeParameters(effect.guid)));
    const std::string text = text::jsonText(catalogue::allOf(std::move(entries)));
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        throw std::runtime_error("the catalogue could not be written");
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc != 2)
            throw std::runtime_error("one argument is needed, the resource directory");
        print(argv[1]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "effectengine_catalogue: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
