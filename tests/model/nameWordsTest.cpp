// Titles that are made of names.
#include "facts/Param.h"

#include <gtest/gtest.h>

namespace {

using KEXSDK::Param;
using KEXSDK::titleOf;

TEST(Titles, AreTheWordsOfTheNameUnlessTheyAreGiven)
{
    const std::pair<const char*, const char*> cases[] = {
        {"BlockSize", "Block Size"},
        {"clarity", "Clarity"},
        {"u_vignette_amount", "Vignette Amount"},
        {"u_whiteLevel", "White Level"},
        {"u_", "u_"},
        {"undo", "Undo"},
        {"CubeLUTFile", "Cube LUT File"},
        {"PositionX", "Position X"},
        {"lights[1].colour", "Lights 1 Colour"},
        {"vec2Size", "Vec2Size"},
        {"!!", "!!"},
        {"", ""},
    };
    for (const auto& [name, title] : cases)
        EXPECT_EQ(titleOf(Param<int>{name, 0, {0, 1}, ""}), title) << name;
    EXPECT_EQ(titleOf(Param<int>{"Desity", 0, {0, 1}, ""}.titled("Density")), "Density");
}

} // namespace
