// The paths, as the build defines them.
#include "support/paths.h"

namespace test {

const char* const kResourceDirectory = EFFECTENGINE_RESOURCE_DIR;
const char* const kOutputDirectory = EFFECTENGINE_TEST_OUTPUT_DIR;
const char* const kSourceDirectory = EFFECTENGINE_SOURCE_DIR;
const char* const kCatalogue = EFFECTENGINE_CATALOGUE;
const char* const kGraphSchema = EFFECTENGINE_GRAPH_SCHEMA;
const char* const kFuzzCorpus = EFFECTENGINE_FUZZ_CORPUS_DIR;

} // namespace test
