// Chains of shader effects and CPU effects into targets that are released after every frame.
#include "shader/ShaderEngine.h"

namespace {

using Targets = test::ShaderEngine;

TEST_F(Targets, AreTouchedInTheirOwnFrameAlone)
{
    program(0, "uniform sampler2D mSample0;",
        "gl_FragColor = vec4(texture2D(mSample0, textureCoord).rgb + 10.0 / 255.0, 1.0);");
    start();
    for (int order = 0; order < 2; ++order) {
        // Shader in front of CPU, shader in front of shader, CPU between shaders.
        std::vector<host::Filter> nodes;
        nodes.push_back(filter(0));
        if (order)
            nodes.push_back(filter(0));
        nodes.emplace_back("DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A", 8, 8);
        nodes.push_back(filter(0));
        const auto input = plain(8, 8, {100, 100, 100, 255});
        nodes[0].setInput(input);
        for (std::size_t i = 1; i < nodes.size(); ++i)
            nodes[i].connectFrom(nodes[i - 1]);
        const unsigned all = (1u << nodes.size()) - 1;
        for (const unsigned enabled : {all, 0u, all, 1u, 2u, all - 1, 4u, all}) {
            int shaders = 0;
            for (std::size_t i = 0; i < nodes.size(); ++i) {
                const bool on = enabled >> i & 1;
                nodes[i].set("kex_effect_enable", int(on));
                shaders += on && i != nodes.size() - 2;
            }
            const host::Image target(8, 8);
            ASSERT_EQ(DoFilterEx(nodes.back().handle(), target.handle()), 0u);
            EXPECT_EQ(int(target.bytes()[5]), 100 + 10 * shaders) << "order " << order << ", on " << enabled;
        }
    }
}

} // namespace
