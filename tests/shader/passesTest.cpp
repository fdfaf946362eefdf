// Effects with passes: what each one draws, what it reads, and what stays from frame to frame.
#include "shader/ShaderEngine.h"

#include <deque>

namespace {

using test::Bgra;

constexpr const char* kCopy = "gl_FragColor = texture2D(mSample0, textureCoord);";
constexpr const char* kAddTen =
    "gl_FragColor = texture2D(mSample0, textureCoord) + vec4(vec3(10.0 / 255.0), 0.0);";

class Passes : public test::ShaderEngine {
protected:
    /// Writes a fragment program with four samplers.
    void shader(const std::string& name, const std::string& body, const std::string& uniforms = "")
    {
        files.write("Shader/" + name,
            "#version 120\nuniform sampler2D mSample0, mSample1, mSample2, mSample3;\n"
            "varying vec2 textureCoord;\n"
                + uniforms + "\nvoid main() {\n" + body + "\n}\n");
    }
    void passes(int number, const std::string& list, const std::string& members = "")
    {
        describe(number, "\"PASSES\": [" + list + "]" + members);
    }
    /// What a node of the descriptor draws of a picture.
    std::vector<unsigned char> drawn(int number, const host::Image& input, int width, int height)
    {
        auto node = filter(number, width, height);
        node.setInput(input);
        return bytes(node.run());
    }
};

TEST_F(Passes, ThatCopyChangeNoByte)
{
    shader("copy.frag", kCopy);
    passes(0, R"({"SHADER": "copy.frag"})");
    passes(1, R"({"NAME": "a", "SHADER": "copy.frag"}, {"NAME": "b", "INPUTS": [{"FROM": "a"}]},
        {"SHADER": "copy.frag", "INPUTS": [{"FROM": "b"}]})");
    passes(2, R"({"NAME": "a", "FORMAT": "half", "INPUTS": [{"FROM": 0, "FILTER": "nearest"}]},
        {"INPUTS": [{"FROM": "a", "WRAP": "mirror"}]})");
    start();
    for (const auto& [width, height] : {std::pair(37, 23), {1, 1}, {64, 48}, {1921, 3}}) {
        const auto input = noise(unsigned(width), unsigned(height), 3);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(drawn(i, input, width, height), bytes(input)) << i << ", " << width << " x " << height;
    }
}

TEST_F(Passes, ReadThePicturesOfTheEffectAndOfThoseBeforeThem)
{
    shader("ten.frag", kAddTen);
    shader("join.frag",
        "gl_FragColor = vec4(texture2D(mSample0, textureCoord).r, texture2D(mSample1, textureCoord).g,"
        "texture2D(mSample2, textureCoord).b, texture2D(mSample3, textureCoord).a);");
    passes(0, R"({"NAME": "one", "SHADER": "ten.frag", "INPUTS": [{"FROM": 0}]},
        {"NAME": "two", "SHADER": "ten.frag", "INPUTS": [{"FROM": "one"}]},
        {"SHADER": "join.frag", "INPUTS": [{"FROM": 0}, {"FROM": "two"}, {"FROM": "one"}, {"FROM": 1}]})",
        R"(, "INPUTS": 2)");
    start();
    auto node = filter(0);
    const auto first = plain(8, 8, {1, 2, 3, 4});
    const auto second = plain(5, 7, {5, 6, 7, 8});
    node.setInput(first, 0);
    EXPECT_EQ(middle(node), (Bgra{11, 22, 3, 0})) << "an input that has not come is transparent black";
    node.setInput(second, 1);
    EXPECT_EQ(middle(node), (Bgra{11, 22, 3, 8}));
    EXPECT_EQ(middle(node), (Bgra{11, 22, 3, 8}));
}

TEST_F(Passes, HaveSizesOfTheirOwn)
{
    const char* const sizes =
        "uniform vec2 u_pass_resolution; uniform vec2 u_input_resolution[2]; uniform vec2 u_resolution;";
    shader("own.frag", "gl_FragColor = vec4(u_pass_resolution, u_input_resolution[0]) / 255.0;", sizes);
    shader("tell.frag",
        "gl_FragColor = textureCoord.x < 0.5 ? texture2D(mSample0, textureCoord)"
        ": vec4(u_pass_resolution, u_input_resolution[1] + u_resolution - vec2(37, 23)) / 255.0;",
        sizes);
    passes(0, R"({"NAME": "small", "SHADER": "own.frag", "SCALE": 0.25},
        {"NAME": "least", "SCALE": 0.0625, "INPUTS": [{"FROM": "small"}]},
        {"SHADER": "tell.frag", "INPUTS": [{"FROM": "small"}, {"FROM": "least"}]})");
    passes(1, R"({"NAME": "half", "SCALE": 0.5, "INPUTS": [{"FROM": 0, "FILTER": "linear"}]},
        {"INPUTS": [{"FROM": "half", "FILTER": "nearest"}]})");
    start();
    const auto all = drawn(0, noise(37, 23, 3), 37, 23);
    const auto pixel = [&](std::size_t x) {
        return Bgra{all[x * 4], all[x * 4 + 1], all[x * 4 + 2], all[x * 4 + 3]};
    };
    EXPECT_EQ(pixel(2), (Bgra{37, 6, 9, 23})) << "9 x 6, rounded, reads 37 x 23";
    EXPECT_EQ(pixel(30), (Bgra{2, 23, 37, 1})) << "2 x 1";

    // Halves: the mean of four pixels, shown four times.
    host::Image quarters(4, 4);
    const unsigned char values[] = {10, 20, 30, 50};
    for (std::size_t i = 0; i < 64; ++i)
        quarters.bytes()[i] = values[i / 4 % 2 + i / 16 % 2 * 2];
    quarters.bytes()[0] = 90;
    const auto halved = drawn(1, quarters, 4, 4);
    EXPECT_EQ(halved[0], 48) << "(90 + 20 + 30 + 50) / 4, rounded up";
    for (const std::size_t same : {4u, 16u, 20u})
        EXPECT_EQ(halved[same], halved[0]);
    EXPECT_EQ(halved[8], 28);
    EXPECT_EQ(halved[1], 28);
}

TEST_F(Passes, SamplersFilterAndWrapAsTheirInputsSay)
{
    shader("beyond.frag", "gl_FragColor = texture2D(mSample0, textureCoord + vec2(1.0, 0.0));");
    shader("between.frag", "gl_FragColor = texture2D(mSample0, textureCoord + vec2(0.375 / 8.0, 0.0));");
    const auto row = [&](int number, const char* shader, const std::string& sampling) {
        passes(number,
            R"({"NAME": "a"}, {"SHADER": ")" + std::string(shader) + R"(", "INPUTS": [{"FROM": "a")"
                + sampling + "}]}");
    };
    row(0, "beyond.frag", "");
    row(1, "beyond.frag", R"(, "WRAP": "repeat")");
    row(2, "beyond.frag", R"(, "WRAP": "mirror")");
    row(3, "between.frag", R"(, "FILTER": "nearest")");
    row(4, "between.frag", "");
    start();
    host::Image ramp(8, 1);
    for (std::size_t i = 0; i < 32; ++i)
        ramp.bytes()[i] = (unsigned char)(i / 4 * 16 + 16);
    const auto first = [&](int number) {
        const auto all = drawn(number, ramp, 8, 1);
        return std::pair(int(all[0]), int(all[4]));
    };
    EXPECT_EQ(first(0), std::pair(128, 128));
    EXPECT_EQ(first(1), std::pair(16, 32));
    EXPECT_EQ(first(2), std::pair(128, 112));
    EXPECT_EQ(first(3), std::pair(16, 32));
    EXPECT_EQ(first(4), std::pair(22, 38));
}

TEST_F(Passes, MayShowOnePictureEachInItsOwnWay)
{
    shader("beyond.frag", "gl_FragColor = texture2D(mSample0, textureCoord + vec2(1.0, 0.0));");
    shader("join.frag",
        "gl_FragColor = vec4(texture2D(mSample0, textureCoord).r, texture2D(mSample1, textureCoord).g,"
        "texture2D(mSample2, textureCoord + vec2(1.0, 0.0)).b, 1.0);");
    passes(0, R"({"NAME": "a", "SHADER": "beyond.frag", "INPUTS": [{"FROM": 0, "WRAP": "repeat"}]},
        {"NAME": "b", "SHADER": "beyond.frag", "INPUTS": [{"FROM": 0, "WRAP": "mirror", "FILTER": "nearest"}]},
        {"SHADER": "join.frag", "INPUTS": [{"FROM": "a"}, {"FROM": "b"}, {"FROM": 0}]})");
    start();
    host::Image ramp(8, 1);
    for (std::size_t i = 0; i < 32; ++i)
        ramp.bytes()[i] = (unsigned char)(i / 4 * 16 + 16);
    auto node = filter(0, 8, 1);
    node.setInput(ramp);
    for (int frame = 0; frame < 3; ++frame) {
        const auto all = bytes(node.run());
        EXPECT_EQ((Bgra{all[0], all[1], all[2], all[3]}), (Bgra{128, 128, 16, 255})) << frame;
    }
}

TEST_F(Passes, PersistentOnesGoOnFromTheFrameBefore)
{
    shader("more.frag", "gl_FragColor = texture2D(mSample0, textureCoord) + vec4(10.0 / 255.0);");
    passes(0, R"({"NAME": "sum", "SHADER": "more.frag", "PERSISTENT": true, "INPUTS": [{"FROM": "sum"}]},
        {"INPUTS": [{"FROM": "sum"}]})");
    // The first pass shows what the second drew in the frame before.
    passes(1, R"({"NAME": "before", "SHADER": "more.frag", "INPUTS": [{"FROM": "kept"}]},
        {"NAME": "kept", "PERSISTENT": true, "INPUTS": [{"FROM": 0}]}, {"INPUTS": [{"FROM": "before"}]})");
    start();
    const auto input = plain(8, 8, {100, 110, 120, 130});
    auto sum = filter(0);
    sum.setInput(input);
    auto other = filter(0); // of the same program, with a history of its own
    other.setInput(input);
    const auto grey = [](int value) {
        const auto byte = (unsigned char)(value);
        return Bgra{byte, byte, byte, byte};
    };
    for (int frame = 1; frame <= 5; ++frame) {
        EXPECT_EQ(middle(sum), grey(10 * frame));
        if (frame > 2) {
            EXPECT_EQ(middle(other), grey(10 * (frame - 2)));
        }
    }
    sum.set(kEffectEnable, 0);
    EXPECT_EQ(middle(sum), (Bgra{100, 110, 120, 130}));
    sum.set(kEffectEnable, 1);
    sum.set(kEffectCurrentTime, 2.0f);
    EXPECT_EQ(middle(sum), grey(60)) << "a disabled node does not step";
    EXPECT_EQ(middle(sum), grey(70));
    sum.set(kEffectCurrentTime, 1.96f);
    EXPECT_EQ(middle(sum), grey(10)) << "time went back";
    EXPECT_EQ(middle(sum), grey(20));

    auto late = filter(1);
    late.setInput(input);
    EXPECT_EQ(middle(late), grey(10));
    const auto next = plain(8, 8, {50, 60, 70, 80});
    late.setInput(next);
    EXPECT_EQ(middle(late), (Bgra{110, 120, 130, 140}));
    EXPECT_EQ(middle(late), (Bgra{60, 70, 80, 90}));
}

TEST_F(Passes, InHalfFloatsKeepWhatBytesCannot)
{
    shader("sum.frag", "gl_FragColor = texture2D(mSample0, textureCoord) * 3.0 - vec4(1.0, 0.0, 0.0, 0.0);");
    shader(
        "back.frag", "gl_FragColor = (texture2D(mSample0, textureCoord) + vec4(1.0, 0.0, 0.0, 0.0)) / 3.0;");
    for (const int number : {0, 1})
        passes(number,
            R"({"NAME": "a", "SHADER": "sum.frag", "FORMAT": ")" + std::string(number ? "bytes" : "half")
                + R"("}, {"SHADER": "back.frag", "INPUTS": [{"FROM": "a"}]})");
    start();
    const auto input = plain(8, 8, {200, 150, 20, 255});
    EXPECT_EQ(drawn(0, input, 8, 8), bytes(input));
    EXPECT_EQ(drawn(1, input, 8, 8), bytes(plain(8, 8, {85, 85, 85, 85})));
}

TEST_F(Passes, UniformsReachEveryProgramAndKeepTheirOwnInitialValues)
{
    shader("first.frag", "gl_FragColor = vec4(level, Both, 0.0, 1.0);",
        "uniform float level = 0.2; uniform float Both = 0.4;");
    shader("last.frag", "gl_FragColor = vec4(texture2D(mSample0, textureCoord).rg, level, u_both.y);",
        "uniform float level = 0.6; uniform vec2 u_both = vec2(0.0, 0.8);");
    passes(0, R"({"NAME": "a", "SHADER": "first.frag"}, {"SHADER": "last.frag", "INPUTS": [{"FROM": "a"}]})");
    start();
    auto node = filter(0);
    const auto input = plain(8, 8, {0, 0, 0, 0});
    node.setInput(input);
    EXPECT_EQ(middle(node), (Bgra{153, 102, 51, 204}));
    node.set("level", 1.0f);
    EXPECT_EQ(middle(node), (Bgra{255, 102, 255, 204}));
    node.set("Both", std::vector{0.0f, 0.2f});
    EXPECT_EQ(middle(node), (Bgra{255, 0, 255, 51}));
    node.set("mSample0", 3);
    node.set("u_pass_resolution", std::vector{1.0f, 1.0f});
    EXPECT_EQ(middle(node), (Bgra{255, 0, 255, 51}));
}

TEST_F(Passes, OnlyTheLastOneIsPlacedInTheFrame)
{
    passes(0, R"({"NAME": "a"}, {"NAME": "b", "INPUTS": [{"FROM": "a"}]}, {"INPUTS": [{"FROM": "b"}]})");
    describe(1, "");
    start();
    const auto input = noise(20, 12, 9);
    auto many = filter(0, 20, 12);
    auto one = filter(1, 20, 12);
    for (auto* const node : {&many, &one}) {
        node->setInput(input);
        node->set("stTranslate", std::vector{5.0f, -3.0f});
        node->set("stRotate", 180.0f);
    }
    EXPECT_EQ(bytes(many.run()), bytes(one.run()));
}

TEST_F(Passes, StandBetweenOtherEffectsAndLeaveThemAlone)
{
    shader("ten.frag", kAddTen);
    passes(0,
        R"({"NAME": "a", "SHADER": "ten.frag"}, {"NAME": "b", "SHADER": "ten.frag", "INPUTS": [{"FROM": "a"}]},
        {"SHADER": "ten.frag", "INPUTS": [{"FROM": "b"}]})");
    program(1, "uniform sampler2D mSample0;", kAddTen);
    start();
    for (int round = 0; round < 3; ++round) {
        std::vector<host::Filter> chain;
        for (const int number : {0, 1, 0, 0})
            chain.push_back(filter(number));
        const auto input = plain(8, 8, {5, 6, 7, 255});
        chain[0].setInput(input);
        for (std::size_t i = 1; i < chain.size(); ++i)
            chain[i].connectFrom(chain[i - 1]);
        for (int frame = 0; frame < 2; ++frame)
            EXPECT_EQ(middle(chain.back()), (Bgra{105, 106, 107, 255}));
        EXPECT_EQ(middle(chain[1]), (Bgra{45, 46, 47, 255}));
    }
}

TEST_F(Passes, DrawThePictureBehindParticles)
{
    files.write("Particles/test.particle",
        std::string("particle_system dots\n{\nmaterial sprite\nparticle_width 8\nparticle_height 8\n"
                    "emitter Box\n{\nwidth 30\nheight 20\ndepth 1\nemission_rate 40\nvelocity 0\n"
                    "time_to_live 100\ncolour 0 1 0 1\n}\n}\n"));
    files.write("Particles/test.material", test::kSpriteMaterial);
    shader("ten.frag", kAddTen);
    passes(0,
        R"({"NAME": "a", "SCALE": 0.5, "SHADER": "ten.frag"}, {"SHADER": "ten.frag", "INPUTS": [{"FROM": "a"}]})",
        R"(, "PU": "dots")");
    describe(1, R"("PU": "dots")");
    start();
    auto node = filter(0, 40, 30);
    auto expected = filter(1, 40, 30);
    const auto input = plain(40, 30, {10, 20, 30, 255});
    const auto brighter = plain(40, 30, {30, 40, 50, 255});
    node.setInput(input);
    expected.setInput(brighter);
    for (const float time : {0.2f, 1.0f, 0.4f}) {
        node.set(kEffectCurrentTime, time);
        expected.set(kEffectCurrentTime, time);
        const auto picture = bytes(expected.run());
        EXPECT_EQ(bytes(node.run()), picture);
        EXPECT_NE(picture, bytes(brighter));
    }
}

TEST_F(Passes, OfAnyDescriptionEndNothing)
{
    shader("ten.frag", kAddTen);
    std::mt19937 random(7);
    const auto one = [&](std::initializer_list<const char*> words) {
        return std::string(words.begin()[random() % words.size()]);
    };
    const int kDescriptors = 60;
    for (int i = 0; i < kDescriptors; ++i) {
        std::string list;
        for (unsigned n = random() % 6 + 1, pass = 0; pass < n; ++pass) {
            list += std::string(pass ? ", " : "") + "{\"NAME\": \"" + char('a' + pass) + "\"";
            list += one({"", "", R"(, "SHADER": "ten.frag")", R"(, "SHADER": "none.frag")"});
            if (pass + 1 < n || random() % 8 == 0)
                list += one({"", R"(, "SCALE": 0.0625)", R"(, "SCALE": 0.3)"})
                    + one({"", R"(, "PERSISTENT": true)"}) + one({"", R"(, "FORMAT": "half")"});
            if (random() % 4)
                list += R"(, "INPUTS": [{"FROM": )" + one({"0", "1", "\"a\"", "\"b\"", "\"c\""})
                    + one({"", R"(, "WRAP": "mirror")", R"(, "FILTER": "nearest")"})
                    + one({"}", R"(}, {"FROM": 0})"}) + "]";
            list += "}";
        }
        passes(i, list, R"(, "INPUTS": 2)");
    }
    start();
    const auto input = noise(7, 5, 3);
    std::deque<host::Filter> nodes;
    int drawn = 0;
    for (int i = 0; i < kDescriptors; ++i) {
        nodes.emplace_back(filter(i, 7, 5));
        if (nodes.size() > 9)
            nodes.pop_front();
        for (host::Filter& node : nodes) {
            node.setInput(input, int(random() % 2));
            EXPECT_NO_THROW(node.run());
        }
        drawn += bytes(nodes.back().run()) != bytes(input);
    }
    EXPECT_GT(drawn, 10);
    EXPECT_LT(drawn, kDescriptors - 10);
}

TEST_F(Passes, WithAFaultTheEffectShowsItsInput)
{
    shader("copy.frag", kCopy);
    shader("broken.frag", "gl_FragColor = nonsense;");
    const std::string good = R"({"NAME": "a", "SHADER": "copy.frag"}, )";
    passes(0, good + R"({"NAME": "second", "SHADER": "broken.frag"}, {"SHADER": "copy.frag"})");
    passes(1, good + R"({"SHADER": "nowhere.frag"})");
    passes(2, good + R"({"SHADER": "../../../etc/passwd"})");
    passes(3, good + R"({"INPUTS": [{"FROM": "nobody"}]})", R"(, "SHADER": "copy.frag")");
    describe(4, R"("PASSES": "copy.frag", "SHADER": "copy.frag")");
    passes(5, good + R"({"SHADER": "copy.frag"})");
    start();
    const auto input = noise(8, 8, 5);
    for (int i = 0; i < 6; ++i)
        for (int frame = 0; frame < 2; ++frame)
            EXPECT_EQ(drawn(i, input, 8, 8), bytes(input)) << i;
}

// The log is opened once per process: this runs in one of its own.
TEST_F(Passes, TheLogNamesThePassOnce)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto body = [this] {
        shader("copy.frag", kCopy);
        shader("broken.frag", "gl_FragColor = nonsense;");
        passes(0, R"({"NAME": "a"}, {"NAME": "second", "SHADER": "broken.frag"}, {"SHADER": "copy.frag"})");
        passes(1, R"({"SHADER": "nowhere.frag"})");
        passes(2, R"({}, {"SCALE": 2})");
        passes(3, R"({"SHADER": "copy.frag"})");
        start(true);
        const auto input = plain(8, 8, {1, 2, 3, 4});
        for (int i = 0; i < 4; ++i) {
            auto node = filter(i);
            node.setInput(input);
            node.run();
            node.run();
        }
        const std::string log = files.read("EffectEngine.log");
        const auto count = [&](const std::string& text) {
            int found = 0;
            for (std::size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
                ++found;
            return found;
        };
        const auto line = [&](int number) {
            return "Shader effect [" + files.path() + "Shader/" + std::to_string(number)
                + ".conf] passes its input through: ";
        };
        EXPECT_EQ(count("passes its input through"), 3);
        EXPECT_EQ(count(line(0) + "Pass 2 \"second\" with shader [broken.frag]: "), 1);
        EXPECT_EQ(count(line(1) + "Pass 1 with shader [nowhere.frag]: "), 1);
        EXPECT_EQ(count(line(2) + "in PASSES, pass 2: SCALE has to be"), 1);
        std::fputs(log.c_str(), stderr);
        _exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

} // namespace
