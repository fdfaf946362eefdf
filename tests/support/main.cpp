// Entry of the test program.
#include "host/effectList.h"
#include "support/paths.h"

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    host::readCatalogue(test::kCatalogue, test::kResourceDirectory);
    // Tests set these themselves.
    unsetenv("EFFECTENGINE_SEED");
    unsetenv("EFFECTENGINE_PATH");
    unsetenv("EFFECTENGINE_GRAPHICS");
    return RUN_ALL_TESTS();
}
