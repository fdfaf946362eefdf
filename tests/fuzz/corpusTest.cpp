// The fuzzers' corpus, read again by the ordinary tests.
#include "fuzz/examine.h"
#include "fuzz/examineDescriptor.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

void readAll(const char* directory, lut::LutFile (*parse)(std::istream&))
{
    int accepted = 0;
    int refused = 0;
    for (const auto& entry : std::filesystem::directory_iterator(
             std::filesystem::path(EFFECTENGINE_FUZZ_CORPUS_DIR) / directory)) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const lut::LutFile file = parse(stream);
        ++(file.status == lut::LutStatus::success ? accepted : refused);
        EXPECT_STREQ(fuzz::faultOf(file), nullptr) << entry.path();
    }
    EXPECT_GT(accepted, 3);
    EXPECT_GT(refused, 3);
}

TEST(FuzzCorpus, EveryCubeFileIsReadOrRefused) { readAll("cube", lut::parseCube); }

TEST(FuzzCorpus, EveryThreeDlFileIsReadOrRefused) { readAll("3dl", lut::parse3dl); }

TEST(FuzzCorpus, EveryDescriptorIsReadOrRefused)
{
    int read = 0;
    int refused = 0;
    for (const auto& entry : std::filesystem::directory_iterator(
             std::filesystem::path(EFFECTENGINE_FUZZ_CORPUS_DIR) / "descriptor")) {
        const shader::DescriptorFile file = shader::readDescriptor(entry.path().string());
        ++(file.descriptor ? read : refused);
        if (file.descriptor) {
            EXPECT_STREQ(fuzz::faultOf(*file.descriptor), nullptr) << entry.path();
        }
    }
    EXPECT_GT(read, 3);
    EXPECT_GT(refused, 3);
}

} // namespace
