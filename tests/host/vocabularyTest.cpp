// The words of graph files: the tables of the code, the schema and the document have the same ones.
#include "host/Easing.h"
#include "host/SoundLevel.h"
#include "support/paths.h"

#include <gmock/gmock.h>
#include <json/json.h>

#include <fstream>
#include <sstream>

namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;

std::string contentsOf(const std::string& file)
{
    std::ifstream stream(file);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::vector<std::string> schemaWords(const char* definition)
{
    Json::Value schema;
    std::istringstream(contentsOf(test::kGraphSchema)) >> schema;
    std::vector<std::string> words;
    for (const Json::Value& word : schema["$defs"][definition]["enum"])
        words.push_back(word.asString());
    return words;
}

TEST(Vocabulary, OfEasesAndBandsIsTheSameInCodeSchemaAndDocument)
{
    std::vector<std::string> all;
    std::vector<std::string> old;
    for (const host::NamedEasing& easing : host::namedEasings()) {
        all.emplace_back(easing.name);
        if (easing.since == 1)
            old.emplace_back(easing.name);
    }
    EXPECT_THAT(schemaWords("easing"), ElementsAreArray(all));
    EXPECT_THAT(schemaWords("easingOfVersion1"), ElementsAreArray(old));
    std::vector<std::string> bands;
    for (const host::NamedBand& band : host::namedBands())
        bands.emplace_back(band.name);
    EXPECT_THAT(schemaWords("band"), ElementsAreArray(bands));

    const std::string document = contentsOf(std::string(test::kSourceDirectory) + "/docs/graphs.md");
    for (const auto* const words : {&all, &bands}) {
        for (const std::string& word : *words)
            EXPECT_THAT(document, HasSubstr("`" + word + "`"));
    }
}

} // namespace
