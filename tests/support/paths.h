// Where tests find what the build made. (One file knows the paths, so that a compiler cache serves every
// checkout.)
#pragma once

namespace test {

extern const char* const kResourceDirectory; ///< with a slash at its end
extern const char* const kOutputDirectory;   ///< for what tests write
extern const char* const kSourceDirectory;
extern const char* const kCatalogue;   ///< effects.json
extern const char* const kGraphSchema; ///< graph.schema.json
extern const char* const kFuzzCorpus;

} // namespace test
