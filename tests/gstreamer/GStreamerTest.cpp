// Set-up of the plug-in's tests; warnings of GLib and GStreamer end the program.
#include "gstreamer/GStreamerTest.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace gsttest {

Picture noise(Size size, unsigned seed)
{
    std::minstd_rand random(seed + 1);
    Picture picture{size, std::vector<unsigned char>(std::size_t(size.width) * std::size_t(size.height) * 4)};
    for (std::size_t i = 0; i < picture.bytes.size(); ++i)
        picture.bytes[i] = i % 4 == 3 ? 255 : static_cast<unsigned char>(random() >> 8);
    return picture;
}

HostRun::HostRun(const std::string& effect, Size size)
{
    EffectHostLook* look = nullptr;
    EXPECT_EQ(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, effect.c_str(), nullptr, &look), EFFECTHOST_OK);
    EXPECT_EQ(EffectHostStartRun(look, unsigned(size.width), unsigned(size.height), &run_), EFFECTHOST_OK)
        << EffectHostLastError();
    EffectHostReleaseLook(look);
}

HostRun::~HostRun() { EffectHostReleaseRun(run_); }

void HostRun::set(const char* parameter, double value)
{
    EXPECT_EQ(EffectHostSetNumbers(run_, nullptr, parameter, &value, 1), EFFECTHOST_OK)
        << EffectHostLastError();
}

Picture HostRun::frame(const std::vector<Picture>& inputs, double seconds, double rate, double duration)
{
    const auto describe = [](const Picture& picture) {
        EffectHostPicture described{};
        described.pixels = const_cast<unsigned char*>(picture.bytes.data());
        described.stride = picture.size.width * 4;
        described.width = picture.size.width;
        described.height = picture.size.height;
        return described;
    };
    std::vector<EffectHostPicture> described;
    for (const Picture& input : inputs)
        described.push_back(describe(input));
    Picture output{inputs[0].size, std::vector<unsigned char>(inputs[0].bytes.size())};
    EffectHostFrame frame{};
    frame.inputs = described.data();
    frame.inputCount = described.size();
    frame.output = describe(output);
    frame.seconds = seconds;
    frame.rate = rate;
    frame.duration = duration;
    EXPECT_EQ(EffectHostRunFrame(run_, &frame), EFFECTHOST_OK) << EffectHostLastError();
    return output;
}

void GStreamerTest::SetUpTestSuite()
{
    g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_FATAL_MASK));
    ASSERT_EQ(EffectHostOpen(nullptr, nullptr), EFFECTHOST_OK) << EffectHostLastError();
}

std::vector<const EffectHostEffect*> GStreamerTest::effects(unsigned inputs)
{
    const EffectHostEffect* const* all = nullptr;
    std::size_t count = 0;
    EffectHostGetEffects(&all, &count);
    std::vector<const EffectHostEffect*> found;
    for (std::size_t i = 0; i < count; ++i)
        if (all[i]->inputs == inputs)
            found.push_back(all[i]);
    return found;
}

std::map<std::string, Element> GStreamerTest::elements()
{
    std::map<std::string, Element> all;
    GList* const features = gst_registry_get_feature_list_by_plugin(gst_registry_get(), "effectengine");
    for (GList* feature = features; feature; feature = feature->next) {
        GstElement* const element = gst_element_factory_create(GST_ELEMENT_FACTORY(feature->data), nullptr);
        gst_object_ref_sink(element);
        all.emplace(GST_OBJECT_NAME(feature->data), element);
    }
    gst_plugin_feature_list_free(features);
    return all;
}

std::string GStreamerTest::temporaryFile(const char* name, const std::string& contents)
{
    const std::filesystem::path file = std::filesystem::path(EFFECTENGINE_TEST_OUTPUT_DIR) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << contents;
    return file.string();
}

std::set<std::string> GStreamerTest::storedInterface()
{
    std::ifstream file(EFFECTENGINE_SOURCE_DIR "/tests/gstreamer/interface.txt");
    std::set<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.insert(line);
    return lines;
}

void GStreamerTest::writeLines(const std::string& file, const std::set<std::string>& lines)
{
    std::ofstream stream(file);
    for (const std::string& line : lines)
        stream << line << '\n';
}

} // namespace gsttest

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    gst_init(&argc, &argv);
    const int result = RUN_ALL_TESTS();
    gst_deinit(); // where the tracer of leaks reports
    return result;
}
